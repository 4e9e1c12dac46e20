// The form of a text that a number takes.

#include "langlib/lang-plural.h"

#include "langlib/form-store.h"
#include "langlib/lang-load.h"
#include "langlib/lang-locale.h"
#include "langlib/lang-table.h"
#include "langlib/languages.h"
#include "langlib/plural-rule.h"

#include <cstring>
#include <iterator>

namespace {

// Returns the rule of a loaded handle's language, up to the end of its line in the table. Several
// threads may come here at once: all of them find the same.
std::string_view rule_of(const lang_handle_t *handle)
{
    const char *&known = zel::link_of(handle->index).plural;
    const char *rule = __atomic_load_n(&known, __ATOMIC_RELAXED);
    if (rule == nullptr) {
        zel::language_tag tag;
        zel::language_row row;
        const bool found = handle->language != nullptr &&
                           zel::read_language(handle->language, tag, row) && !row.plural.empty();
        // An empty line remembers that there is no rule, so that nobody looks for it again.
        rule = found ? row.plural.data() : "\n";
        __atomic_store_n(&known, rule, __ATOMIC_RELAXED);
    }
    return {rule, static_cast<std::size_t>(std::strchr(rule, '\n') - rule)};
}

// The handle of a chain in whose file the text lies, or null.
const lang_handle_t *home_of(const lang_handle_t *handle, const char *text)
{
    while (handle != nullptr && handle->index != nullptr) {
        if (zel::lang_store_holds(handle->index, text))
            return handle;
        handle = zel::link_of(handle->index).next;
    }
    return nullptr;
}

// The same with the texts that a reload has taken the place of: they live on.
const lang_handle_t *home_with_older(const lang_handle_t *handle, const char *text)
{
    const lang_handle_t *home = nullptr;
    for (; home == nullptr && handle != nullptr && handle->index != nullptr;
         handle = zel::link_of(handle->index).before)
        home = home_of(handle, text);
    return home;
}

// The rule that a text with so many forms is written for; empty for that of English. Home is the
// handle in whose file it lies, or null.
std::string_view rule_for(const lang_handle_t *handle, const lang_handle_t *home, const char *text,
                          std::size_t count)
{
    const bool is_item = home == nullptr || text[-1] == zel::stand_in_mark;
    if (is_item && count == 2)
        return {};
    return rule_of(home == nullptr ? handle : home);
}

constexpr std::uint64_t small = 1000;
constexpr std::uint64_t million = 1000000;

// Returns the smallest number that the rule gives the same form as this one. Of a large number most
// rules ask the last three digits and whether it is whole millions; one asks five digits.
std::uint64_t small_like(std::string_view rule, std::uint64_t size)
{
    if (size < small || rule.find("%100000=") != rule.npos)
        return size;
    return size % million == 0 ? million : small + size % small;
}

// Reading a rule takes longer than all else of a request: what was found is kept. The rules stand
// in one table, so half an address tells them apart.
std::size_t position_by(std::string_view rule, std::size_t count, std::int64_t number)
{
    constexpr std::uint64_t most = std::uint64_t{1} << 24;
    static std::uint64_t kept[1024];
    const auto bits = static_cast<std::uint64_t>(number);
    const std::uint64_t size = small_like(rule, number < 0 ? std::uint64_t{0} - bits : bits);
    if (size >= most || count >= 16)
        return zel::plural_form(rule, count, size);
    const auto address = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(rule.data()));
    const std::uint64_t key = std::uint64_t{address} << 28 | size << 4 | count;
    std::uint64_t &row = kept[(size ^ address) % std::size(kept)];
    const std::uint64_t found = __atomic_load_n(&row, __ATOMIC_RELAXED);
    if (found >> 4 == key)
        return found & 15;
    const std::size_t position = zel::plural_form(rule, count, size);
    __atomic_store_n(&row, key << 4 | position, __ATOMIC_RELAXED);
    return position;
}

bool has_rule(const lang_handle_t *handle)
{
    return __atomic_load_n(&handle->loaded, __ATOMIC_ACQUIRE) != 0 && handle->index != nullptr;
}

} // namespace

std::size_t zel::form_position(const asked_text &asked, std::size_t count, std::int64_t number)
{
    const bool known = asked.home->index != nullptr;
    return position_by(known ? rule_for(asked.home, asked.home, asked.text->value, count)
                             : std::string_view(),
                       count, number);
}

const char *lang_plural_of(lang_handle_t *handle, const char *text, std::int64_t number)
{
    if (text == nullptr)
        return "";
    const std::string_view all(text);
    const std::size_t count = zel::count_text_forms(all);
    if (count == 1)
        return text;
    handle = zel::newest_handle(handle);
    const std::size_t position =
        position_by(has_rule(handle) ? rule_for(handle, home_with_older(handle, text), text, count)
                                     : std::string_view(),
                    count, number);
    // The last form ends where the text ends, so it needs no copy.
    const std::string_view last = zel::text_form(all, count - 1);
    if (position + 1 == count)
        return last.data();
    const char *form = zel::kept_form(zel::text_form(all, position));
    return form == nullptr ? last.data() : form;
}

const char *lang_plural(const char *text, std::int64_t number)
{
    return lang_plural_of(nullptr, text, number);
}
