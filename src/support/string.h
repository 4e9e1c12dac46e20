#pragma once

// Null-safe strings, fields, trimming, and paths and their extensions. Paths are split at "/" and
// at "\". Strings returned or stored through a char ** are new and owned by the caller.

// A word table: rows of word and id. The row without a word ends it; its id is the result when no
// other row matches.
struct argv_tab_t {
    const char *word;
    int id;
};

// New string from "from" up to (not including) "to", stopping at a NUL; null when base is null or
// "to" is not after "from".
[[nodiscard]] char *dup_ptr_from_to(const char *base, const char *from, const char *to);

// In place: blanks and tabs off both ends. Returns the string.
char *zel_str_trim(char *text);

// Replaces every "from"; returns how many.
int zel_str_replace_char(char *text, char from, char to);

// Id of the first row whose word equals the text; the ending row's id when there is none.
int zel_str_to_num(const char *text, const argv_tab_t *table);

// printf into a new string of exactly the formatted length; null, logged, without memory.
[[nodiscard]] char *zel_strdup_printf(const char *format, ...)
    __attribute__((format(printf, 1, 2)));
[[nodiscard]] char *zel_strdup_vprintf(const char *format, __builtin_va_list args)
    __attribute__((format(printf, 1, 0)));

// Separators of a path, in place; the number changed (0 for null).
int zel_path_to_unix(char *path);
int zel_path_to_os(char *path);

// dir: what stands before the last separator, null when there is none; file: what stands behind it,
// null for a path that ends in a separator, dir only set when there is one
// (empty for a path whose only separator is its first character). 1 for a null path, else 0.
int zel_split_path_file(const char *path, char **dir, char **file);

// Extensions (the text after the last "."), in place.
char *zel_del_file_ext(char *path);
char *zel_del_cmp_file_ext(char *path, const char *ext);              // only exactly this one
char *zel_add_file_ext(char *dst, const char *name, const char *ext); // dst must hold the result
// "dir/file.ext" of the path's directory, its file name without this extension, and it; the path
// must hold the result. 1 for a null argument, else 0.
int zel_gen_file_name_with_ext(char *path, const char *ext);
