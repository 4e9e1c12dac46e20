#pragma once

// File system calls under this system's names; file and line serve reports only.

#include <cstdio>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>

// Results are those of the system calls.
int zel_open(const char *path, int flags, mode_t mode);
std::FILE *zel_fopen(const char *path, const char *mode);
int zel_mkdir(const char *path, mode_t mode);
int zel_stat(const char *path, struct stat *status);
int _zel_access(const char *file, int line, const char *path, int mode);
int _zel_rename(const char *file, int line, const char *old_path, const char *new_path);

// Deletes a path, a link itself; 0 also when there is nothing to delete. A failure is logged and
// printed to standard error with errno and its text, and the result of the call is returned.
int _zel_unlink(const char *file, int line, const char *path);

#define zel_access(path, mode) _zel_access(__FILE__, __LINE__, (path), (mode))
#define zel_rename(old_path, new_path) _zel_rename(__FILE__, __LINE__, (old_path), (new_path))
#define zel_unlink(path) _zel_unlink(__FILE__, __LINE__, (path))

namespace zel {

// Which file it is, whatever its names.
struct file_id {
    dev_t device;
    ino_t number;
    bool operator==(const file_id &) const = default;
};
inline file_id id_of(const struct stat &status) { return {status.st_dev, status.st_ino}; }

// What tells one text of a file from another without reading it.
struct file_stamp {
    bool is_known; // false where it could not be found out; all zero where there is no file
    file_id id;
    off_t size;
    time_t seconds; // of its last change
    long nanoseconds;
    bool operator==(const file_stamp &) const = default;
};
file_stamp stamp_of(const char *path); // of the file that the path leads to

// Whether another text has come to the path since; not where that cannot be found out.
bool has_changed(const char *path, const file_stamp &before);

// Whether the path, not what it links to, names that file.
bool is_named(const char *path, const file_id &id);

// Whether it is sure that the path stands for another file, or for none.
bool is_lost(const char *path, const file_id &id);

// The path up to its name, with the separator; empty for a name alone.
std::string folder_part(const std::string &path);

// Whether something, be it a link, stands at the path. What cannot be found out counts as there,
// but not a path that is too long for the system.
bool is_there(const char *path);

// Whether the path is a link of somebody who is neither this user nor the administrator. In a user
// name space that does not tell the administrator from others, one in a folder that only its owner
// may write, who is as unknown, counts as the administrator's.
bool is_foreign_link(const char *path);

// Whether the path itself or a link on the way to it is one.
bool crosses_foreign_link(const char *path);

// Creates a file that is not there yet, for reading and writing; follows no link. -1 with errno.
int open_fresh(const char *path, mode_t mode);

// Why what stands there is never written or replaced: 0 for a regular file, else ELOOP for a link,
// EISDIR for a folder, EINVAL for pipes, devices and the like.
int refusal_of(const struct stat &status);

// Opens a regular file that is there already; anything else is refused, at once. -1 with errno.
int open_plain(const char *path, int flags);

// A stream on a file that was just opened; where there is none, null, and errno as it was.
std::FILE *stream_of(int fd, const char *mode);

// Writes all of it, through signals and short writes. 0 or errno.
int write_all(int fd, std::string_view data);

// Makes sure that what was written is on the disk, where there is one. 0 or errno.
int sync_file(int fd);

// Opens the folder that holds the path, for reading. -1 with errno.
int open_folder_of(const char *path);

// The same as sync_file for the names in the folder that holds the path.
int sync_folder_of(const char *path);

// Closes, and leaves errno as it was.
void close_quietly(int fd);

} // namespace zel
