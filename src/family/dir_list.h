#pragma once

// Directories, as in support/dir_list.h: what only other applications of the family call.

#include <cstdio>

#include "support/dir_list.h"

// 1 when the name is in the list, else 0.
int dir_list_search(const zel_list *list, const char *name);

// One line "dir_list_print >name<" per name.
void dir_list_print(std::FILE *stream, const zel_list *list);

// Sorted by strcmp, descending.
[[nodiscard]] zel_list *dir_list_sort_back(zel_list *list);

// 1 when the directory holds anything but "." and "..", else 0.
int if_files_in_dir(const char *path);
