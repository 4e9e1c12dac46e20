#pragma once

// The sorted table of a handle and the search for a key in it.
//
// The table is what a handle shows: slot 0 and slot count - 1 are sentinels, those between are
// sorted by key, equal keys in reading order. Which of several equal keys answers is what a
// bisection of the whole table reaches. Beside it stands a hash table that knows this slot for
// every key, so that a search costs two dependent memory accesses instead of a bisection's dozen.

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "langlib/lang.h"

namespace zel {

// The key of a request, "group:item", cut to its limit and padded with zeros for the hash.
struct lang_key {
    static constexpr std::size_t limit = 2047;
    static constexpr std::size_t padding = 8;

    char text[limit + 1 + padding];
    std::size_t length = 0;

    lang_key(const char *group, const char *item)
    {
        append(group, std::strlen(group));
        append(":", 1);
        append(item, std::strlen(item));
        std::memset(text + length, 0, padding);
    }
    explicit lang_key(const char *whole)
    {
        append(whole, std::strlen(whole));
        std::memset(text + length, 0, padding);
    }

private:
    void append(const char *part, std::size_t size)
    {
        size = std::min(size, limit - length);
        std::memcpy(text + length, part, size);
        length += size;
    }
};

// Builds table and index of the handle from its entries: 0, or -1 without memory, when the handle
// is as before. The handle must hold neither.
int lang_table_build(lang_handle_t *handle, zel_list *entries);

// Releases both, not the entries.
void lang_table_free(lang_handle_t *handle);

// The slot that answers for the key, or null.
const lang_text_t *lang_table_find(const lang_handle_t *handle, const lang_key &key);

// The same by bisection alone.
const lang_text_t *lang_table_bisect(const lang_handle_t *handle, const char *key);

} // namespace zel
