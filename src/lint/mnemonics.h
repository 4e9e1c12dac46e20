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
    std::size_t at = 0;    // where its underscore stands
};

mnemonics read_mnemonics(std::string_view text);

// Whether an item in use has an underscore that begins a word of its reference text. A program of
// many texts without one has no menus, and its underscores belong to names; few texts tell nothing.
bool may_use_mnemonics(const LangSource *source);

// Whether the texts of a group may be seen together, so that no two of them should have one key. A
// group of more texts with a key than a window has letters for, or one in which the reference uses
// keys twice, is no window: those of several menus do.
bool may_be_window(const LangSource *source, const edit_t *group);

} // namespace zel::lint
