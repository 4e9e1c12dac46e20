#pragma once

// Walking a command line word by word. Every operation works on a cursor of two values owned by
// the caller, the number of words left and the position of the current word; an operation that
// uses up a word lowers the count and moves the position on.

#include <cstdio>

#include "support/string.h" // argv_tab_t, the word table

// Result codes of the value getters; a word is used up only on success.
enum {
    ARGV_OK = 0,
    ARGV_ERROR = 1,      // no flag word taken
    ARGV_NO_STRING = 2,  // no word left
    ARGV_NO_INTEGER = 3, // no word, or it does not begin with a digit
    ARGV_NO_FLOAT = 4,
    ARGV_NO_DOUBLE = 5,
    ARGV_NO_WIDTH_HEIGHT = 6, // no word, or malformed
    ARGV_NO_FLAGS = 7         // no word, or an empty one
};

// Matches the current word against a table, whole and case-sensitive: uses it up and returns the
// row's id, or leaves it and returns the ending id. 0 when no word is left.
int check_argv_str_to_num(int *count, char ***position, const argv_tab_t *table);

// The same for a word with two leading dashes, which are not part of the row's word.
int check_argv(int *count, char ***position, const argv_tab_t *table);

// The current word as a new copy owned by the caller (null for an empty word); argv_free_get_str
// releases what out holds first.
int argv_get_str(int *count, char ***position, char **out);
int argv_free_get_str(int *count, char ***position, char **out);

// Skips one word if there is one (the program's name).
void argv_prep(int *count, char ***position);

// Error lines: switched on or off, and where they go (standard error when null); no program here
// switches them on. argv_print_error
// prints the code's message, with the word last examined by a match, and returns the code.
void argv_set_err_print(int on, std::FILE *stream);
int argv_print_error(int code);
const char *argv_get_err_str(int code);

namespace zel {

// The row of the word, or the ending row.
const argv_tab_t *argv_row(const char *word, const argv_tab_t *table);

// The code, after its error line when those are switched on.
int argv_reported(int code);

} // namespace zel
