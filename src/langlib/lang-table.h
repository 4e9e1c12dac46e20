#pragma once

// The sorted table of a handle and the search for a key in it.
//
// The table is what a handle shows: slot 0 and slot count - 1 are sentinels, those between are
// sorted by key, equal keys in reading order. Which of several equal keys answers is what a
// bisection of the whole table reaches. Beside it stands a hash table that knows this slot for
// every key, so that a search costs three memory accesses instead of a bisection's dozens.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>

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

// Hash of a key, as the index keeps it.
std::uint32_t lang_key_hash(const lang_key &key);

// An entry of a handle: one block that holds its strings as well, released with free.
struct lang_entry {
    lang_text_t text;
    std::uint32_t hash;     // of the key
    std::uint32_t too_long; // 1: no request forms a key of this length
    // key and value follow, each with its NUL
};

// An entry while it is sorted, with eight bytes of its key: those from a multiple of eight on.
struct sort_row {
    std::uint64_t bytes; // the first one highest, zeros behind the key's end
    const lang_entry *entry;
};

// Entries in reading order, collected for a table. Owns nothing but its rows.
class lang_rows {
public:
    lang_rows() = default;
    ~lang_rows() { std::free(rows_); }
    lang_rows(const lang_rows &) = delete;
    lang_rows &operator=(const lang_rows &) = delete;

    // False without memory.
    bool add(const lang_entry *entry);
    std::span<sort_row> rows() { return {rows_, count_}; }

private:
    sort_row *rows_ = nullptr;
    std::size_t count_ = 0;
    std::size_t room_ = 0;
};

// Builds table and index of the handle, which must hold neither; the rows are sorted. 0, or -1
// without memory, when the handle is as before.
int lang_table_build(lang_handle_t *handle, lang_rows &entries);

// Releases both, not the entries.
void lang_table_free(lang_handle_t *handle);

// The slot that answers for the key, or null.
const lang_text_t *lang_table_find(const lang_handle_t *handle, const lang_key &key);

// The same by bisection alone.
const lang_text_t *lang_table_bisect(const lang_handle_t *handle, const char *key);

} // namespace zel
