#pragma once

// The records of a settings store and finding entries in them; what is done with a store is in
// config/lang-cfg.h.

#include <cstdint>
#include <cstdio>

#include "lex/lex.h"
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

// A section or a key.
struct cfg_entry_t {
    std::int32_t type;
    std::int32_t negative; // 1: the value in the file stood behind a minus sign
    char *name;            // owned; empty for the section of the top-level keys
    void *data;            // by type; a key without data is not written
    zel_list *last;        // of a section: the node of its last entry
};

namespace zel {
class cfg_index;
}

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
    zel_list *last_section;   // the node of the last one
    zel::cfg_index *index;    // finds sections and keys, owned
    const char *open_end;     // what the file that was read ended inside of, or null
};

namespace zel {

cfg_index *cfg_index_new();
void cfg_index_free(cfg_index *index);

// The section of that name (empty for the top-level keys), or null; the same, made and appended if
// missing (null without memory).
cfg_entry_t *cfg_find_section(const lang_cfg_t *store, const char *name);
cfg_entry_t *cfg_section(lang_cfg_t *store, const char *name);

// The same for a key of a section, which is made as CFG_VOID without text.
cfg_entry_t *cfg_find_key(const lang_cfg_t *store, const cfg_entry_t *section, const char *name);
cfg_entry_t *cfg_key(lang_cfg_t *store, cfg_entry_t *section, const char *name);

// A section's keys, in order.
inline zel_list *cfg_keys(const cfg_entry_t *section)
{
    return static_cast<zel_list *>(section->data);
}

} // namespace zel
