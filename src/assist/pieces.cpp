#include "assist/pieces.h"

#include "lint/conversions.h"
#include "lint/markup.h"

#include <algorithm>

namespace zel::assist {

std::vector<piece> pieces_of(std::string_view text)
{
    std::vector<piece> percents;
    const auto place = [&](std::string_view part) {
        return static_cast<std::size_t>(part.data() - text.data());
    };
    const lint::percents found = lint::read_percents(text);
    for (const std::string_view conversion : found.conversions)
        percents.push_back({place(conversion), conversion.size()});
    for (const std::string_view name : found.symbols)
        percents.push_back({place(name) - 1, name.size() + 2});
    // The reader gives conversions and symbols in lists of their own.
    std::sort(percents.begin(), percents.end(),
              [](const piece &a, const piece &b) { return a.at < b.at; });

    // A conversion in a tag is a part of the tag.
    std::vector<piece> out;
    auto next = percents.begin();
    const auto take_until = [&](std::size_t end, bool keep) {
        for (; next != percents.end() && next->at < end; ++next)
            if (keep)
                out.push_back(*next);
    };
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at)) {
        const std::size_t length = lint::tag_length(text.substr(at));
        if (length != 0) {
            take_until(at, true);
            out.push_back({at, length});
            take_until(at + length, false);
        }
        at += std::max<std::size_t>(length, 1);
    }
    take_until(text.size(), true);
    return out;
}

} // namespace zel::assist
