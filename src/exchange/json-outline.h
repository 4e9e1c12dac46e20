#pragma once

// JSON text of a source cut into pieces that are parsed one at a time: a large source as one tree
// would take many times its size, and a hostile text's depth would take the stack.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/input.h"

namespace zel::exchange {

struct json_piece {
    std::string_view text;
    std::uint32_t line; // on which it begins
};

struct json_outline {
    std::string text;              // the text, each item of a group as its position among the
    std::vector<json_piece> items; // pieces
};

// Looks at brackets and strings only; what else is wrong the parser finds. A fault for a zero byte
// written as an escape, too, and for what only some readers take for JSON.
fault make_outline(std::string_view bytes, json_outline &outline);

} // namespace zel::exchange
