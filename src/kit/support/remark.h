#pragma once

// Lines that a word leaves in an item's comments.

#include <string_view>

#include "kit/support/entry-index.h"
#include "source/model.h"

namespace zel::kit {

// Puts lines below those that are there, unless they are among them.
void add_remark(lang_entry_t *comment, std::string_view lines);

// The same in the item's comment in a language, which is made where there is none. The index is of
// the comments.
void add_remark(entry_index &comments, item_t *item, const char *language, std::string_view lines);

} // namespace zel::kit
