#pragma once

// A scanner's keyword index: the rows of its table sorted by word, and a hash in front of them.

#include <cstddef>

#include "lex/lex-token.h"

namespace zel {

// Builds the index of a new scanner for the table (null: no keywords) and the scanner's flags.
// False without memory.
bool build_keywords(zel_lex_t *lex, const Keytab *table);

// The id of the word, or TOKEN_IDENT.
int find_keyword(const zel_lex_t *lex, const char *word, std::size_t length);

} // namespace zel
