#pragma once

// Which items the table shows: the words of the search field, the untranslated filter and the
// what's-new time. What is the same for all rows is prepared once.

#include <glib.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "assist/fold.h"
#include "editor/table/w_tab_model.h"
#include "source/model.h"

namespace zel {

struct tab_filter {
    GList *words;      // of char *, lower case; owned by the caller
    const char *lang1; // the two shown languages, or null
    const char *lang2;
    bool only_untranslated; // only items that lack a text in one of them
    std::int64_t since;     // items older than this are hidden
};

// The words of a search text, split at blanks and tabs, in lower case; two separators in a row give
// an empty word. Null for an empty text.
[[nodiscard]] GList *tab_search_words(const char *text);
void free_search_words(GList *words);

// The numbers of the rows that the filter lets through and nothing else hides. When the search by
// bytes finds none, upper and lower case of all scripts count as equal.
[[nodiscard]] std::vector<std::uint32_t>
tab_filtered_rows(const tab_rows &rows, const tab_filter &filter,
                  const assist::folded_words &folded,
                  const std::function<bool(std::uint32_t row)> &hidden);

} // namespace zel

// Whether an item is shown: every word stands in its name, or every word in its first language, or
// every word in its second.
bool filter_func(const zel::tab_filter &filter, item_t *item);
