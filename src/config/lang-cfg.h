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
// store is open a lock file, the name followed by ".lock", stands beside the file.

#include <cstdint>
#include <cstdio>
#include <memory>

#include "lex/lex.h"
#include "support/guard.h"
#include "support/list.h"

// What a cfg_entry_t is; the second column is what its data points to.
enum {
    CFG_SECTION = 0, // list of the section's entries
    CFG_HEX = 1,     // std::uint64_t, written with its low 32 bits
    CFG_OCTAL = 2,   // std::uint64_t, likewise
    CFG_LONG = 3,    // std::int64_t; decimal, 0x hexadecimal or 0 octal in the file
    CFG_STR = 4,     // char *, owned: released when a value is read and with the store
    CFG_DOUBLE = 5,  // double
    CFG_VOID = 6     // the entry's own text, or null: a key that nobody bound
};

// Kinds of the tokens of a settings file; warnings name them.
enum {
    CFG_TOK_SECTION = 20001, // its text is the section's name
    CFG_TOK_ASSIGN = 20002,
    CFG_TOK_WORD = 20003,
    CFG_TOK_MINUS = 20004,
    CFG_TOK_EOL = 20005,
    CFG_TOK_EOF = 20006
};

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

// A section or a key.
struct cfg_entry_t {
    std::int32_t type;
    std::int32_t negative; // 1: the value in the file stood behind a minus sign
    char *name;            // owned; empty for the section of the top-level keys
    void *data;            // by type; a key without data is not written
};

struct lang_cfg_t {
    std::uint32_t version; // the top-level key "version"
    std::int32_t status;   // of the last open
    std::FILE *fp_cfg;     // while the file is read
    std::FILE *fp_lock;    // from open to close
    std::FILE *fp_tmp;     // while the file is written
    char *tmp;             // names, all owned: the file's followed by ".tmp" and ".lock",
    char *lock;
    char *name; // its file part without extension,
    char *path; // its directory or null,
    char *cfg;  // as given,
    char *file; // its file part
    zel_lex_buf_t *buf;
    zel_lex_t *lex;
    zel_list *sections;       // of cfg_entry_t, in the order of creation
    std::int64_t version_key; // what the key is bound to; version holds its low 32 bits
};

// An empty store with the key "version" bound; null for a null or empty name or without memory.
[[nodiscard]] lang_cfg_t *lang_cfg_new(const char *file);

// Binds a key (of the top level when section is null) to a variable of the type, which must
// outlive the store. A key that is bound already keeps its type and gets the new address; a key
// that only the file knew gets the type, and the variable its value. Without an address an unbound
// key is made. Returns 0.
int lang_cfg_add_entry(lang_cfg_t *store, const char *section, const char *key, int type,
                       void *address);

// Takes the lock and reads the file. With CFG_OPEN_LOCK it fails while another store has the file
// open. Without CFG_OPEN_CREATE a missing file is read as empty. Returns the new status.
int lang_cfg_open(lang_cfg_t *store, unsigned flags);

// Replaces the file: CFG_OK, CFG_NULL, CFG_BAD_STATUS, CFG_NOT_WRITTEN (the old file is untouched)
// or CFG_NOT_RENAMED.
int lang_cfg_write(lang_cfg_t *store);

// The number that a long or an unbound key holds, else the default. 1 without such a key, else 0.
int lang_cfg_get_long(lang_cfg_t *store, std::int64_t *result, std::int64_t fallback,
                      const char *section, const char *key);

// Closes the streams and deletes the lock file (unless the last open found it to be another's) and
// the temporary file. lang_cfg_del deletes the file too. 0, or CFG_NULL.
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

namespace zel {

// The entry of that name in a list of entries, or null; the same, made and appended if missing.
cfg_entry_t *cfg_find(zel_list *entries, const char *name);
cfg_entry_t *cfg_find_or_add(zel_list *&entries, const char *name, int type);

// A section's keys, in order.
inline zel_list *cfg_keys(const cfg_entry_t *section)
{
    return static_cast<zel_list *>(section->data);
}
// The key of a section, made without text if missing.
cfg_entry_t *cfg_key(cfg_entry_t *section, const char *name);

} // namespace zel
