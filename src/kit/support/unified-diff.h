#pragma once

// What changes in a file, as patch and git read it.

#include <string>
#include <string_view>

namespace zel::kit {

// For a text whose lines stay lines: each is as it was or another one, and one more may be added,
// whose number in the new text is given, from 1; 0: none. Empty where both are the same.
std::string unified_diff(const std::string &path, std::string_view before, std::string_view after,
                         std::size_t added_line);

} // namespace zel::kit
