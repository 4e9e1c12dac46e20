// The form of a text that a number takes.

#include "langlib/lang-locale.h"

#include "langlib/form-store.h"
#include "langlib/lang-load.h"
#include "langlib/lang-table.h"
#include "langlib/languages.h"
#include "langlib/plural-rule.h"

#include <cstring>

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
    return {rule, std::strcspn(rule, "\n")};
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

// The rule that a text with so many forms is written for; empty for that of English.
std::string_view rule_for(const lang_handle_t *handle, const char *text, std::size_t count)
{
    if (__atomic_load_n(&handle->loaded, __ATOMIC_ACQUIRE) == 0 || handle->index == nullptr)
        return {};
    const lang_handle_t *home = home_of(handle, text);
    const bool is_item = home == nullptr || text[-1] == zel::stand_in_mark;
    if (is_item && count == 2)
        return {};
    return rule_of(home == nullptr ? handle : home);
}

} // namespace

const char *lang_plural_of(lang_handle_t *handle, const char *text, std::int64_t number)
{
    if (text == nullptr)
        return "";
    const std::string_view all(text);
    const std::size_t count = zel::count_text_forms(all);
    if (count == 1)
        return text;
    const auto bits = static_cast<std::uint64_t>(number);
    const std::size_t position =
        zel::plural_form(rule_for(handle == nullptr ? &lang : handle, text, count), count,
                         number < 0 ? std::uint64_t{0} - bits : bits);
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
