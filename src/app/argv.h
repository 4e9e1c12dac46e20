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
int argv_str_to_num(int *count, char ***position, const argv_tab_t *table);

// Value getters; see the result codes. Strings are new copies owned by the caller (null for an
// empty word); argv_free_get_str releases what out holds first.
int argv_get_str(int *count, char ***position, char **out);
int argv_free_get_str(int *count, char ***position, char **out);
int argv_get_int(int *count, char ***position, int *out); // decimal, 0x hexadecimal, 0 octal
int argv_get_time(int *count, char ***position, int *out);
int argv_get_float(int *count, char ***position, float *out);
int argv_get_double(int *count, char ***position, double *out);
int argv_get_width_height(int *count, char ***position, int *width, int *height); // 640x480
int argv_get_size(int *count, char ***position, int *width, int *height);
int argv_get_flags_by_str(int *count, char ***position, const argv_tab_t *table, unsigned *flags);

// The getters without the error line that argv_set_err_print switches on.
int _argv_get_int(int *count, char ***position, int *out);
int _argv_get_float(int *count, char ***position, float *out);
int _argv_get_double(int *count, char ***position, double *out);
int _argv_get_width_height(int *count, char ***position, int *width, int *height);

// Skips one word if there is one (the program's name).
void argv_prep(int *count, char ***position);

// A copy of the current word, used up; null when no word is left.
[[nodiscard]] char *argv_get_prg(int *count, char ***position);

// Error lines: switched on or off, and where they go (standard error when null). argv_print_error
// prints the code's message, with the word last examined by a match, and returns the code.
void argv_set_err_print(int on, std::FILE *stream);
int argv_print_error(int code);
const char *argv_get_err_str(int code);

// Word vectors: an array of separately allocated strings and its count, released by del_argv.
void gen_argv(const char *text, int *count, char ***vector);
char **gen_argv_execv(const char *text, int *count, char ***vector); // a null after the last word
void gen_argv_ext(const char *text, int *count, char ***vector);     // and room for one more
// Reads a file of words; "#" starts a comment. 0, 1 no status, 2 not opened, 3 no memory.
int gen_argv_from_file(const char *path, int *count, char ***vector);
int gen_argv_add_str(const char *text, int *count, char ***vector);     // 1 for null, else 0
int gen_argv_add_str_ext(const char *text, int *count, char ***vector); // in double quotes
void gen_argv_add_null(int *count, char ***vector);                     // the count stays
int argv_dup(int n, char **words, int *count, char ***vector);
void del_argv(int *count, char ***vector);

// "print_argv >word<" per word, to standard output when the stream is null. Returns 0.
int print_argv(std::FILE *stream, int n, char **words);
