#pragma once

// Reading a settings file into a store (the grammar stands in config/lang-cfg.h).

#include "config/lang-cfg-store.h"

namespace zel {

// The token function of the store's scanner.
int cfg_get_token(zel_lex_t *lex);

// Reads statements from the store's scanner until the end of the file; reports bad lines and skips
// them.
void cfg_read_statements(lang_cfg_t *store);

// Converts a word into the entry's variable; a word that is no number of the entry's type leaves
// the variable as it was.
void cfg_set_entry(cfg_entry_t *entry, const char *word);

} // namespace zel
