#include "langlib/lang-symbols.h"

#include "support/misc-error.h"
#include "support/string-copy.h"

#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

zel_list *lang_symbols;

namespace {

constexpr std::size_t longest_name = 33;

// Finds the symbols of a list by their names, up to one of its nodes; those behind that node are
// searched one by one. Without the index the search for a name, and for the end, would walk the
// list for every symbol that is set. All bytes 0 is the empty index.
class symbol_index {
public:
    void release() { std::free(slots_); }

    lang_sym_t *find(std::string_view name) const { return size_ == 0 ? nullptr : *slot_of(name); }

    zel_list *last() const { return last_; }

    // Of several symbols of one name the first one counts. False without memory.
    bool add(zel_list *node)
    {
        auto *symbol = static_cast<lang_sym_t *>(node->data);
        last_ = node;
        if (symbol->name == nullptr)
            return true;
        if (count_ + count_ / 2 >= size_ && !grow())
            return false;
        if (lang_sym_t **slot = slot_of(symbol->name); *slot == nullptr) {
            *slot = symbol;
            ++count_;
        }
        return true;
    }

private:
    // Where the symbol of that name is, or would be.
    lang_sym_t **slot_of(std::string_view name) const
    {
        std::size_t at = std::hash<std::string_view>{}(name) & (size_ - 1);
        while (slots_[at] != nullptr && name != slots_[at]->name)
            at = (at + 1) & (size_ - 1);
        return &slots_[at];
    }

    bool grow()
    {
        const std::size_t larger = size_ == 0 ? 16 : 2 * size_;
        auto **grown = static_cast<lang_sym_t **>(std::calloc(larger, sizeof(lang_sym_t *)));
        if (grown == nullptr)
            return false;
        const std::span old(std::exchange(slots_, grown), std::exchange(size_, larger));
        for (lang_sym_t *symbol : old)
            if (symbol != nullptr)
                *slot_of(symbol->name) = symbol;
        std::free(old.data());
        return true;
    }

    lang_sym_t **slots_; // open addressing, at most two thirds in use; null is free
    std::size_t size_;   // a power of two, or 0
    std::size_t count_;
    zel_list *last_;
};

// A symbol as it is kept: the first one of a list has the list's index.
struct symbol_record {
    lang_sym_t symbol;
    symbol_index *index; // null where there was no memory for it
};

symbol_index *&index_of(const zel_list *symbols)
{
    return static_cast<symbol_record *>(symbols->data)->index;
}

void drop_index(symbol_index *&index)
{
    if (index != nullptr)
        index->release();
    std::free(std::exchange(index, nullptr));
}

// Makes the index cover the whole list, where there is memory for it.
void cover(zel_list *symbols)
{
    symbol_index *&index = index_of(symbols);
    if (index == nullptr)
        index = static_cast<symbol_index *>(std::calloc(1, sizeof(symbol_index)));
    if (index == nullptr)
        return;
    zel_list *node = index->last() == nullptr ? symbols : index->last()->next;
    for (; node != nullptr; node = node->next)
        // Half an index would hide a symbol, so without memory there is none.
        if (!index->add(node))
            return drop_index(index);
}

void free_symbol(void *data) noexcept
{
    auto *record = static_cast<symbol_record *>(data);
    std::free(record->symbol.name);
    std::free(record->symbol.value);
    drop_index(record->index);
    std::free(record);
}

using symbol_guard = std::unique_ptr<symbol_record, zel::release<free_symbol>>;

// The first symbol of that name, or null.
lang_sym_t *find_symbol(const zel_list *symbols, std::string_view name)
{
    if (const symbol_index *index = symbols == nullptr ? nullptr : index_of(symbols)) {
        if (lang_sym_t *found = index->find(name))
            return found;
        symbols = index->last()->next;
    }
    for (; symbols != nullptr; symbols = symbols->next) {
        auto *symbol = static_cast<lang_sym_t *>(symbols->data);
        if (symbol->name != nullptr && name == symbol->name)
            return symbol;
    }
    return nullptr;
}

const char *find_value(zel_list *symbols, std::string_view name)
{
    // A symbol of the caller's list hides the system's.
    const lang_sym_t *symbol = find_symbol(symbols, name);
    if (symbol != nullptr && symbol->value != nullptr)
        return symbol->value;
    zel::lang_symbols_make();
    symbol = find_symbol(__atomic_load_n(&lang_symbols, __ATOMIC_ACQUIRE), name);
    return symbol == nullptr ? nullptr : symbol->value;
}

bool is_name_char(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// What the "%" at the start of the text begins: the length up to where scanning goes on, and the
// value that stands for it; without one it is text.
struct reference {
    std::size_t length;
    const char *value;
};

reference read_reference(zel_list *symbols, std::string_view text)
{
    std::size_t end = 1;
    while (end < text.size() && end <= longest_name && is_name_char(text[end]))
        ++end;
    if (end == text.size())
        return {end, nullptr};
    if (text[end] != '%')
        return {end + 1, nullptr};
    const char *value = find_value(symbols, text.substr(1, end - 1));
    // The closing "%" of an unknown name may open the next reference.
    return value == nullptr ? reference{end, nullptr} : reference{end + 1, value};
}

// Hands the pieces of the substituted text to the function, in order.
template <class Emit>
void substitute(zel_list *symbols, std::string_view text, Emit &&emit)
{
    while (!text.empty()) {
        const std::size_t percent = std::min(text.find('%'), text.size());
        emit(text.substr(0, percent));
        text.remove_prefix(percent);
        if (text.empty())
            break;
        const reference found = read_reference(symbols, text);
        emit(found.value == nullptr ? text.substr(0, found.length) : std::string_view(found.value));
        text.remove_prefix(found.length);
    }
}

} // namespace

namespace zel {

void lang_symbols_make()
{
    zel_list *none = nullptr;
    if (__atomic_load_n(&lang_symbols, __ATOMIC_ACQUIRE) != nullptr)
        return;
    zel_list *made = lang_sym_set(nullptr, "PERCENT", "%", LANG_SYM_SYSTEM);
    // Another thread may have been quicker: its list stays.
    if (!__atomic_compare_exchange_n(&lang_symbols, &none, made, false, __ATOMIC_ACQ_REL,
                                     __ATOMIC_ACQUIRE))
        lang_sym_free(made);
}

void lang_symbols_drop()
{
    lang_sym_free(lang_symbols);
    lang_symbols = nullptr;
}

} // namespace zel

zel_list *lang_sym_set(zel_list *symbols, const char *name, const char *value, std::int32_t type)
{
    if (type == 0)
        type = LANG_SYM_APP;
    // Copied first: it may be the value that the symbol has now.
    zel::string_guard value_copy(zel_strdup(value));
    if (!zel::is_copy(value_copy.get(), value))
        return symbols;
    if (lang_sym_t *known = name == nullptr ? nullptr : find_symbol(symbols, name)) {
        zel::replace_string(known->value, value_copy.release());
        known->type = type;
        return symbols;
    }
    symbol_guard record(static_cast<symbol_record *>(std::calloc(1, sizeof(symbol_record))));
    if (!record)
        return symbols;
    record->symbol = {type, zel_strdup(name), value_copy.release()};
    const symbol_index *index = symbols == nullptr ? nullptr : index_of(symbols);
    zel::list_end end(symbols, index == nullptr ? nullptr : index->last());
    if (!zel::is_copy(record->symbol.name, name) || !end.append(record.get()))
        return symbols;
    static_cast<void>(record.release());
    cover(end.head);
    return end.head;
}

const char *lang_sym_get(zel_list *symbols, const char *name)
{
    return name == nullptr ? nullptr : find_value(symbols, name);
}

void lang_sym_free(zel_list *symbols) { zel_list_free_full(symbols, free_symbol); }

zel_list *lang_sym_system_set(const char *name, const char *value)
{
    zel::lang_symbols_make();
    if (lang_symbols != nullptr) // a list without PERCENT would never get it
        lang_symbols = lang_sym_set(lang_symbols, name, value, LANG_SYM_SYSTEM);
    return lang_symbols;
}

char *_lang_rep_sym(zel_list *symbols, const char *text)
{
    if (text == nullptr || *text == '\0')
        return nullptr;
    // Two walks, the first of which only measures, spare a growing buffer.
    std::size_t size = 1;
    substitute(symbols, text, [&size](std::string_view piece) { size += piece.size(); });
    char *result = static_cast<char *>(std::malloc(size));
    if (result == nullptr) {
        _zel_fatal("lang", __LINE__, "Not enough memory");
        return nullptr;
    }
    char *end = result;
    substitute(symbols, text, [&end](std::string_view piece) {
        std::memcpy(end, piece.data(), piece.size());
        end += piece.size();
    });
    *end = '\0';
    return result;
}

char *_lang_sym_get_str(zel_list *symbols, const char *group, const char *item, const char *file,
                        int line)
{
    const char *text = _lang_get_string(group, item, file, line);
    return symbols == nullptr ? zel_strdup(text) : _lang_rep_sym(symbols, text);
}
