#pragma once

// Definitions of languages that words add, and the texts they give them.

#include <string>
#include <string_view>

#include "source/model.h"

namespace zel::kit {

// Whether it may be a language's name: a file is named after it.
bool is_language_name(const std::string &name);

// Whether both name the same language: compiled files are found by their language whatever the case
// of its ASCII letters.
bool is_same_language(const char *a, const char *b);

// The definition of that language, or null.
lang_t *find_definition(const LangSource *source, const char *name);

// Adds the language's definition; its compiled file bears its name.
lang_t *add_definition(LangSource *source, const std::string &name);

// The first entry of that language, or null.
lang_entry_t *find_text(GList *entries, const char *language);

// Makes the text that of the language, in place of what the item has: a string for each of its
// lines.
void set_text(item_t *item, const char *language, std::string_view text);

// The text to translate: the default language's, else the item's name.
std::string reference_text(const item_t *item, const char *default_language);

} // namespace zel::kit
