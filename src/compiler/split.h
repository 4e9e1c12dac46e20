#pragma once

// Compiling a language source into one file per language (*.lang, see langlib/compiled-file.h).

#include <cstdio>

#include "source/model.h"

// Writes the file of every language definition, below the destination directory in a directory
// named after the language with "-edit" appended, or without one under the definition's file name.
// Only used items are written; the default language stands in for a missing one. Returns 0 (also
// for a null source, which is logged), or 1 when a language file cannot be created.
int split_file(LangSource *source, const char *destination);

// Creates and opens the files of all definitions and writes their first line: 0, or -1 at the
// first one that cannot be opened. Reports each on standard output.
int open_lang_files(GList *langs, const char *destination);

// Closes every open stream of the definitions.
void close_lang_files(GList *langs);

// Writes the item's entry for a language (without regard to case), marked when it stands in as the
// default. Returns 1 when the item has none. An entry whose texts are all empty writes nothing.
int write_lang_entry_by_name(std::FILE *stream, const char *lang, item_t *item, int is_default);
