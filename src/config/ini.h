#pragma once

// The editor's settings between runs, on the store of config/lang-cfg.h.

#include <array>
#include <cstdint>
#include <memory>

#include "config/lang-cfg.h"

struct ini_t {
    lang_cfg_t *store;
    char *languageFile;  // [language] carried from the file to the file
    char *dstDir;        // [language] export directory, or null: asked for at the first export
    std::int32_t main_x; // [mainWin] where the main window stood last and its size
    std::int32_t main_y;
    std::int32_t main_w;
    std::int32_t main_h;
    std::int32_t define_x; // [defineWin] where the language dialog stood last
    std::int32_t define_y;
    std::array<std::int64_t, 6> numbers; // what the keys of the six fields are bound to
    std::int64_t spelling;               // [editor] whether spelling is checked; see below
    std::array<char *, 2>
        below; // [editor] languages shown below the translations, or null; see below
};

// The process's settings, null while there are none.
extern ini_t *ini;

// Settings with their first values, bound to a file that is not read yet; null for a bad name or
// without memory.
[[nodiscard]] ini_t *ini_new(const char *file);

// Takes the values from the file, except dstDir, which becomes a copy of lang_global's
// default_dst_dir; when the file cannot be read the first values stay and ini_write writes
// nothing. 0; 1 for null.
int ini_read(ini_t *settings);

// Whether spelling is checked; yes without settings. The key is in the file once it has been set.
bool ini_spelling(const ini_t *settings);
void ini_set_spelling(ini_t *settings, bool on);
// The language whose text is shown below the first (0) or second (1) translation; null for none and
// without settings. Setting takes a copy; the key is in the file once it has been set.
const char *ini_below(const ini_t *settings, std::size_t which);
void ini_set_below(ini_t *settings, std::size_t which, const char *lang);

// The folder into which each save of the source also compiles its languages, as "exportOnSave" of
// [editor] names it; null for none and without settings. It is only read: the key is in the file
// when the user has put it there.
const char *ini_export_on_save(const ini_t *settings);

// Writes the file. 0, also when that fails; 1 for null.
int ini_write(ini_t *settings);

// Deletes the lock file and releases the settings with their strings. Null is ignored.
void ini_free(ini_t *settings);
using ini_guard = std::unique_ptr<ini_t, zel::release<ini_free>>;
