#pragma once

// How a language source is read: what hears its messages, and where the places of its records go.

#include <cstdint>
#include <functional>
#include <string_view>

#include "source/places.h"
#include "source/read-message.h"

namespace zel {

struct read_how {
    std::int64_t now = 0;             // the creation time of items that have none in the file
    read_listener listener = nullptr; // hears every message; none: they are lost
    source_places *places = nullptr;  // filled when given
    std::string_view text = {};       // read in place of the file, unless its data is null
    bool to_write = false; // the source will replace the file: one that would lose something by it
                           // (read_nul_byte) counts as not readable
    // Which languages' texts and comments are kept; none: all.
    std::function<bool(std::string_view language)> keeps = nullptr;
};

} // namespace zel
