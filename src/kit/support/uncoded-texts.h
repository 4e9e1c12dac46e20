#pragma once

// Files beside the code whose texts no call of C++ asks for: the forms of a designer (*.ui) and
// pages with a script (*.qml).

#include <string>
#include <string_view>

#include "exchange/input.h"

namespace zel::kit {

bool has_uncoded_texts(std::string_view name);

struct uncoded_texts {
    std::size_t count = 0;
    std::string why; // they stay
    exchange::fault wrong;
};
uncoded_texts find_uncoded_texts(std::string_view name, std::string_view bytes);

} // namespace zel::kit
