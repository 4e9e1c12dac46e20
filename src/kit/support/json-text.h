#pragma once

// A JSON string on its own, as other programs answer with.

#include <optional>
#include <string>
#include <string_view>

namespace zel::kit {

// What a line holds: a string in quotes, with blanks around it; "null" is an empty one. Nothing for
// anything else, for bytes that are no UTF-8, and for a string with a zero in it.
std::optional<std::string> read_json_text(std::string_view line);

} // namespace zel::kit
