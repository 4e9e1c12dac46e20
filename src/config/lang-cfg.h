#pragma once

// A store for settings files. An application binds variables to keys of sections; opening the
// store converts the file's values into them, writing prints every key from them. Keys that nobody
// bound are kept as text. The file, with its top-level keys first:
//
//   key=value          a number, or "text" in quotes with \ before a special character
//
//   [section]
//   key=-5
//
// A ";" where a key or a value could begin starts a comment up to the end of the line. While a
// store is open a lock file, the name followed by ".lock", stands beside the file. Neither is ever
// read or written through a link, and whatever has the lock's name is removed.

#include <cstdint>
#include <memory>

#include "config/lang-cfg-store.h"
#include "support/guard.h"

// Flags of lang_cfg_open.
enum : unsigned { CFG_OPEN_LOCK = 1, CFG_OPEN_CREATE = 2 };

// Results; the first four are also the status of a store.
enum {
    CFG_OK = 0,
    CFG_LOCKED = 1, // or the lock file cannot be created
    CFG_NOT_OPENED = 6,
    CFG_NOT_CREATED = 7,
    CFG_BAD_STATUS = 2, // writing after an open that failed
    CFG_NULL = 3,
    CFG_NOT_WRITTEN = 4,
    CFG_NOT_RENAMED = 10
};

// An empty store with the key "version" bound; null for a null or empty name or without memory.
[[nodiscard]] lang_cfg_t *lang_cfg_new(const char *file);

// Binds a key (of the top level when section is null) to a variable of the type, which must
// outlive the store. A key that is bound already keeps its type and gets the new address; a key
// that only the file knew gets the type, and the variable its value. Without an address an unbound
// key is made. The address of a CFG_VOID key is a text from malloc, which the key owns from then
// on. Returns 0.
int lang_cfg_add_entry(lang_cfg_t *store, const char *section, const char *key, int type,
                       void *address);

// Takes the lock and reads the file. With CFG_OPEN_LOCK it fails while another store has the file
// open. Without CFG_OPEN_CREATE a missing file is read as empty. Returns the new status. Standard
// error tells of a lock that cannot be made, a file that cannot be used (a link, a pipe, a folder),
// and one that ends inside a text, so that it may have been cut.
int lang_cfg_open(lang_cfg_t *store, unsigned flags);

// Replaces the file, by support/safe-file.h: CFG_OK, CFG_NULL, CFG_BAD_STATUS, CFG_NOT_WRITTEN or
// CFG_NOT_RENAMED. Unless it is CFG_OK the old file is untouched. A text that nobody bound is
// written so that it reads back as it is, in quotes where it must be.
int lang_cfg_write(lang_cfg_t *store);

// The number that a long or an unbound key holds, else the default. 1 without such a key, else 0.
int lang_cfg_get_long(lang_cfg_t *store, std::int64_t *result, std::int64_t fallback,
                      const char *section, const char *key);

// Closes the streams and deletes the lock file, unless it is known to be another's, and the
// temporary file. lang_cfg_del deletes the file too. 0, or CFG_NULL.
int lang_cfg_close(lang_cfg_t *store);
int lang_cfg_del(lang_cfg_t *store);

// Closes the store and gives it another file: 0; 1 for a null store or an empty name.
int lang_cfg_set_file_name(lang_cfg_t *store, const char *file);

// Releases the store, and the strings that bound variables point to, without closing it: a lock
// file stays behind. 0, or CFG_NULL.
int lang_cfg_free(lang_cfg_t *store);
using lang_cfg_guard = std::unique_ptr<lang_cfg_t, zel::release<lang_cfg_free>>;

// Lists the store on standard output and in the log. 0, or CFG_NULL.
int lang_cfg_print_all(lang_cfg_t *store);
