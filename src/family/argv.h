#pragma once

// Walking a command line, as in app/argv.h: what only other applications of the family call.

#include "app/argv.h"

int argv_str_to_num(int *count, char ***position, const argv_tab_t *table); // as check_argv

// Value getters; see the result codes.
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

// A copy of the current word, used up; null when no word is left.
[[nodiscard]] char *argv_get_prg(int *count, char ***position);

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
