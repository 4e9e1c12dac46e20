#pragma once

// The names that a file defines for strings: an ordered list of pairs. One table lives for the scan
// of one file.

#include <memory>

#include "support/guard.h"

struct symtab_t;

// An empty table.
[[nodiscard]] symtab_t *symtab_new();
void symtab_free(symtab_t *table); // null is ignored
using symtab_guard = std::unique_ptr<symtab_t, zel::release<symtab_free>>;

// Appends a pair of copies: 0. A name that is there already keeps its value: 1, after a message.
int symtab_add(symtab_t *table, const char *name, const char *value);

// The value of the name, owned by the table, or null.
const char *symtab_get(const symtab_t *table, const char *name);

// Notes that the compiler may see another value of the name, which is there.
void symtab_doubt(symtab_t *table, const char *name);
bool symtab_is_doubtful(const symtab_t *table, const char *name);
