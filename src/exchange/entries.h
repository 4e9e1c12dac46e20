#pragma once

// Texts of a source's records in one piece, and put back.

#include <string>
#include <string_view>

#include "source/model.h"

namespace zel::exchange {

inline std::string_view or_empty(const char *text) { return text == nullptr ? "" : text; }

// The item's description; the writer of sources stores none as "none".
std::string_view description_of(const item_t *item);

// The item's first entry in a language, or null.
lang_entry_t *find_entry(GList *entries, const char *language);

// A text in one piece; a null list is an empty text.
void append_lines(std::string &out, GList *lines);

// The default language's text, else the item's name.
std::string reference_text(const LangSource &source, const item_t *item);

// Gives the entry that text: a string for each line, as the editor has them.
void set_text(lang_entry_t *entry, std::string_view text);

// Makes the text the language's, in an entry that is made where there is none.
void put_text(GList *&entries, const char *language, std::string_view text);

} // namespace zel::exchange
