#pragma once

// What differs between two language sources, by meaning: groups, items and languages are the same
// one by their name wherever they stand, a text is its strings one behind the other, what is
// written alike is alike. Stamps are no difference; places in the code are one only when asked for.

#include <functional>

#include "merge/fields.h"
#include "source/model.h"

namespace zel {

enum class change { added, removed, changed };

// One difference. What it concerns is named down to where it is: a group, then an item, and a
// language where it is about a definition, a text or a comment. The names live as long as the
// sources; null is what is not concerned.
struct difference {
    change how;
    const char *group;
    const char *item;
    const char *language;
    const char *field;  // "language", "group", "item", "text", "comment", "place", or the field's
    field_value before; // none: added, or a whole record
    field_value after;  // none: removed, or a whole record
};
using difference_listener = std::function<void(const difference &)>;

// Tells every difference: first those of the source itself, then of languages, then of groups and
// their items in the order of the old source, where what is new stands behind its neighbour. Of a
// group that only one source has all items are told, of such an item nothing else.
void compare_sources(LangSource *before, LangSource *after, bool with_places,
                     const difference_listener &tell);

// The same of one item, which both sources have.
void compare_items(const char *group, item_t *before, item_t *after, bool with_places,
                   const difference_listener &tell);

// The languages' definitions and the groups themselves, without their items.
void compare_languages(lang_t *before, lang_t *after, const difference_listener &tell);
void compare_groups(edit_t *before, edit_t *after, const difference_listener &tell);

} // namespace zel
