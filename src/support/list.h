#pragma once

// A doubly linked list of untyped pointers. A list is its first node; operations that may change
// the head return it, and the caller keeps the result. An empty list is null. Data is never owned
// unless a release with data is used.

#include <cstdint>
#include <memory>

#include "support/guard.h"

struct zel_list {
    void *data;
    zel_list *next; // null in the last node
    zel_list *prev; // null in the first node
};

// Nodes made and released in this process, to find leaks (not locked).
extern std::uint32_t zel_list_alloc_count;
extern std::uint32_t zel_list_free_count;

// A zeroed node; null without memory.
[[nodiscard]] zel_list *zel_list_new();

// Adds at the end. Walks the list; code that appends many keeps the last node and hands it in
// (the result is then a node of the list, not its head). Without memory the list stays as it was
// and a fatal error is reported.
[[nodiscard]] zel_list *zel_list_append(zel_list *list, void *data);

zel_list *zel_list_last(zel_list *node);

extern "C" int zel_list_count(const zel_list *list);

// Unlinks and releases the node, not its data; returns the new head. A null node gives the list.
[[nodiscard]] zel_list *zel_list_remove_link(zel_list *list, zel_list *node);

// Releases every node from this one to the end: only the nodes, with each node's data (free), or
// with a function called on each data that is not null.
void zel_list_free(zel_list *list);
void zel_list_free_with_data(zel_list *list);
void zel_list_free_full(zel_list *list, void (*release)(void *data));

using zel_list_guard = std::unique_ptr<zel_list, zel::release<zel_list_free>>;

// Calls the function with each data, in order, and the user value.
extern "C" void zel_list_foreach(zel_list *list, void (*function)(void *data, void *user),
                                 void *user);

// Stable merge sort; returns the new head.
[[nodiscard]] zel_list *zel_list_sort(zel_list *list, int (*compare)(const void *, const void *));

namespace zel {

// The last node that a list is remembered to have, or null. A few lists of each thread are
// remembered, until a node is released anywhere: what was appended behind it stands after it.
zel_list *remembered_end(const zel_list *list);
void remember_end(const zel_list *list, zel_list *last);

// Appends to a list in constant time by remembering its last node.
struct list_end {
    zel_list *head;
    zel_list *last;

    // known: a node of the list, from which its end is sought; null for its first.
    explicit list_end(zel_list *list, zel_list *known = nullptr)
        : head(list), last(zel_list_last(list == nullptr || known == nullptr ? list : known))
    {
    }

    // False, after the list's own report, without memory.
    bool append(void *data)
    {
        zel_list *grown = zel_list_append(last, data);
        if (grown == nullptr || (last != nullptr && last->next == nullptr))
            return false;
        if (last == nullptr)
            head = grown;
        last = last == nullptr ? grown : last->next;
        return true;
    }
};

} // namespace zel
