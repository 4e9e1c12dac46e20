#include "langlib/lang-table.h"

#include "support/list.h"

#include <array>
#include <bit>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <sys/mman.h>

namespace {

// A piece of memory; what is given out follows it.
struct alignas(std::max_align_t) chunk {
    chunk *next;
    std::size_t size; // of what follows
};

constexpr std::size_t first_chunk = 16384;
constexpr std::size_t largest_chunk = 4194304;

} // namespace

// A handle's store, with the index in it: open addressing with linear steps. A row is a slot of the
// table and, in the bits that the slot leaves, a part of its key's hash, which saves most
// comparisons; 0 is a free row. So small a table stays in the processor's cache.
struct lang_index {
    std::uint32_t *rows;     // null: the table is bisected
    std::uint32_t mask;      // rows minus one, a power of two
    std::uint32_t slot_mask; // the bits of a row that hold the slot

    chunk *chunks;
    char *free_from; // what is left of the chunk in use
    char *free_to;
    std::size_t next_size;

    zel::lang_link link;
};

namespace {

using zel::lang_store_allocate;

// Large pieces ask for large pages: touching each small page of a file's texts for the first time
// costs more than reading them.
char *add_chunk(lang_index *store, std::size_t size)
{
    constexpr std::size_t large_page = 2097152;
    const std::size_t whole = size + sizeof(chunk);
    void *memory = nullptr;
    if (whole < large_page)
        memory = std::malloc(whole);
    else if (posix_memalign(&memory, large_page, whole) == 0)
        madvise(memory, whole, MADV_HUGEPAGE);
    if (memory == nullptr)
        return nullptr;
    auto *added = static_cast<chunk *>(memory);
    added->next = store->chunks;
    added->size = size;
    store->chunks = added;
    return reinterpret_cast<char *>(added + 1);
}

// Keys of one group begin alike, which a comparison of whole keys runs through again and again:
// with the standard library's stable sort a file takes 14 to 19 percent longer to load.

// An entry while it is sorted, with eight bytes of its key: those from a multiple of eight on.
struct sort_row {
    std::uint64_t bytes; // the first one highest, zeros behind the key's end
    const zel::lang_entry *entry;
};
using sort_rows = std::span<sort_row>;

constexpr std::size_t step = sizeof(sort_row::bytes);
constexpr std::size_t few_rows = 24; // sorted by insertion
constexpr std::size_t byte_values = 256;

void read_bytes(sort_row &row, std::size_t depth)
{
    const char *key = row.entry->text.key + depth;
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < step; ++i) {
        bytes = bytes << 8 | static_cast<unsigned char>(*key);
        if (*key != '\0')
            ++key;
    }
    row.bytes = bytes;
}

std::size_t byte_at(const sort_row &row, std::size_t depth)
{
    return row.bytes >> (8 * (step - 1 - depth % step)) & 0xFF;
}

// Whether a key comes behind another one that agrees with it up to the bytes of its row.
bool behind(const sort_row &a, const sort_row &b, std::size_t depth)
{
    if (a.bytes != b.bytes)
        return a.bytes > b.bytes;
    if ((a.bytes & 0xFF) == 0)
        return false;
    const std::size_t next = depth / step * step + step;
    return std::strcmp(a.entry->text.key + next, b.entry->text.key + next) > 0;
}

void insertion_sort(sort_rows rows, std::size_t depth)
{
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const sort_row row = rows[i];
        std::size_t at = i;
        for (; at > 0 && behind(rows[at - 1], row, depth); --at)
            rows[at] = rows[at - 1];
        rows[at] = row;
    }
}

// Where the rows of each byte value begin, and one end more.
using buckets = std::array<std::uint32_t, byte_values + 1>;

// Orders the rows by one byte; equal ones keep their order. False when all have the same byte.
bool distribute(sort_rows rows, sort_rows spare, std::size_t depth, buckets &starts)
{
    starts.fill(0);
    for (const sort_row &row : rows)
        ++starts[byte_at(row, depth) + 1];
    if (starts[byte_at(rows[0], depth) + 1] == rows.size())
        return false;
    for (std::size_t i = 1; i <= byte_values; ++i)
        starts[i] += starts[i - 1];
    buckets next = starts;
    for (const sort_row &row : rows)
        spare[next[byte_at(row, depth)]++] = row;
    std::copy_n(spare.begin(), rows.size(), rows.begin());
    return true;
}

// Sorts rows whose keys agree in the first "depth" bytes, byte by byte. The largest part is sorted
// by going on, so that no keys make the recursion deep.
void sort_by_bytes(sort_rows rows, sort_rows spare, std::size_t depth)
{
    for (;; ++depth) {
        if (depth % step == 0)
            for (sort_row &row : rows)
                read_bytes(row, depth);
        if (rows.size() <= few_rows)
            return insertion_sort(rows, depth);
        buckets starts;
        if (!distribute(rows, spare, depth, starts)) {
            // All of these keys end here, so they are equal, and stand in reading order.
            if (byte_at(rows[0], depth) == 0)
                return;
            continue;
        }
        sort_rows largest;
        for (std::size_t byte = 1; byte < byte_values; ++byte) {
            sort_rows part = rows.subspan(starts[byte], starts[byte + 1] - starts[byte]);
            if (part.size() > largest.size())
                std::swap(part, largest);
            if (part.size() > 1)
                sort_by_bytes(part, spare, depth + 1);
        }
        if (largest.size() < 2)
            return;
        rows = largest;
    }
}

// A walk over so many rows is no accident: such a file is searched without an index.
constexpr std::uint32_t longest_walk = 128;

std::uint64_t mix(std::uint64_t a, std::uint64_t b)
{
    __extension__ using wide = unsigned __int128;
    const wide product = static_cast<wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

// Makes the index's rows, of which at most half will be used. False without memory.
bool make_rows(lang_index *index, std::size_t keys)
{
    const std::size_t size = std::bit_ceil(keys * 2);
    index->mask = static_cast<std::uint32_t>(size - 1);
    index->slot_mask = static_cast<std::uint32_t>(std::bit_ceil(keys + 1) - 1);
    index->rows =
        static_cast<std::uint32_t *>(lang_store_allocate(index, size * sizeof(std::uint32_t)));
    if (index->rows != nullptr)
        std::memset(index->rows, 0, size * sizeof(std::uint32_t));
    return index->rows != nullptr;
}

// Where the walk for a hash begins. It uses other bits than a row keeps.
std::uint32_t first_row(const lang_index *index, std::uint32_t hash)
{
    return (hash * 0x9E3779B1U >> 7 ^ hash) & index->mask;
}

// False when the index holds too many keys of the same hash.
bool enter(lang_index *index, std::uint32_t hash, std::uint32_t slot)
{
    std::uint32_t at = first_row(index, hash);
    for (std::uint32_t walked = 0; index->rows[at] != 0; ++walked) {
        if (walked == longest_walk)
            return false;
        at = (at + 1) & index->mask;
    }
    index->rows[at] = (hash & ~index->slot_mask) | slot;
    return true;
}

bool same_key(const sort_row &a, const sort_row &b)
{
    return a.entry->hash == b.entry->hash && std::strcmp(a.entry->text.key, b.entry->text.key) == 0;
}

// Builds the index from the rows, which stand in the table's slots from 1 on. Where it cannot be
// made, or a bisection serves better, there are no index rows.
void build_index(const lang_handle_t *handle, sort_rows rows)
{
    lang_index *index = handle->index;
    if (!make_rows(index, rows.size()))
        return;
    for (std::size_t first = 0; first < rows.size();) {
        std::size_t next = first + 1;
        while (next < rows.size() && same_key(rows[next], rows[first]))
            ++next;
        const zel::lang_entry *entry = rows[first].entry;
        auto slot = static_cast<std::uint32_t>(first + 1);
        // Of several equal keys the one that a bisection reaches answers.
        if (next - first > 1)
            slot = static_cast<std::uint32_t>(zel::lang_table_bisect(handle, entry->text.key) -
                                              handle->lang);
        if ((entry->state & zel::key_too_long) == 0 && !enter(index, entry->hash, slot)) {
            index->rows = nullptr;
            return;
        }
        first = next;
    }
}

char no_text[] = "";

} // namespace

namespace zel {

// Reads the key in words of eight bytes; the last one holds zeros behind the end.
std::uint32_t lang_key_hash(const lang_key &key)
{
    constexpr std::uint64_t odd_1 = 0x9E3779B97F4A7C15;
    constexpr std::uint64_t odd_2 = 0xD6E8FEB86659FD93;
    std::uint64_t hash = key.length * odd_2;
    for (std::size_t i = 0; i < key.length; i += sizeof(std::uint64_t)) {
        std::uint64_t word;
        std::memcpy(&word, key.text + i, sizeof word);
        hash = mix(hash ^ word, odd_1);
    }
    return static_cast<std::uint32_t>(mix(hash, odd_2));
}

lang_index *lang_store_new()
{
    auto *store = static_cast<lang_index *>(std::calloc(1, sizeof(lang_index)));
    if (store != nullptr)
        store->next_size = first_chunk;
    return store;
}

void lang_store_free(lang_index *store) noexcept
{
    if (store == nullptr)
        return;
    for (chunk *one = store->chunks; one != nullptr;) {
        chunk *next = one->next;
        std::free(one);
        one = next;
    }
    std::free(store);
}

bool lang_store_holds(const lang_index *store, const char *text)
{
    // The latest chunks are the largest.
    for (const chunk *one = store->chunks; one != nullptr; one = one->next)
        if (reinterpret_cast<std::uintptr_t>(text) - reinterpret_cast<std::uintptr_t>(one + 1) <
            one->size)
            return true;
    return false;
}

void *lang_store_allocate(lang_index *store, std::size_t size)
{
    size = (size + alignof(std::max_align_t) - 1) / alignof(std::max_align_t) *
           alignof(std::max_align_t);
    if (size > static_cast<std::size_t>(store->free_to - store->free_from)) {
        // A large piece has a chunk of its own: what is left of the current one stays in use.
        if (size > store->next_size / 4)
            return add_chunk(store, size);
        char *memory = add_chunk(store, store->next_size);
        if (memory == nullptr)
            return nullptr;
        store->free_from = memory;
        store->free_to = memory + store->next_size;
        store->next_size = std::min(store->next_size * 2, largest_chunk);
    }
    void *given = store->free_from;
    store->free_from += size;
    return given;
}

lang_link &link_of(lang_index *store) { return store->link; }

int lang_table_build(lang_handle_t *handle, lang_store_guard &store, zel_list *entries)
{
    constexpr std::size_t slots_beside = 4; // two sentinels, two that stay zero
    const auto count = static_cast<std::size_t>(zel_list_count(entries));
    const lang_store_guard scratch(lang_store_new());
    if (count > INT_MAX / 2 || !scratch)
        return -1;
    auto *all =
        static_cast<sort_row *>(lang_store_allocate(scratch.get(), count * sizeof(sort_row)));
    auto *table = static_cast<lang_text_t *>(
        lang_store_allocate(store.get(), (count + slots_beside) * sizeof(lang_text_t)));
    if (all == nullptr || table == nullptr)
        return -1;
    const sort_rows rows(all, count);
    for (sort_row &row : rows) {
        row.entry = static_cast<const lang_entry *>(entries->data);
        entries = entries->next;
    }
    // While it is empty the table is the sort's spare room.
    static_assert(sizeof(lang_text_t) >= sizeof(sort_row) &&
                  alignof(lang_text_t) >= alignof(sort_row));
    sort_by_bytes(rows, {reinterpret_cast<sort_row *>(table), count}, 0);
    const lang_text_t sentinel{0, no_text, no_text};
    table[0] = table[count + 1] = sentinel;
    table[count + 2] = table[count + 3] = {};
    for (std::size_t i = 0; i < count; ++i)
        table[i + 1] = rows[i].entry->text;
    handle->lang = table;
    handle->count = static_cast<std::int32_t>(count + 2);
    handle->index = store.release();
    build_index(handle, rows);
    return 0;
}

const lang_text_t *lang_table_find(const lang_handle_t *handle, const lang_key &key)
{
    const lang_index *index = handle->index;
    if (index == nullptr || index->rows == nullptr)
        return lang_table_bisect(handle, key.text);
    const std::uint32_t hash = lang_key_hash(key);
    const std::uint32_t tag_mask = ~index->slot_mask;
    std::uint32_t at = first_row(index, hash);
    while (const std::uint32_t row = index->rows[at]) {
        const lang_text_t *text = &handle->lang[row & index->slot_mask];
        if (((row ^ hash) & tag_mask) == 0 && std::strcmp(text->key, key.text) == 0)
            return text;
        at = (at + 1) & index->mask;
    }
    return nullptr;
}

const lang_text_t *lang_table_bisect(const lang_handle_t *handle, const char *key)
{
    const lang_text_t *table = handle->lang;
    if (table == nullptr)
        return nullptr;
    std::int32_t low = 0;
    std::int32_t high = handle->count;
    std::int32_t mid = high / 2;
    while (mid != low) {
        const int order = std::strcmp(table[mid].key, key);
        if (order == 0)
            return &table[mid];
        (order < 0 ? low : high) = mid;
        mid = low + (high - low) / 2;
    }
    return nullptr;
}

} // namespace zel
