#include "editor/table/w_tab_filter.h"

#include "source/misc.h"
#include "support/text.h"

#include <cstring>

namespace {

constexpr std::size_t name_size = 8192; // bytes of a name that are searched, and the NUL

void copy_lower(char *out, std::size_t size, const char *text)
{
    std::size_t length = 0;
    for (; length + 1 < size && text[length] != '\0'; ++length)
        out[length] = static_cast<char>(zel::lower(text[length]));
    out[length] = '\0';
}

bool name_matches(const zel::tab_filter &filter, const item_t *item)
{
    // Deliberate: an item without a name is found by every word.
    if (item->name == nullptr)
        return true;
    char name[name_size];
    copy_lower(name, sizeof name, item->name);
    for (const char *word : zel::each<char>(filter.words)) {
        if (std::strstr(name, word) == nullptr)
            return false;
    }
    return true;
}

// The words are in lower case already; the search puts the lines of the text into it.
bool entry_matches(const zel::tab_filter &filter, lang_entry_t *entry)
{
    for (const char *word : zel::each<char>(filter.words)) {
        if (misc_search_in_lang_entry(entry, word) == 0)
            return false;
    }
    return true;
}

} // namespace

namespace zel {

GList *tab_search_words(const char *text)
{
    GList *words = nullptr;
    list_tail tail(words);
    gchar **parts = g_strsplit_set(text, " \t", -1);
    for (gchar **part = parts; *part != nullptr; ++part) {
        copy_lower(*part, std::strlen(*part) + 1, *part);
        tail.append(*part); // the words move from the vector into the list
    }
    g_free(parts);
    return words;
}

void free_search_words(GList *words) { g_list_free_full(words, g_free); }

std::vector<std::uint32_t> tab_filtered_rows(const tab_rows &rows, const tab_filter &filter,
                                             const assist::folded_words &folded,
                                             const std::function<bool(std::uint32_t row)> &hidden)
{
    const auto matching = [&](const auto &matches) {
        std::vector<std::uint32_t> shown;
        shown.reserve(rows.rows.size());
        for (std::uint32_t row = 0; row < rows.rows.size(); ++row)
            // hidden is asked last: its answer may cost the judging of all rows.
            if (matches(rows.rows[row].item) && !hidden(row))
                shown.push_back(row);
        return shown;
    };
    std::vector<std::uint32_t> shown =
        matching([&](item_t *item) { return filter_func(filter, item); });
    if (!shown.empty() || folded.empty())
        return shown;
    // The words are searched in the folded form now; the other filters stay.
    tab_filter others = filter;
    others.words = nullptr;
    return matching([&](item_t *item) {
        return filter_func(others, item) && folded.are_in(item, filter.lang1, filter.lang2);
    });
}

} // namespace zel

bool filter_func(const zel::tab_filter &filter, item_t *item)
{
    // The cheapest look first; the words cost most.
    if (item->ctime < filter.since)
        return false;
    if (filter.words == nullptr && !filter.only_untranslated)
        return true;
    lang_entry_t *entry1 = misc_select_lang_entry(item, filter.lang1);
    lang_entry_t *entry2 = misc_select_lang_entry(item, filter.lang2);
    const bool found = filter.words == nullptr || name_matches(filter, item) ||
                       entry_matches(filter, entry1) || entry_matches(filter, entry2);
    // The filters add up: the words first, then the missing text.
    if (!found || !filter.only_untranslated)
        return found;
    return misc_search_empty_in_lang_entry(entry1) != 0 ||
           misc_search_empty_in_lang_entry(entry2) != 0;
}
