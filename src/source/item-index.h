#pragma once

// Finds the items of a source by group and item name without walking its lists, and keeps in step
// with what is inserted through it. It stands beside the model for the length of one run; while it
// lives, groups, items and places are added through it and nothing is removed.

#include <cstdint>
#include <vector>

#include "source/model.h"
#include "support/hash-index.h"

namespace zel {

struct indexed_item {
    item_t *item;
    list_tail places;    // end of the item's used_in
    std::uint32_t group; // its group's position in the index
};

class item_index {
public:
    explicit item_index(LangSource *source);

    LangSource *source() const { return source_; }

    // What get_item_ptr finds: the first item of that name in the first group of that name, or
    // null. The result stays valid until the next insertion.
    indexed_item *find(const char *group, const char *item);

    // What insert_group_item does, with its results and messages.
    indexed_item *insert(const char *group, const char *item);

private:
    struct indexed_group {
        edit_t *group;
        list_tail items;
    };

    std::uint32_t find_group(const char *name) const;
    std::uint32_t find_item(std::uint32_t group, const char *name) const;
    std::uint32_t add_group(edit_t *group);
    std::uint32_t add_item(std::uint32_t group, item_t *item);

    LangSource *source_;
    list_tail group_tail_;
    std::vector<indexed_group> groups_;
    std::vector<indexed_item> items_;
    hash_index group_names_;
    hash_index item_names_;
};

// Appends a place (a copy) to the item's list of uses. False without memory.
bool add_use(indexed_item &used, const char *place);

} // namespace zel
