#pragma once

// Lists, as in support/list.h: what only other applications of the family call.

#include "support/list.h"

// Inserts before the node, between it and its previous one; returns the new node.
[[nodiscard]] zel_list *zel_list_prepend(zel_list *node, void *data);

// Links b behind a's last node; returns a, or b when a is empty.
[[nodiscard]] zel_list *zel_list_concat(zel_list *a, zel_list *b);

zel_list *zel_list_first(zel_list *node);
zel_list *zel_list_next(zel_list *node);
zel_list *zel_list_prev(zel_list *node);

// Node number n counted from 1; the list itself for 1 and below, null past the end.
zel_list *zel_list_nth(zel_list *list, int n);

// All strings of the list in one new one, owned by the caller: null for an empty list, or in its
// place a copy of the default.
[[nodiscard]] char *zel_list_generate_str(const zel_list *list);
[[nodiscard]] char *zel_list_generate_str2(const zel_list *list, const char *fallback);

// Logs the counters of nodes made and released, and their difference.
void zel_list_debug_info();

// A pair of owned strings (null where they are empty); null without memory.
struct key_val {
    char *key;
    char *val;
};
[[nodiscard]] key_val *key_val_new(const char *key, const char *val);
void key_val_free(key_val *record);
void zel_list_key_val_free(void *record); // the same for zel_list_free_full
void zel_list_free_with_key_val(zel_list *list);
int key_val_sort_func_key(const void *a, const void *b);
int key_val_sort_func_val(const void *a, const void *b);
