#pragma once

// The parts of a text that belong to the application and not to the language: conversions of
// printf, symbols (%NAME%) and tags.

#include <cstddef>
#include <string_view>
#include <vector>

namespace zel::assist {

// In bytes.
struct piece {
    std::size_t at;
    std::size_t length;
    bool operator==(const piece &) const = default;
};

// In the order of the text; they do not overlap.
std::vector<piece> pieces_of(std::string_view text);

} // namespace zel::assist
