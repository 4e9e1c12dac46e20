#pragma once

// The conversions of printf in a text, as far as a catalog's check looks at them.

#include <optional>
#include <string_view>
#include <vector>

namespace zel::exchange {

// The type that each argument is taken as, by the argument's position: a word of the conversion
// letters and length modifiers that mean the same, "d", "lu", "s". Null for a text that is no
// format: a conversion that is none, numbered beside unnumbered ones, a gap between numbers, or a
// blank as a flag, which is a percent sign of plain text more often than not.
std::optional<std::vector<std::string_view>> c_format_arguments(std::string_view text);

// The same into a list that many texts share. False: the text is no format.
bool read_c_format(std::string_view text, std::vector<std::string_view> &types);

} // namespace zel::exchange
