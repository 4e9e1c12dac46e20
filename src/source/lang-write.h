#pragma once

// Writing a language source file.

#include "source/model.h"

// Replaces the file at the path by the source and keeps the old one as
// path-YYYY-MM-DD-HH-MM-SS.bak. The text goes through "lang.tmp" in the current directory and is on
// the disk, whole, before the old file is touched. Sets the source's mtime. With only_used, items
// that are not used are left out; with lang_global's save_selected_only and both output languages,
// all other languages. Results, messages on standard output: 0 success (also for a null source); 1
// the old file cannot be moved to its backup name, or lang.tmp not to the path; -1 lang.tmp cannot
// be created or there is no room for the text.
int lang_write_file(const char *path, LangSource *source);
