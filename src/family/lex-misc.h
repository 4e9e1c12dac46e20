#pragma once

// Helpers on top of the token scanner, as in lex/lex-misc.h: what only other applications of the
// family call.

#include "lex/lex-misc.h"

// Rows of word and text, as those of trans_id_t.
struct trans_str_t {
    const char *word;
    const char *text;
};

// First row that matches, or the default.
const char *trans_id_str(const trans_id_t *table, int id, const char *fallback);
const char *trans_str_str(const trans_str_t *table, const char *word, const char *fallback);

// The ids of a comma-separated list of words, ORed; unknown words and an empty text give nothing.
std::uint32_t trans_str_mask(const trans_id_t *table, const char *text);

// These look at the next token and take it only on success: 0, else 1. Strings are stored in *out
// as new copies owned by the caller (null when empty); what out holds is released first.
int lex_get_str(zel_lex_t *lex, char **out);
int lex_get_concat_str(zel_lex_t *lex, char **out); // all the adjacent strings, joined
int lex_get_int(zel_lex_t *lex, unsigned *out);

// Takes tokens up to and including the first of that kind, line feed, or -1, -2, -3.
void zel_lex_read_until_token(zel_lex_t *lex, int kind);

// Escapes \r \n \t \" \\ into the destination (null: only counts); returns the escaped length.
int _lex_esc_str(char *destination, const char *source);
[[nodiscard]] char *lex_esc_str(const char *source); // a new string; null when empty

// In place: blanks and tabs off both ends.
char *lexstrtrim(char *text);

// 1 when the character may stand in an id.
int lex_id_char_valid(int character, int digits_allowed);
