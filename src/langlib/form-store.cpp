#include "langlib/form-store.h"

#include "langlib/lang-table.h"

#include <cstring>
#include <functional>
#include <pthread.h>

namespace zel {

namespace {

// A form with its hash, so that a larger table is filled without hashing all texts again.
struct kept {
    std::size_t hash;
    std::size_t length;
    // the text follows, with its NUL
    const char *text() const { return reinterpret_cast<const char *>(this + 1); }
};

// Hash table with open addressing, at most half full; a null row is free.
struct form_table {
    lang_index *store; // holds the rows too; null before the first form
    const kept **rows;
    std::size_t size; // a power of two, or 0
    std::size_t count;
};

pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
form_table table;

const kept **row_of(const kept **rows, std::size_t size, std::size_t hash, std::string_view form)
{
    std::size_t at = hash & (size - 1);
    while (rows[at] != nullptr &&
           (rows[at]->hash != hash || std::string_view(rows[at]->text(), rows[at]->length) != form))
        at = (at + 1) & (size - 1);
    return &rows[at];
}

// Makes room for one more form. False without memory.
bool make_room()
{
    constexpr std::size_t first_size = 64;
    if (table.store == nullptr && (table.store = lang_store_new()) == nullptr)
        return false;
    if (table.count * 2 < table.size)
        return true;
    const std::size_t larger = table.size == 0 ? first_size : table.size * 2;
    // The old rows stay in the store until drop_forms: doubling bounds what they take.
    auto **rows =
        static_cast<const kept **>(lang_store_allocate(table.store, larger * sizeof(kept *)));
    if (rows == nullptr)
        return false;
    std::memset(rows, 0, larger * sizeof(kept *));
    for (std::size_t i = 0; i < table.size; ++i)
        if (const kept *one = table.rows[i])
            *row_of(rows, larger, one->hash, {one->text(), one->length}) = one;
    table.rows = rows;
    table.size = larger;
    return true;
}

const char *find_or_keep(std::string_view form)
{
    const std::size_t hash = std::hash<std::string_view>{}(form);
    // Before the search, whose result points into the rows that this may exchange.
    if (!make_room())
        return nullptr;
    const kept **row = row_of(table.rows, table.size, hash, form);
    if (*row == nullptr) {
        auto *made =
            static_cast<kept *>(lang_store_allocate(table.store, sizeof(kept) + form.size() + 1));
        if (made == nullptr)
            return nullptr;
        *made = {hash, form.size()};
        char *text = reinterpret_cast<char *>(made + 1);
        std::memcpy(text, form.data(), form.size());
        text[form.size()] = '\0';
        *row = made;
        ++table.count;
    }
    return (*row)->text();
}

} // namespace

const char *kept_form(std::string_view form)
{
    // Several threads may ask for the same form at once.
    pthread_mutex_lock(&lock);
    const char *text = find_or_keep(form);
    pthread_mutex_unlock(&lock);
    return text;
}

void drop_forms()
{
    // Takes no lock: no other thread is here at that time.
    lang_store_free(table.store);
    table = {};
}

} // namespace zel
