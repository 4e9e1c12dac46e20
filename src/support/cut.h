#pragma once

// The parts of a text between signs, one after the other.

#include <algorithm>
#include <string_view>

namespace zel {

// Takes the text up to the sign, or all of it, off the rest, and the sign with it.
inline std::string_view cut_at(std::string_view &rest, char sign)
{
    const std::size_t end = std::min(rest.find(sign), rest.size());
    const std::string_view part = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return part;
}

} // namespace zel
