#include "kit/support/whole-source.h"

#include "exchange/json.h"
#include "exchange/key.h"
#include "source/item-index.h"

#include <cstdio>
#include <cstring>

namespace zel::kit {

namespace {

const char *text_of(const char *name) { return name == nullptr ? "" : name; }

void print_item(char sign, const edit_t *group, const item_t *item)
{
    std::string key;
    exchange::append_key(key, text_of(group->name), text_of(item->name));
    std::printf("%c %s\n", sign, key.c_str());
}

// Items of one source beside those of the other. Whether one was printed.
bool print_items(LangSource *of, item_index *other, char missing, bool changes)
{
    bool printed = false;
    for (const edit_t *group : each<edit_t>(of->groups))
        for (const item_t *item : each<item_t>(group->items)) {
            const indexed_item *found =
                other == nullptr ? nullptr : other->find(text_of(group->name), text_of(item->name));
            const bool changed =
                found != nullptr && changes &&
                exchange::json_of_item(item) != exchange::json_of_item(found->item);
            if (found == nullptr || changed) {
                print_item(found == nullptr ? missing : '~', group, item);
                printed = true;
            }
        }
    return printed;
}

// Whether both lists have items of the same names in the same order.
bool same_order(GList *a, GList *b)
{
    for (; a != nullptr && b != nullptr; a = a->next, b = b->next)
        if (std::strcmp(text_of(static_cast<item_t *>(a->data)->name),
                        text_of(static_cast<item_t *>(b->data)->name)) != 0)
            return false;
    return a == b;
}

bool same_group(const edit_t *a, const edit_t *b)
{
    return std::strcmp(text_of(a->name), text_of(b->name)) == 0 &&
           std::strcmp(text_of(a->screen_shot), text_of(b->screen_shot)) == 0 &&
           a->visible == b->visible && same_order(a->items, b->items);
}

bool same_groups(GList *a, GList *b)
{
    for (; a != nullptr && b != nullptr; a = a->next, b = b->next)
        if (!same_group(static_cast<edit_t *>(a->data), static_cast<edit_t *>(b->data)))
            return false;
    return a == b;
}

} // namespace

bool print_differences(LangSource *before, LangSource *after)
{
    if (before == nullptr) {
        print_items(after, nullptr, '+', false);
        return true;
    }
    bool differ = exchange::json_of_head(before) != exchange::json_of_head(after) ||
                  !same_groups(before->groups, after->groups);
    if (differ)
        std::puts("~ languages, groups and order");
    item_index old_items(before);
    item_index new_items(after);
    differ = print_items(after, &old_items, '+', true) || differ;
    return print_items(before, &new_items, '-', false) || differ;
}

} // namespace zel::kit
