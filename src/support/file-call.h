#pragma once

// File system calls under this system's names; file and line serve reports only.

#include <cstdio>
#include <sys/stat.h>
#include <sys/types.h>

// Results are those of the system calls.
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
