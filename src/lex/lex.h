#pragma once

// A table-driven scanner for C-like text: identifiers and keywords, strings with escapes,
// character constants, numbers, comments, operators, line feeds, preprocessor line markers.
// Each client makes a scanner with its keyword table and flags and attaches an input buffer.

#include <cstdint>
#include <memory>

#include "lex/lex-io.h"
#include "lex/lex-scan.h"
#include "lex/lex-token.h"
#include "support/guard.h"

// A scanner; null without memory. A null table means no keywords. The buffer is attached with
// zel_lex_set_buf and released separately.
[[nodiscard]] zel_lex_t *zel_lex_new(const Keytab *table, unsigned flags);
void _zel_lex_free(zel_lex_t *lex);
using zel_lex_guard = std::unique_ptr<zel_lex_t, zel::release<_zel_lex_free>>;

namespace zel {

// Makes a scanner as it was when it was new, without a buffer; its words, flags, and the room of
// its tokens stay. For clients that need one for each of many small texts.
void restart_scanner(zel_lex_t *lex);

} // namespace zel

// Logs a release, for tracing.
void dbg_zel_lex_free(const void *ptr, const char *file, int line);

// Replaces the token function. It fills lex->work and returns the kind. Returns 0.
int zel_lex_set_get_token(zel_lex_t *lex, zel_lex_token_fn function);

// Copies the buffer's counters into the work token: 0, or 1 (logged) without scanner or buffer.
int zel_lex_start(zel_lex_t *lex);

// The next token; the one after it without taking it (one token only, n is ignored); the one
// zel_next_token returned last. Null for a null scanner. A token's contents stay until the next
// call that fills the same one.
zel_token_t *zel_next_token(zel_lex_t *lex);
zel_token_t *zel_token_look_ahead(zel_lex_t *lex, int n);
zel_token_t *zel_current_token(zel_lex_t *lex);

// The buffer of a scanner. Attaching, and each of these, empties the scanner's current and
// look-ahead tokens; zel_lex_free_buf also releases the buffer.
void zel_lex_set_buf(zel_lex_t *lex, zel_lex_buf_t *buf);
zel_lex_buf_t *zel_lex_get_buf(zel_lex_t *lex);
void zel_lex_free_buf(zel_lex_t *lex);

// 1 once the scanner, or a helper that reads from it, has left something of its input out for want
// of memory; 1 when the input ended inside a block comment (until another buffer is attached). 0
// for a null scanner.
int zel_lex_out_of_memory(const zel_lex_t *lex);
int zel_lex_open_comment(const zel_lex_t *lex);
