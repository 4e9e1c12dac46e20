#pragma once

// Where a file of C or C++ takes one more header.

#include <string>
#include <string_view>
#include <vector>

#include "checker/code-token.h"

namespace zel::kit {

struct include_place {
    bool is_wanted = false;   // the file does not have it
    std::size_t position = 0; // the start of a line
    std::string line;         // with the line end of the file
};

// The place for lang-locale.h: behind the last header before that position, the first block and the
// first brace, which the preprocessor includes whatever is defined.
include_place place_of_include(std::string_view bytes, const std::vector<code_token> &tokens,
                               std::size_t before);

} // namespace zel::kit
