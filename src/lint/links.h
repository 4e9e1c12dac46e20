#pragma once

// What of a text must be the same in every language: addresses, paths and numbers.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zel::lint {

struct number {
    std::string digits;
    std::size_t significant;        // how many of them: 1016.0 is 1016
    std::vector<std::string> parts; // between its commas
    std::string shown;              // as it is written
    std::size_t begin;              // in the text
    std::size_t end;

    std::string_view value() const { return std::string_view(digits).substr(0, significant); }
};

struct links {
    std::vector<std::string> addresses; // sorted, as paths
    std::vector<std::string> paths;
    std::vector<number> numbers; // in the order of the text
    std::string named;           // digits of names and conversions, "2000" of "JPEG2000"
};

links read_links(std::string_view bytes);

} // namespace zel::lint
