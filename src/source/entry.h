#pragma once

// The texts of a record: an entry holds a language's text as a list of strings, mostly one for each
// line. A null string counts as empty.

#include <string>
#include <string_view>

#include "source/model.h"
#include "support/text.h"

namespace zel {

inline std::string_view view_of(const char *text) { return or_empty(text); }

// The first entry of a language in an item's texts or comments, or null.
lang_entry_t *find_entry(GList *entries, const char *language);

// A text in one piece: appended, returned (empty for null), or looked at, copied into the buffer
// only where it is several strings.
void append_texts(std::string &out, GList *texts);
std::string text_of(const lang_entry_t *entry);
std::string_view look_at_text(GList *texts, std::string &buffer);

// Without the white space at its end, which the writer of sources leaves out.
std::string_view without_end(std::string_view text);

// What an item's translations are made from: the default language's text unless it is blank, else
// the item's name.
std::string reference_text(const LangSource &source, const item_t *item);

// Gives the entry that text, a string for each line.
void set_text(lang_entry_t *entry, std::string_view text);

// Makes the text the language's, in an entry that is appended where there is none.
void put_text(GList *&entries, const char *language, std::string_view text);

// The item's description; the writer of sources stores none as "none".
std::string_view description_of(const item_t *item);

} // namespace zel
