#pragma once

// Looks at the files of the tree, and at what shells say.

#include "shell.h"

#include <iterator>
#include <regex>
#include <string>
#include <vector>

namespace zel_test {

inline std::string in_root(const std::string &path) { return LANG_SOURCE_ROOT "/" + path; }
inline std::string text_of(const std::string &path) { return read_file(in_root(path)); }

// What the first brackets of the pattern hold, at every place where it fits.
inline std::vector<std::string> matches(const std::string &text, const std::string &pattern)
{
    std::vector<std::string> found;
    const std::regex regex(pattern);
    for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at)
        found.push_back((*at)[1]);
    return found;
}

} // namespace zel_test
