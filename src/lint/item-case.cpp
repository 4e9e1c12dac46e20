#include "lint/item-case.h"

#include "langlib/languages.h"

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

bool is_variant(std::string_view name, std::string_view reference)
{
    language_tag own;
    language_tag other;
    language_row row;
    const auto part = [](const language_tag &tag) {
        return tag.view().substr(0, tag.view().find_first_of("_@"));
    };
    if (read_language(name, own, row) && read_language(reference, other, row) &&
        part(own) == part(other))
        return true;
    const auto is_end = [](std::string_view text, std::size_t at) {
        return at >= text.size() || !is_ascii_letter(text[at]);
    };
    const std::size_t at = name.find(reference);
    return !reference.empty() && at != std::string_view::npos && is_end(name, at - 1) &&
           is_end(name, at + reference.size());
}

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
