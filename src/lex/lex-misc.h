#pragma once

// Helpers on top of the token scanner: positions, text written back in the scanner's quoted form,
// and word tables.

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "lex/lex.h"

// Word tables of the trans_ helpers: rows of two 8-byte slots, ended by a row whose first is null.
// The public header of the runtime library defines the first one too.
#ifndef ZEL_TRANS_ID_T
#define ZEL_TRANS_ID_T
struct trans_id_t {
    const char *word;
    std::int64_t id;
};
#endif

// First row that matches, or the default.
int trans_str_id(const trans_id_t *table, const char *word, int fallback);

// 1 when the token is of that kind.
int lex_match(const zel_token_t *token, int kind);

// "file:line:column" by the line markers, else "line:column"; in the scanner's position text,
// overwritten by the next call.
const char *zel_lex_linemarker_info(zel_lex_t *lex, const zel_token_t *token);

// What the scanner reads from: its file name, "Memory", or what is missing.
const char *zel_lex_get_file(zel_lex_t *lex);

// Writing in the scanner's quoted form. lex_write_str writes a blank and the quoted first n bytes
// (all when n is below 1) and returns 2 plus the escaped length; a null string gives two quotes
// and 0. The splitter writes pieces that end after the separator or at 1024 characters, one per
// line, from the second on indented; it returns the sum.
int lex_write_char(std::FILE *stream, int byte);
int lex_write_str(std::FILE *stream, const char *text, int n);
int lex_write_split_str_by_sep(std::FILE *stream, int indent, const char *text, char separator,
                               int column);

namespace zel {

// The escapes of quoted strings, for readers and writers alike: the letter after the backslash for
// a byte that is written escaped, else 0.
constexpr char escape_letter(unsigned char byte)
{
    switch (byte) {
    case '\r':
        return 'r';
    case '\n':
        return 'n';
    case '\t':
        return 't';
    case '"':
        return '"';
    case '\\':
        return '\\';
    default:
        return 0;
    }
}

// The bytes that escape_letter has a letter for.
inline constexpr char escaped_bytes[] = "\r\n\t\"\\";

} // namespace zel
