#pragma once

// String copies and file system calls that name the place they are made from, and the text that
// describes the operating system. Every string returned is allocated with malloc and owned by the
// caller; file and line serve reports only.

#include <cstdio>
#include <memory>
#include <sys/stat.h>
#include <sys/types.h>

#include "support/guard.h"

// A copy, with room for one spare byte; null for a null or an empty string. Without memory it
// logs, reports a fatal error and gives null.
[[nodiscard]] char *_zel_strdup(const char *text, const char *file, int line);

// A copy that keeps an empty string; null for null. Without memory it logs and gives null.
[[nodiscard]] char *_zel_strdup2(const char *text, const char *file, int line);

// The owned string grown by the other one; use the result in its place. A null owned string gives
// a copy of the other (null when it is empty), a null addition the owned string unchanged.
[[nodiscard]] char *_zel_str_add(char *owned, const char *add, const char *file, int line);

// A new string of both; when one is null a copy of the other (null when that is empty or null).
[[nodiscard]] char *_zel_strdup_add(const char *first, const char *second);

#define zel_strdup(text) _zel_strdup((text), __FILE__, __LINE__)
#define zel_strdup2(text) _zel_strdup2((text), __FILE__, __LINE__)

namespace zel {

void free_string(char *text) noexcept;
using string_guard = std::unique_ptr<char, release<free_string>>;

// Replaces an owned string by another owned one and releases the old.
void replace_string(char *&owned, char *value) noexcept;

} // namespace zel

// File system calls; results are those of the system calls.
int zel_open(const char *path, int flags, mode_t mode);
std::FILE *zel_fopen(const char *path, const char *mode);
int zel_mkdir(const char *path, mode_t mode);
int zel_rmdir(const char *path);
int zel_stat(const char *path, struct stat *status);
int _zel_access(const char *file, int line, const char *path, int mode);
int _zel_rename(const char *file, int line, const char *old_path, const char *new_path);

// Deletes a path; 0 also when there is nothing to delete. A failure is logged and printed to
// standard error with errno and its text, and the result of the call is returned.
int _zel_unlink(const char *file, int line, const char *path);

#define zel_access(path, mode) _zel_access(__FILE__, __LINE__, (path), (mode))
#define zel_rename(old_path, new_path) _zel_rename(__FILE__, __LINE__, (old_path), (new_path))
#define zel_unlink(path) _zel_unlink(__FILE__, __LINE__, (path))

// What the system calls itself, for the head of the log; print_os puts an empty line around it.
const char *get_os_string();
void print_os(std::FILE *stream);
