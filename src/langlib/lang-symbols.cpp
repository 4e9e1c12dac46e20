#include "langlib/lang-symbols.h"

#include "support/misc-error.h"
#include "support/string-copy.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

zel_list *lang_symbols;

namespace {

constexpr std::size_t longest_name = 33;

void free_symbol(void *data) noexcept
{
    auto *symbol = static_cast<lang_sym_t *>(data);
    std::free(symbol->name);
    std::free(symbol->value);
    std::free(symbol);
}

using symbol_guard = std::unique_ptr<lang_sym_t, zel::release<free_symbol>>;

// The first symbol of that name, or null.
lang_sym_t *find_symbol(zel_list *symbols, std::string_view name)
{
    for (; symbols != nullptr; symbols = symbols->next) {
        auto *symbol = static_cast<lang_sym_t *>(symbols->data);
        if (symbol->name != nullptr && name == symbol->name)
            return symbol;
    }
    return nullptr;
}

const char *find_value(zel_list *symbols, std::string_view name)
{
    const lang_sym_t *symbol = find_symbol(symbols, name);
    if (symbol != nullptr && symbol->value != nullptr)
        return symbol->value;
    zel::lang_symbols_make();
    symbol = find_symbol(lang_symbols, name);
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
    if (lang_symbols == nullptr)
        lang_symbols = lang_sym_set(nullptr, "PERCENT", "%", LANG_SYM_SYSTEM);
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
    if (lang_sym_t *known = name == nullptr ? nullptr : find_symbol(symbols, name)) {
        zel::replace_string(known->value, zel_strdup(value));
        known->type = type;
        return symbols;
    }
    symbol_guard symbol(static_cast<lang_sym_t *>(std::calloc(1, sizeof(lang_sym_t))));
    if (!symbol)
        return symbols;
    symbol->type = type;
    symbol->name = zel_strdup(name);
    symbol->value = zel_strdup(value);
    zel::list_end end(symbols);
    if (end.append(symbol.get()))
        static_cast<void>(symbol.release());
    return end.head;
}

const char *lang_sym_get(zel_list *symbols, const char *name)
{
    return name == nullptr ? nullptr : find_value(symbols, name);
}

void lang_sym_free(zel_list *symbols) { zel_list_free_full(symbols, free_symbol); }

zel_list *lang_sym_system_set(const char *name, const char *value)
{
    lang_symbols = lang_sym_set(lang_symbols, name, value, LANG_SYM_SYSTEM);
    return lang_symbols;
}

char *_lang_rep_sym(zel_list *symbols, const char *text)
{
    if (text == nullptr || *text == '\0')
        return nullptr;
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
