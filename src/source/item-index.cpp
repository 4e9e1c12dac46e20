#include "source/item-index.h"

#include "source/group.h"
#include "support/string-copy.h"
#include "support/text.h"

#include <cstring>

namespace zel {

namespace {

bool same_name(const char *stored, const char *wanted)
{
    return std::strcmp(or_empty(stored), wanted) == 0;
}

// Hash of an item's name, mixed with its group: the same names occur in many groups. The odd factor
// spreads the small numbers of the groups over all 32 bits.
std::uint32_t item_hash(std::uint32_t group, const char *name)
{
    return hash_of(or_empty(name)) ^ group * 0x85EBCA6BU;
}

} // namespace

item_index::item_index(LangSource *source) : source_(source), group_tail_(source->groups)
{
    // Counts first: a table that grows step by step would move its rows again and again.
    std::size_t count = 0;
    for (const edit_t *group : each<edit_t>(source->groups))
        count += g_list_length(group->items);
    items_.reserve(count);
    item_names_.reserve(count);
    for (edit_t *group : each<edit_t>(source->groups)) {
        // Look-ups see only the first group of a name, and in it the first item of a name.
        if (find_group(or_empty(group->name)) != hash_index::none)
            continue;
        const std::uint32_t at = add_group(group);
        for (item_t *item : each<item_t>(group->items))
            if (find_item(at, or_empty(item->name)) == hash_index::none)
                add_item(at, item);
    }
}

std::uint32_t item_index::find_group(const char *name) const
{
    return group_names_.find(
        hash_of(name), [&](std::uint32_t at) { return same_name(groups_[at].group->name, name); });
}

std::uint32_t item_index::find_item(std::uint32_t group, const char *name) const
{
    return item_names_.find(item_hash(group, name), [&](std::uint32_t at) {
        return items_[at].group == group && same_name(items_[at].item->name, name);
    });
}

std::uint32_t item_index::add_group(edit_t *group)
{
    const auto at = static_cast<std::uint32_t>(groups_.size());
    // The tail refers to the list's head inside the record, which never moves: it stays valid when
    // the vector grows. The same holds for the items.
    groups_.push_back({group, list_tail(group->items)});
    group_names_.add(hash_of(or_empty(group->name)), at);
    return at;
}

std::uint32_t item_index::add_item(std::uint32_t group, item_t *item)
{
    const auto at = static_cast<std::uint32_t>(items_.size());
    items_.push_back({item, list_tail(item->used_in), group});
    item_names_.add(item_hash(group, item->name), at);
    return at;
}

indexed_item *item_index::find(const char *group, const char *item)
{
    const std::uint32_t group_at = find_group(group);
    if (group_at == hash_index::none)
        return nullptr;
    const std::uint32_t at = find_item(group_at, item);
    return at == hash_index::none ? nullptr : &items_[at];
}

indexed_item *item_index::insert(const char *group, const char *item)
{
    if (find(group, item) != nullptr) {
        insert_group_item(source_, group, item); // prints that the item exists
        return nullptr;
    }
    std::uint32_t group_at = find_group(group);
    if (group_at == hash_index::none) {
        edit_t *added = new_group(group);
        if (added == nullptr)
            return nullptr;
        group_tail_.append(added);
        group_at = add_group(added);
    }
    // As in insert_group_item, the new group stays even if there is no memory for its item.
    item_t *added = new_group_item(source_, item);
    if (added == nullptr)
        return nullptr;
    groups_[group_at].items.append(added);
    return &items_[add_item(group_at, added)];
}

bool add_use(indexed_item &used, const char *place)
{
    char *copy = zel_strdup(place);
    if (copy == nullptr)
        return false;
    used.places.append(copy);
    return true;
}

} // namespace zel
