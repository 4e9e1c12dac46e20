#include "lint/item-case.h"

#include "source/entry.h"
#include "support/text.h"

#include <cstring>

namespace zel::lint {

namespace {

std::uint32_t hash_in_any_case(const char *name)
{
    std::uint32_t hash = 0;
    for (const char c : name_of(name))
        hash = hash * 31 + static_cast<unsigned char>(g_ascii_tolower(c));
    return hash;
}

} // namespace

bool same_language(const char *a, const char *b)
{
    // Nearly always they are written alike. Not strcasecmp: in a Turkish locale "I" is no "i".
    return std::strcmp(or_empty(a), or_empty(b)) == 0 ||
           compare_nocase(or_empty(a), or_empty(b)) == 0;
}

std::string_view first_text(const item_t *item, const char *language, std::string &buffer)
{
    for (const lang_entry_t *entry : each<lang_entry_t>(item->langs))
        if (same_language(entry->lang, language))
            return look_at_text(entry->texts, buffer);
    return {};
}

void language_list::push_back(const language &one)
{
    // Of two definitions of a language the first one counts.
    if (find(one.name, size()) == size())
        names_.add(hash_in_any_case(one.name), static_cast<std::uint32_t>(size()));
    all_.push_back(one);
}

std::size_t language_list::find(const char *name, std::size_t guess) const
{
    if (guess < size() && same_language(all_[guess].name, name))
        return guess;
    const std::uint32_t found = names_.find(
        hash_in_any_case(name), [&](std::uint32_t i) { return same_language(all_[i].name, name); });
    return found == hash_index::none ? size() : found;
}

} // namespace zel::lint
