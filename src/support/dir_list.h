#pragma once

// Listing and creating directories. A directory list is a zel_list of owned entry
// names (not paths).

#include "support/list.h"

// The list with the directory's names appended, in the order of the directory, without "." and
// ".."; with an ending only names that end in it. Null, after a log line, when the directory
// cannot be opened (a list handed in then stays the caller's).
[[nodiscard]] zel_list *dir_list(zel_list *list, const char *path, const char *ending);
void dir_list_free(zel_list *list);
using dir_list_guard = std::unique_ptr<zel_list, zel::release<dir_list_free>>;

// Sorted by strcmp.
[[nodiscard]] zel_list *dir_list_sort(zel_list *list);

// The name of a list element.
char *dir_list_file(const zel_list *element);

// Kinds of path tokens.
enum {
    CD_SEPARATOR = 1, // "/" or "\", or "." followed by one of them
    CD_NETWORK = 2,   // "//" or "\\"
    CD_NAME = 3,      // up to the next separator or the end
    CD_DRIVE = 4,     // a character and a colon
    CD_END = 5
};

// Copies the next token of a path into the buffer (which must hold it), moves the cursor past it
// and returns its kind.
int cd_next_token(const char **cursor, char *buffer);

// Creates every missing directory of a path, below the base directory when there is one.
// Returns 0, or: 1, 2, 3 malformed network path; 6 separator without a name; 7 unexpected token;
// 8 a directory could not be created; 10 no write access to a parent. What was created stays.
int cre_dir(const char *base, const char *dir);
