#include "lint/conflict.h"

#include <algorithm>

namespace zel::lint {

namespace {

// Seven signs, alone or with a blank and a name behind them.
bool is_marker(std::string_view line)
{
    constexpr std::string_view signs = "<|=>";
    constexpr std::size_t count = 7;
    return line.size() >= count && signs.find(line[0]) != std::string_view::npos &&
           line.substr(0, count).find_first_not_of(line[0]) == std::string_view::npos &&
           (line.size() == count || line[count] == ' ');
}

} // namespace

std::vector<conflict_marker> find_conflict_markers(std::string_view text)
{
    std::vector<conflict_marker> found;
    for (std::uint32_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (is_marker(line))
            found.push_back({{number, 0}, line});
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return found;
}

} // namespace zel::lint
