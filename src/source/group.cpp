#include "source/group.h"

#include "support/string-copy.h"
#include "support/text.h"

#include <cstring>

namespace {

// An empty name is stored as null when it is read or copied: both compare as equal.
bool same_name(const char *name, const char *wanted)
{
    return std::strcmp(zel::or_empty(name), wanted) == 0;
}

// The text of a new item is its name, in the language the application is written in.
bool add_default_entry(item_t *item, const char *lang, const char *text)
{
    lang_entry_t *entry = alloc_lang_entry(lang);
    if (entry == nullptr)
        return false;
    entry->texts = g_list_append(nullptr, zel_strdup2(text));
    item->langs = g_list_append(item->langs, entry);
    return true;
}

} // namespace

edit_t *get_edit_ptr(GList *groups, const char *group)
{
    if (group == nullptr)
        return nullptr;
    for (edit_t *candidate : zel::each<edit_t>(groups))
        if (same_name(candidate->name, group))
            return candidate;
    return nullptr;
}

item_t *get_item_ptr(LangSource *source, const char *group, const char *item)
{
    if (source == nullptr || item == nullptr)
        return nullptr;
    const edit_t *found = get_edit_ptr(source->groups, group);
    if (found == nullptr)
        return nullptr;
    // A later group of the same name is never searched. The index in item-index.cpp must answer in
    // the same way.
    for (item_t *candidate : zel::each<item_t>(found->items))
        if (same_name(candidate->name, item))
            return candidate;
    return nullptr;
}

namespace zel {

edit_t *new_group(const char *name)
{
    edit_t *group = lang_alloc_edit();
    if (group == nullptr) {
        // Both lines are deliberate: the messages are an interface.
        std::puts("insert_group: error alloc edit");
        std::puts("insert_item: error insert group");
        return nullptr;
    }
    group->name = zel_strdup(name);
    return group;
}

item_t *new_group_item(LangSource *source, const char *name)
{
    item_t *item = alloc_item();
    if (item == nullptr) {
        std::puts("insert_item: error alloc item");
        // Both lines are deliberate: the messages are an interface.
        std::puts("insert_item: error insert item");
        return nullptr;
    }
    item->name = zel_strdup(name);
    item->source = source;
    // The item is kept even without its first text: the message is all that happens.
    if (!add_default_entry(item, source->default_lang, name))
        std::puts("insert_item: error insert item");
    return item;
}

} // namespace zel

item_t *insert_group_item(LangSource *source, const char *group, const char *item)
{
    if (source == nullptr || group == nullptr || item == nullptr)
        return nullptr;
    if (get_item_ptr(source, group, item) != nullptr) {
        std::puts("insert_item: error item exist");
        return nullptr;
    }
    edit_t *holder = get_edit_ptr(source->groups, group);
    if (holder == nullptr) {
        holder = zel::new_group(group);
        if (holder == nullptr)
            return nullptr;
        source->groups = g_list_append(source->groups, holder);
    }
    // If there is no memory for the item, a group that was made for it stays behind, empty.
    item_t *added = zel::new_group_item(source, item);
    if (added != nullptr)
        holder->items = g_list_append(holder->items, added);
    return added;
}

int clear_all_used(LangSource *source)
{
    if (source == nullptr)
        return 0;
    for (edit_t *group : zel::each<edit_t>(source->groups))
        for (item_t *item : zel::each<item_t>(group->items))
            item->used = 0;
    return 0;
}

int clear_all_file_list(LangSource *source)
{
    if (source == nullptr)
        return 0;
    for (edit_t *group : zel::each<edit_t>(source->groups))
        for (item_t *item : zel::each<item_t>(group->items)) {
            item->used = 0;
            free_lang_entry_text(item->used_in);
            item->used_in = nullptr;
        }
    return 0;
}
