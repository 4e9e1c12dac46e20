#pragma once

// Finding and inserting groups and items by name (exact, case-sensitive), and clearing the usage
// marks before a check. Lookups return pointers into the model, null when nothing matches or an
// argument is null.

#include "source/model.h"

edit_t *get_edit_ptr(GList *groups, const char *group);
item_t *get_item_ptr(LangSource *source, const char *group, const char *item);

// Adds an item, and its group when needed, with one entry for the default language whose text is
// the item's name. Null, after a message on standard output, when it exists or without memory.
item_t *insert_group_item(LangSource *source, const char *group, const char *item);

// Sets used of every item to 0; clear_all_file_list also empties the lists of places. Return 0.
int clear_all_used(LangSource *source);
int clear_all_file_list(LangSource *source);

namespace zel {

// A new group, and a new item with its back pointer and its one entry, not yet in any list: what
// insertion adds. Null, after the messages, without memory.
edit_t *new_group(const char *name);
item_t *new_group_item(LangSource *source, const char *name);

} // namespace zel
