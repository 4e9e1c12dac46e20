#pragma once

// Strings and paths, as in support/string.h: what only other applications of the family call.

#include "support/list.h"
#include "support/string.h"

// Length; 0 for null.
int zel_strlen(const char *text);

// New string of length characters from the 1-based start; the rest when length is 0 or less or
// reaches past the end. Null for a null string, a start below 1 or past the end.
[[nodiscard]] char *zel_substr(const char *text, int start, int length);

// Next field of a separated text: 0 at the end, else 1 with the field in out (size - 1 characters
// kept, the rest skipped) and the cursor on the separator or end that closed it. A cursor that
// stands on a separator steps over it first, so that walking "a,,b" gives "a", "" and "b", and a
// separator at the end of the text is followed by one more, empty, field.
int zel_get_sub_str(char **cursor, char *out, char separator, int size);

// In place: one double quote off either end. Returns the string.
char *zel_str_trim_hk(char *text);

// Replaces every blank; counts line feeds.
void zel_space_to_char(char *text, char character);
int zel_str_count_lf(const char *text);

// -1, 0 or 1: the number in the string against the float.
int zel_str_float_cmp(const char *text, float number);

// Collects into out (which must hold the longer text) the characters of b that differ from a at
// their position. Same length 0; b ends first: the rest of a is appended, 1; a ends first: the rest
// of b is appended, -1.
int zel_str_diff(char *out, const char *a, const char *b);

// "640x480" (a lower-case x): 0, or 1 when the text or a part is missing or does not read (or a
// part is longer than 31 characters).
int zel_str_get_width_height(const char *text, int *width, int *height);

namespace zel {

// The pair that the getters of widths and heights read: both parts around the first of the marks
// are decimal numbers of at most 31 characters. False leaves both values as they are.
bool read_width_height(const char *text, const char *marks, int &width, int &height);

} // namespace zel

// Separators of a path, in place; the number changed (0 for null).
int zel_path_conv(char *path);
int zel_path_to_dos(char *path);

// dir: what stands before the last separator, null when there is none. 1 for a null path, else 0.
int zel_split_path(const char *path, char **dir);

// 1, logged, when the path is an existing directory; else the file part and 0.
int zel_split_file(const char *path, char **file);

// "C:" or "\\name" (either separator) at the start of a path, copied to out of size bytes. 0; 1 for
// a path without a drive and, with a log line, for a null argument, a path below two characters or
// a buffer that is too short.
int zel_path_get_drive(const char *path, char *out, int size);

// 0 the file exists and is readable, 1 it does not exist, 2 it is not readable.
int check_file_exist_read(const char *path);

// 1 when the name's extension, with its ".", equals one of the list's strings; 0 when not; 1 for a
// null argument.
int zel_if_ext(const zel_list *extensions, const char *name);
