#pragma once

// The sorted table of a handle and the search for a key in it.
//
// The table is what a handle shows: slot 0 and slot count - 1 are sentinels, those between are
// sorted by key, equal keys in reading order. Which of several equal keys answers is what a
// bisection of the whole table reaches. Beside it stands a hash table that knows this slot for
// every key: a search takes three memory accesses instead of a bisection's dozens and is two times
// as quick in a table of 300 entries, four times in one of 100,000.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "langlib/lang.h"
#include "support/guard.h"

struct lang_locale_t; // lang-locale.h

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

// The memory of a handle's entries, table and index comes in large pieces that are released
// together: for a large file, asking for each alone would cost more than reading it.
lang_index *lang_store_new();
void lang_store_free(lang_index *store) noexcept;
using lang_store_guard = std::unique_ptr<lang_index, release<lang_store_free>>;

// Whether a text lies in the store's memory.
bool lang_store_holds(const lang_index *store, const char *text);

// Memory for any record; null without memory.
void *lang_store_allocate(lang_index *store, std::size_t size);

// What a handle knows beside its table.
struct lang_link {
    lang_handle_t *next;   // asked for what the table lacks, or null
    bool owns_next;        // it is released with the store's handle
    lang_locale_t *locale; // what lang-locale.h loaded, in the store; or null
    lang_handle_t *before; // a reload has put this one in its place, or null
    const char *plural;    // the language's rule up to its line end; null: not looked for yet
};
lang_link &link_of(lang_index *store);

// An entry of a handle, in its store.
struct lang_entry {
    lang_text_t text;
    std::uint32_t hash;  // of the key
    std::uint32_t state; // key_too_long, and what checked requests keep (lang-checked.cpp)
    // key and value follow, each with its NUL; the byte before the value is a mark, or 0. A value
    // of several forms follows again, with a NUL behind each of them
};

// No request forms a key of this length.
inline constexpr std::uint32_t key_too_long = 1U << 31;

// The entry whose key a slot of a handle with an index shows.
inline lang_entry *entry_of(const lang_text_t *slot)
{
    return reinterpret_cast<lang_entry *>(slot->key) - 1;
}

// Marks a text of the default language that stands in, for those who have nothing but the text.
inline constexpr char stand_in_mark = '\1';

// Builds table and index from the entries (lang_entry of the store) into the handle, which takes
// the store over: 0. Without memory -1, and both are as before.
int lang_table_build(lang_handle_t *handle, lang_store_guard &store, zel_list *entries);

// The slot that answers for the key, or null.
const lang_text_t *lang_table_find(const lang_handle_t *handle, const lang_key &key);

// The same by bisection alone.
const lang_text_t *lang_table_bisect(const lang_handle_t *handle, const char *key);

} // namespace zel
