#pragma once

// The underscores that mark the key of a menu entry or a button, "_Save".

#include <cstddef>
#include <string_view>

#include "source/model.h"

namespace zel::lint {

struct mnemonics {
    std::size_t count = 0; // underscores before a letter or digit; "__" is the sign itself
    std::size_t sure = 0;  // but for those that may be part of a name, as in "the file my_notes"
    char32_t key = 0;      // the first one's, in lower case
};

mnemonics read_mnemonics(std::string_view text);

// Whether an item in use has an underscore that begins a word of its reference text. A program of
// many texts without one has no menus, and its underscores belong to names; few texts tell nothing.
bool may_use_mnemonics(const LangSource *source);

} // namespace zel::lint
