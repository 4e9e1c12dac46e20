#pragma once

// Compiling a language source into one file per language (*.lang, see langlib/compiled-file.h).

#include <cstdint>
#include <cstdio>
#include <string>

#include "source/model.h"

namespace zel {

struct compile_how {
    bool posnr = false;   // position numbers before the texts
    std::int64_t now = 0; // the time that the files bear
};

struct compile_answer {
    int code = 0;       // as split_file returns it
    std::string failed; // path of the first language file not made or written, or empty
    int error = 0;      // and errno
};

// Writes the file of every language definition, below the destination directory in a directory
// named after the language with "-edit" appended, or without one under the definition's file name.
// Only used items are written; the default language stands in for a missing one. Every file is
// written beside its place, and put there when all of them are complete: whoever loads meanwhile
// sees the old file or the new one. Where the system lets nobody put a file there, but write the
// old one, that is written. Of two definitions of one path the last one wins.
// Codes: 0 (also for a null source, which is logged); 1 when a language file cannot be created or
// written; then its old one stays, and the others are written all the same. Standard output names
// those that could not be written and the first one that could not be created; after that one it
// tells of no other that is or cannot be. Standard error has the causes. A definition that leads
// out of the destination counts as one that cannot be created.
compile_answer compile_source(LangSource *source, const char *destination, const compile_how &how);

} // namespace zel

// compile_source at the time of compiler/build-time.h, with lang_global's posnr.
int split_file(LangSource *source, const char *destination);

// Creates and opens the files of all definitions and writes their first line: 0, or -1 at the
// first one that cannot be opened. Reports each on standard output.
int open_lang_files(GList *langs, const char *destination);

// Closes every open stream of the definitions, which puts its file in place.
void close_lang_files(GList *langs);

// Writes the item's entry for a language (without regard to case), marked when it stands in as the
// default. Returns 1 when the item has none. An entry whose texts are all empty writes nothing.
int write_lang_entry_by_name(std::FILE *stream, const char *lang, item_t *item, int is_default);
