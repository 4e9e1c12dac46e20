#pragma once

// The scanner and its buffers, as in lex/lex.h and lex/lex-io.h: what only other applications of
// the family call.

#include <cstdint>

#include "lex/lex.h"

// The keyword's id, or TOKEN_IDENT.
int keyws(zel_lex_t *lex, const char *word);

// Moves the input; returns the offset.
std::uint64_t zel_lex_seek(zel_lex_t *lex, std::uint64_t offset);

// Attaches a buffer with nothing in it (a file buffer then reloads at its stream position), and
// empties the scanner's current and look-ahead tokens.
void zel_lex_buf_clear(zel_lex_t *lex, zel_lex_buf_t *buf);

// Plugs in a reader of the client's: it returns a byte or ZEL_LEX_EOF (as 0xffff, too). Returns 0.
int zel_lex_buf_set_read_char(zel_lex_buf_t *buf, zel_lex_read_fn function, void *context);

// Prints to standard output; returns 0.
int scf_printf(const char *format, ...) __attribute__((format(printf, 1, 2)));
