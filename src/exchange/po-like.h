#pragma once

// A catalog that somebody else knows, with the texts of a source: its header, order, contexts,
// remarks, places, flags and obsolete messages stay, and so does every message whose text is what
// the source has.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/export.h"
#include "exchange/input.h"
#include "exchange/po-message.h"
#include "exchange/texts.h"

namespace zel::exchange {

struct known_catalog {
    said_language language;
    std::vector<po_message> messages; // the header and the obsolete ones among them
    std::string plural_field;
    std::uint32_t plural_line = 0;
};
fault read_known(std::string_view bytes, known_catalog &out);

struct like_result {
    fault wrong;
    std::string text;                   // of the new catalog
    std::uint32_t changed = 0;          // messages
    std::uint32_t unknown = 0;          // messages that no item of the source is
    std::vector<std::string> ambiguous; // a line each: messages that several items may be
    std::uint32_t missing = 0;          // items that the catalog lacks and that are left out
};

// The exporter has one language. Items that the catalog lacks are added at its end where the
// request says what their context is.
like_result write_like(exporter &from, const known_catalog &like);

} // namespace zel::exchange
