#pragma once

// The scanner's records: flags, token kinds, keyword rows, tokens, and the scanner itself.

#include <cstdint>
#include <memory>

#include "lex/lex-io.h"
#include "support/guard.h"

// Behaviour bits of a scanner.
enum : unsigned {
    LEX_NUMBER_ONE_KIND = 1,   // every number is TOKEN_NUMBER
    LEX_KEYWORD_NOCASE = 2,    // keywords without regard to (ASCII) case
    LEX_ESCAPES = 4,           // backslash escapes in strings; character constants
    LEX_NEWLINE_SPACE = 16,    // a line feed is white space, else TOKEN_NEWLINE
    LEX_LINE_MARKERS = 32,     // "#" starts a line marker, else it is a token
    LEX_KEEP_BAD_ESCAPES = 64, // an unknown escape is kept, else the string ends as BAD_ESCAPE
    LEX_NO_COMMENTS = 128      // "/" is always a token
};

// Token kinds. A single character is its own code, a keyword its id. 0 marks an empty slot.
enum {
    TOKEN_ERR_EOL = -4, // a line feed inside a string; lexeme: the text so far
    TOKEN_ERR_MEM = -3, // the lexeme could not grow
    TOKEN_EOF = -1,     // also inside a string, comment or escape
    TOKEN_BAD_ESCAPE = 1,
    TOKEN_NEWLINE = 10,
    TOKEN_IDENT = 256,
    TOKEN_STRING = 257, // lexeme: the decoded contents
    TOKEN_DEC = 258,
    TOKEN_OCT = 259,
    TOKEN_HEX = 260, // the lexeme has a lower-case x
    TOKEN_FLOAT = 261,
    TOKEN_NUMBER = 262, // also a character constant without its closing quote
    TOKEN_CHAR = 263,   // lexeme: the character code in decimal
    TOKEN_EQ = 264,
    TOKEN_NE = 265,
    TOKEN_GE = 266,
    TOKEN_LE = 267,
    TOKEN_AND = 268,
    TOKEN_OR = 269,
    TOKEN_INC = 270,
    TOKEN_DECR = 271
};

// A keyword table row. Row 0 is not used; the first row from 1 on whose id is 0 ends the table.
struct Keytab {
    const char *word;
    int id;
};

struct zel_token_t {
    std::int16_t id;         // kind or keyword id
    char *lexeme;            // the text, NUL-terminated, owned
    int capacity;            // of lexeme; 4096 at first, 0 once it could not grow
    std::uint32_t length;    // bytes in lexeme (a string may hold NUL bytes)
    std::uint32_t line;      // of the token's start, from 1
    std::uint32_t column;    // characters read on that line when the token started
    std::uint64_t offset;    // characters read from the input when the token started
    int file_index;          // of the current line-marker file name
    std::uint32_t file_line; // line according to the line markers
    int room;                // the capacity before it became 0
};

struct zel_lex_t;
using zel_lex_token_fn = int (*)(zel_lex_t *);
using zel_lex_numeric_fn = int (*)(zel_lex_t *, int first, int start);

inline constexpr int ZEL_LEX_MARKER_FILES = 256;
inline constexpr int ZEL_LEX_POSITION_TEXT = 4096;
inline constexpr int ZEL_LEX_LEXEME = 4096; // first capacity of a lexeme, and its growth
inline constexpr unsigned ZEL_LEX_KEYWORD_SLOTS = 128;

struct zel_lex_t {
    std::uint32_t flags;
    zel_lex_token_fn get_token; // scans into the work token
    zel_lex_numeric_fn do_numeric;
    const Keytab **keywords;     // sorted, used from slot 1
    std::uint16_t keyword_count; // keywords plus one
    zel_lex_buf_t *buf;          // not owned
    zel_token_t *work;           // filled by the token function
    zel_token_t *current;        // returned by zel_next_token
    zel_token_t *ahead;          // the look-ahead token, empty while its id is 0
    std::uint32_t marker_count;
    char *marker_files[ZEL_LEX_MARKER_FILES];
    char position_text[ZEL_LEX_POSITION_TEXT]; // for zel_lex_linemarker_info
    std::uint32_t out_of_memory; // 1: something of the input has been left out for want of memory
    std::uint32_t open_comment;  // 1: the input ended inside a comment
    std::uint32_t hashed;        // 1: keyword_hash answers in place of the bisection
    std::uint16_t keyword_hash[ZEL_LEX_KEYWORD_SLOTS]; // slot of the keyword index, 0 empty
};

// Copies kind, text and position: 0, or 1 (logged) without memory.
int lex_token_cpy(zel_token_t *destination, const zel_token_t *source);
void lex_token_free(zel_token_t *token);

namespace zel {

// A token with an empty text; null without memory.
[[nodiscard]] zel_token_t *new_token();

void clear_token(zel_token_t *token);

// What a token is whose text could not grow: TOKEN_ERR_MEM, which is returned, without text and
// capacity. The scanner remembers it.
int lose_text(zel_lex_t *lex, zel_token_t *token);

// Gives the text a larger area, with room for n more bytes; false without memory.
bool grow(zel_token_t *token, std::size_t n);

// Makes room for n more bytes and the terminating NUL; false without memory.
inline bool reserve(zel_token_t *token, std::size_t n)
{
    return token->length + n + 8 <= static_cast<std::size_t>(token->capacity) || grow(token, n);
}

// Appends a byte, not yet the NUL behind it; false without memory.
inline bool add_byte(zel_token_t *token, int c)
{
    if (!reserve(token, 1))
        return false;
    token->lexeme[token->length++] = static_cast<char>(c);
    return true;
}

} // namespace zel
