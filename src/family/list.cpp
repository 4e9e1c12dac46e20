#include "family/list.h"

#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/text.h"

#include <cstdlib>
#include <cstring>

namespace {

// An empty key or value is stored as null and sorts like an empty string.
int compare_strings(const char *a, const char *b)
{
    return std::strcmp(zel::or_empty(a), zel::or_empty(b));
}

} // namespace

zel_list *zel_list_prepend(zel_list *node, void *data)
{
    // zel_list_append also reports a lack of memory.
    zel_list *added = zel_list_append(nullptr, data);
    // Without memory the list stays as it is, and its head is still the answer.
    if (added == nullptr)
        return node;
    if (node != nullptr) {
        added->next = node;
        added->prev = node->prev;
        // The node may stand inside its list: the new one goes in before it.
        if (node->prev != nullptr)
            node->prev->next = added;
        node->prev = added;
    }
    return added;
}

zel_list *zel_list_concat(zel_list *a, zel_list *b)
{
    if (a == nullptr)
        return b;
    if (b != nullptr) {
        zel_list *last = zel_list_last(a);
        last->next = b;
        b->prev = last;
    }
    return a;
}

zel_list *zel_list_first(zel_list *node)
{
    while (node != nullptr && node->prev != nullptr)
        node = node->prev;
    return node;
}

zel_list *zel_list_next(zel_list *node) { return node == nullptr ? nullptr : node->next; }

zel_list *zel_list_prev(zel_list *node) { return node == nullptr ? nullptr : node->prev; }

zel_list *zel_list_nth(zel_list *list, int n)
{
    // Nodes are counted from 1, and anything less asks for the first one.
    for (; n > 1 && list != nullptr; --n)
        list = list->next;
    return list;
}

char *zel_list_generate_str(const zel_list *list)
{
    if (list == nullptr)
        return nullptr;
    // Measured first, so that each text is copied once.
    std::size_t size = 0;
    for (const zel_list *node = list; node != nullptr; node = node->next)
        size +=
            (node->data == nullptr ? 0 : std::strlen(static_cast<const char *>(node->data))) + 2;
    char *joined = static_cast<char *>(std::malloc(size));
    if (joined == nullptr)
        return nullptr;
    char *end = joined;
    for (const zel_list *node = list; node != nullptr; node = node->next)
        if (node->data != nullptr)
            end = stpcpy(end, static_cast<const char *>(node->data));
    *end = '\0';
    return joined;
}

// The fallback also takes the place of a text for which there was no memory.
char *zel_list_generate_str2(const zel_list *list, const char *fallback)
{
    char *joined = zel_list_generate_str(list);
    return joined != nullptr ? joined : zel_strdup(fallback);
}

void zel_list_debug_info()
{
    LogPrint(1, "zel_list_debug_info: alloc:free %i:%i\n", static_cast<int>(zel_list_alloc_count),
             static_cast<int>(zel_list_free_count));
    LogPrint(1, "zel_list_debug_info: alloc-free %i\n",
             static_cast<int>(zel_list_alloc_count - zel_list_free_count));
}

key_val *key_val_new(const char *key, const char *val)
{
    auto *record = static_cast<key_val *>(std::calloc(1, sizeof(key_val)));
    if (record == nullptr)
        return nullptr;
    record->key = zel_strdup(key);
    record->val = zel_strdup(val);
    // An empty text becomes null, which is no lack of memory: is_copy tells the two apart.
    if (zel::is_copy(record->key, key) && zel::is_copy(record->val, val))
        return record;
    key_val_free(record);
    return nullptr;
}

void key_val_free(key_val *record)
{
    if (record == nullptr)
        return;
    std::free(record->key);
    std::free(record->val);
    std::free(record);
}

void zel_list_key_val_free(void *record) { key_val_free(static_cast<key_val *>(record)); }

void zel_list_free_with_key_val(zel_list *list) { zel_list_free_full(list, zel_list_key_val_free); }

int key_val_sort_func_key(const void *a, const void *b)
{
    return compare_strings(static_cast<const key_val *>(a)->key,
                           static_cast<const key_val *>(b)->key);
}

int key_val_sort_func_val(const void *a, const void *b)
{
    return compare_strings(static_cast<const key_val *>(a)->val,
                           static_cast<const key_val *>(b)->val);
}
