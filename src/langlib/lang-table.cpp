#include "langlib/lang-table.h"

#include "support/guard.h"
#include "support/list.h"

#include <bit>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

namespace {

// A key of the table. The hash saves most comparisons.
struct index_row {
    std::uint32_t hash;
    std::int32_t slot; // 0: free
    const char *key;
};

} // namespace

// Open addressing with linear steps; at most half full.
struct lang_index {
    std::uint32_t mask; // rows minus one, a power of two
    index_row *rows;
};

namespace {

void free_memory(void *memory) noexcept
{
    std::free(memory);
}

template <class T>
using array_guard = std::unique_ptr<T[], zel::release<free_memory>>;

template <class T>
array_guard<T> new_array(std::size_t size)
{
    return array_guard<T>(static_cast<T *>(std::calloc(size, sizeof(T))));
}

// ---- Sorting ------------------------------------------------------------------------------------

// An entry while it is sorted: eight bytes of its key, in the order of strcmp, and its place in the
// file. Keys of a group begin alike; where eight bytes do not tell entries apart the next eight do.
struct sort_row {
    std::uint64_t bytes;
    std::uint32_t place;
};

constexpr std::size_t step = sizeof(sort_row::bytes);
constexpr std::size_t few_rows = 8;      // compared whole
constexpr std::size_t deep_bytes = 4096; // from here on as well, so that the recursion ends

bool before(const sort_row &a, const sort_row &b)
{
    return a.bytes != b.bytes ? a.bytes < b.bytes : a.place < b.place;
}

bool ends_key(std::uint64_t bytes)
{
    return (bytes & 0xFF) == 0;
}

// Eight bytes of a key as a number, the first one highest; zeros behind its end.
std::uint64_t key_bytes(const char *key)
{
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < step; ++i) {
        bytes = bytes << 8 | static_cast<unsigned char>(*key);
        if (*key != '\0')
            ++key;
    }
    return bytes;
}

// Sorts rows whose keys agree in the first "depth" bytes.
void sort_rows(std::span<sort_row> rows, const lang_text_t *texts, std::size_t depth)
{
    if (rows.size() <= few_rows || depth >= deep_bytes) {
        std::sort(rows.begin(), rows.end(), [texts, depth](const sort_row &a, const sort_row &b) {
            const int order = std::strcmp(texts[a.place].key + depth, texts[b.place].key + depth);
            return order != 0 ? order < 0 : a.place < b.place;
        });
        return;
    }
    for (sort_row &row : rows)
        row.bytes = key_bytes(texts[row.place].key + depth);
    if (!std::is_sorted(rows.begin(), rows.end(), before))
        std::sort(rows.begin(), rows.end(), before);
    for (std::size_t first = 0; first < rows.size();) {
        std::size_t last = first + 1;
        while (last < rows.size() && rows[last].bytes == rows[first].bytes)
            ++last;
        if (last - first > 1 && !ends_key(rows[first].bytes))
            sort_rows(rows.subspan(first, last - first), texts, depth + step);
        first = last;
    }
}

// The entries into the table's slots, in reading order and then sorted.
bool fill_table(std::span<lang_text_t> slots, const zel_list *entries)
{
    const auto texts = new_array<lang_text_t>(slots.size() + 1);
    const auto rows = new_array<sort_row>(slots.size() + 1);
    if (!texts || !rows)
        return false;
    for (std::uint32_t i = 0; i < slots.size(); ++i, entries = entries->next) {
        texts[i] = *static_cast<const lang_text_t *>(entries->data);
        rows[i].place = i;
    }
    sort_rows({rows.get(), slots.size()}, texts.get(), 0);
    for (std::size_t i = 0; i < slots.size(); ++i)
        slots[i] = texts[rows[i].place];
    return true;
}

// ---- Index --------------------------------------------------------------------------------------

// So many rows in a row are no accident: such a file is searched without an index.
constexpr std::uint32_t longest_walk = 128;

std::uint64_t mix(std::uint64_t a, std::uint64_t b)
{
    __extension__ using wide = unsigned __int128;
    const wide product = static_cast<wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

// Reads the key in words of eight bytes; the last one holds zeros behind the end.
std::uint32_t key_hash(const zel::lang_key &key)
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

void free_index(lang_index *index) noexcept
{
    if (index == nullptr)
        return;
    std::free(index->rows);
    std::free(index);
}

using index_guard = std::unique_ptr<lang_index, zel::release<free_index>>;

lang_index *new_index(std::size_t keys)
{
    index_guard index(static_cast<lang_index *>(std::calloc(1, sizeof(lang_index))));
    if (!index)
        return nullptr;
    const std::size_t size = std::bit_ceil(keys * 2 + 1);
    index->mask = static_cast<std::uint32_t>(size - 1);
    index->rows = static_cast<index_row *>(std::calloc(size, sizeof(index_row)));
    return index->rows == nullptr ? nullptr : index.release();
}

// False when the index holds too many keys of the same hash.
bool enter(lang_index *index, const lang_text_t *table, std::int32_t slot)
{
    const char *key = table[slot].key;
    const std::uint32_t hash = key_hash(zel::lang_key(key));
    std::uint32_t at = hash & index->mask;
    for (std::uint32_t walked = 0; index->rows[at].slot != 0; ++walked) {
        if (walked == longest_walk)
            return false;
        at = (at + 1) & index->mask;
    }
    index->rows[at] = {hash, slot, key};
    return true;
}

// Null when there is no memory for it, or a bisection serves better.
lang_index *build_index(const lang_handle_t *handle)
{
    const std::int32_t end = handle->count - 1;
    index_guard index(new_index(static_cast<std::size_t>(end)));
    if (!index)
        return nullptr;
    const lang_text_t *table = handle->lang;
    for (std::int32_t slot = 1; slot < end;) {
        std::int32_t next = slot + 1;
        while (next < end && std::strcmp(table[next].key, table[slot].key) == 0)
            ++next;
        // Of several equal keys the one that a bisection reaches.
        std::int32_t answers = slot;
        if (next - slot > 1)
            answers =
                static_cast<std::int32_t>(zel::lang_table_bisect(handle, table[slot].key) - table);
        // No request forms a longer key.
        if (std::strlen(table[slot].key) <= zel::lang_key::limit &&
            !enter(index.get(), table, answers))
            return nullptr;
        slot = next;
    }
    return index.release();
}

char no_text[] = "";

} // namespace

namespace zel {

int lang_table_build(lang_handle_t *handle, zel_list *entries)
{
    constexpr std::size_t slots_beside = 4; // two sentinels, two that stay zero
    const auto count = static_cast<std::size_t>(zel_list_count(entries));
    if (count > INT_MAX - slots_beside)
        return -1;
    auto table = new_array<lang_text_t>(count + slots_beside);
    if (!table || !fill_table({table.get() + 1, count}, entries))
        return -1;
    table[0].key = table[0].value = no_text;
    table[count + 1].key = table[count + 1].value = no_text;
    handle->lang = table.release();
    handle->count = static_cast<std::int32_t>(count + 2);
    handle->index = build_index(handle);
    return 0;
}

void lang_table_free(lang_handle_t *handle)
{
    free_index(handle->index);
    std::free(handle->lang);
    handle->index = nullptr;
    handle->lang = nullptr;
    handle->count = 0;
}

const lang_text_t *lang_table_find(const lang_handle_t *handle, const lang_key &key)
{
    const lang_index *index = handle->index;
    if (index == nullptr)
        return lang_table_bisect(handle, key.text);
    const std::uint32_t hash = key_hash(key);
    std::uint32_t at = hash & index->mask;
    for (; index->rows[at].slot != 0; at = (at + 1) & index->mask)
        if (index->rows[at].hash == hash && std::strcmp(index->rows[at].key, key.text) == 0)
            return &handle->lang[index->rows[at].slot];
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
