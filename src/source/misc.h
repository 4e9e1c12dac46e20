#pragma once

// Small operations on items' texts that several subsystems share.

#include "source/model.h"

// The first entry of the item's translations in that language, or null.
lang_entry_t *misc_select_lang_entry(item_t *item, const char *lang);

// Names (not copied) of the first two languages being edited; either may be null. Returns 0, or 1
// and changes nothing when an argument is null.
int misc_select_edit_lang(LangSource *source, const char **first, const char **second);

// Cuts white space off the end of the text: off its last line, and when that is empty off the line
// before. Empty lines stay.
void misc_remove_empty_lines(lang_entry_t *entry);

// 1 when a line (its first 4191 bytes), in lower case, holds the needle; 0 also for null.
int misc_search_in_lang_entry(lang_entry_t *entry, const char *needle);

// 1 when the entry is null, has no lines, or only white space.
int misc_search_empty_in_lang_entry(lang_entry_t *entry);

// Logs and prints a note when the text is not valid UTF-8; file and label may be null.
void lang_check_utf8(const char *file, int position, const char *label, const char *text);

// 1 when the process runs as the administrator.
int LangIsUserAdmin();
