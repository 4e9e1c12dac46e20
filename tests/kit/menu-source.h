#pragma once

// A small source and the changes that tests make of it.

#include "test-support.h"

#include <string>

namespace zel_test {

inline const std::string menu_source = read_file(LANG_SOURCE_ROOT "/tests/kit/pages/menu.lang-src");

// The text with the first place of what is given replaced; it must be there.
inline std::string with(std::string text, const std::string &what, const std::string &by)
{
    const std::size_t at = text.find(what);
    if (at == std::string::npos)
        std::fprintf(stderr, "not there: %s\n", what.c_str());
    require(at != std::string::npos, "with");
    return text.replace(at, what.size(), by);
}

} // namespace zel_test
