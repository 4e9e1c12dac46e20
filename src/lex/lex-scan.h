#pragma once

// Scanning one token from the input of a scanner.

#include "lex/lex-token.h"

// Scans one token into the work token and returns its kind; TOKEN_ERR_MEM without a buffer. What
// zel_next_token (lex/lex.h) calls unless a client has put its own function in place.
int zel_get_token(zel_lex_t *lex);

// Scans a number into the work token's lexeme from the start index; returns its kind.
int lex_do_numeric(zel_lex_t *lex, int first, int start);

namespace zel {

// Copies the buffer's counters into the work token.
inline void mark_start(zel_lex_t *lex)
{
    const zel_lex_buf_t *buf = lex->buf;
    zel_token_t *token = lex->work;
    token->line = buf->line;
    token->column = buf->column;
    token->offset = buf->position;
    token->file_index = static_cast<int>(buf->marker_file);
    token->file_line = buf->marker_line;
}

} // namespace zel
