#include "support/file-call.h"

#include "support/log-print.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

// Paths need no conversion on this system.
int zel_open(const char *path, int flags, mode_t mode) { return open(path, flags, mode); }

std::FILE *zel_fopen(const char *path, const char *mode) { return std::fopen(path, mode); }

int zel_mkdir(const char *path, mode_t mode) { return mkdir(path, mode); }

int zel_stat(const char *path, struct stat *status) { return stat(path, status); }

int _zel_access(const char *, int, const char *path, int mode) { return access(path, mode); }

int _zel_rename(const char *, int, const char *old_path, const char *new_path)
{
    return std::rename(old_path, new_path);
}

int _zel_unlink(const char *file, int line, const char *path)
{
    if (!zel::is_there(path))
        return 0;
    const int result = unlink(path);
    if (result != 0) {
        const int error = errno;
        static constexpr char message[] = "zel_unlink: %s:%d ERROR  errno %d >%s<>%s<\n";
        LogPrint(1, message, file, line, error, path, std::strerror(error));
        std::fprintf(stderr, message, file, line, error, path, std::strerror(error));
        // Printing may have changed errno, which callers look at.
        errno = error;
    }
    return result;
}

namespace {

// Whether the number is a user's in this process's name space. In a name space with few users, the
// administrator outside and every other outsider share one number, which is nobody's here.
bool has_user(uid_t user)
{
    std::FILE *map = std::fopen("/proc/self/uid_map", "re");
    unsigned first = 0;
    unsigned count = 0;
    // Without the map every number counts as a user's: the careful answer.
    bool found = map == nullptr;
    while (!found && std::fscanf(map, "%u %*u %u", &first, &count) == 2)
        // Subtracted, because the sum might not fit.
        found = user >= first && user - first < count;
    if (map != nullptr)
        std::fclose(map);
    return found;
}

} // namespace

namespace zel {

file_stamp stamp_of(const char *path)
{
    struct stat status {};
    if (stat(path, &status) != 0)
        // A missing file is known to be missing; after any other error nothing is known.
        return {errno == ENOENT, {}, 0, 0, 0};
    return {true, id_of(status), status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

bool has_changed(const char *path, const file_stamp &before)
{
    const file_stamp now = stamp_of(path);
    // A file that is missing now does not count as changed.
    return before.is_known && now.is_known && now.id != file_id{} && now != before;
}

bool is_named(const char *path, const file_id &id)
{
    struct stat status {};
    return lstat(path, &status) == 0 && id_of(status) == id;
}

bool is_lost(const char *path, const file_id &id)
{
    struct stat status {};
    // After any other error than ENOENT the file may still have its name.
    return lstat(path, &status) == 0 ? id_of(status) != id : errno == ENOENT;
}

std::string folder_part(const std::string &path) { return path.substr(0, path.rfind('/') + 1); }

bool is_there(const char *path)
{
    struct stat status {};
    if (path == nullptr)
        return false;
    // After any other error something may be there that this user cannot see.
    return lstat(path, &status) == 0 ||
           (errno != ENOENT && errno != ENOTDIR && errno != ENAMETOOLONG);
}

bool is_foreign_link(const char *path)
{
    struct stat link {};
    struct stat folder {};
    if (lstat(path, &link) != 0 || !S_ISLNK(link.st_mode) || link.st_uid == 0 ||
        link.st_uid == geteuid())
        return false;
    const std::size_t name = std::string_view(path).rfind('/') + 1; // 0 without a folder
    const std::string holder = std::string(path, name) + ".";
    // A link of nobody's is trusted only in a folder of nobody's into which nobody else can write:
    // such a link was made outside the name space, by its administrator.
    return has_user(link.st_uid) || stat(holder.c_str(), &folder) != 0 || has_user(folder.st_uid) ||
           (folder.st_mode & (S_IWGRP | S_IWOTH)) != 0;
}

bool crosses_foreign_link(const char *path)
{
    std::array<char, PATH_MAX> part;
    const std::size_t length = std::strlen(path);
    if (length >= part.size())
        return false; // the system refuses such a path itself
    for (std::size_t end = 1; end <= length; ++end) {
        if (path[end] != '/' && path[end] != '\0')
            continue;
        // One area serves all parts: each ends where its NUL is put.
        std::memcpy(part.data(), path, end);
        part[end] = '\0';
        if (is_foreign_link(part.data()))
            return true;
    }
    return false;
}

void close_quietly(int fd)
{
    const int error = errno;
    close(fd);
    errno = error;
}

int open_fresh(const char *path, mode_t mode)
{
    // O_EXCL never opens what is there and follows no link at the end.
    return open(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
}

int refusal_of(const struct stat &status)
{
    return S_ISREG(status.st_mode)   ? 0
           : S_ISLNK(status.st_mode) ? ELOOP
           : S_ISDIR(status.st_mode) ? EISDIR
                                     : EINVAL;
}

int open_plain(const char *path, int flags)
{
    struct stat status {};
    if (lstat(path, &status) != 0)
        return -1;
    // Checked before opening, because opening a device may already do something, and after it,
    // because the name may have become another file's. Without O_NONBLOCK a pipe would wait for its
    // other end.
    errno = refusal_of(status);
    if (errno != 0)
        return -1;
    const int fd = open(path, flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return -1;
    errno = fstat(fd, &status) == 0 ? refusal_of(status) : errno;
    if (errno == 0)
        return fd;
    close_quietly(fd);
    return -1;
}

std::FILE *stream_of(int fd, const char *mode)
{
    std::FILE *stream = fd < 0 ? nullptr : fdopen(fd, mode);
    if (stream == nullptr && fd >= 0)
        close_quietly(fd);
    return stream;
}

int write_all(int fd, std::string_view data)
{
    while (!data.empty()) {
        const ssize_t written = write(fd, data.data(), data.size());
        if (written < 0 && errno == EINTR)
            continue;
        // A write of no bytes would otherwise be repeated for ever.
        if (written <= 0)
            return written == 0 ? EIO : errno;
        data.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

int sync_file(int fd)
{
    // Some file systems have nothing to sync and say so: that is no failure.
    while (fsync(fd) != 0)
        if (errno != EINTR)
            return errno == EINVAL || errno == ENOTSUP || errno == ENOSYS ? 0 : errno;
    return 0;
}

int open_folder_of(const char *path)
{
    const char *end = std::strrchr(path, '/');
    std::array<char, PATH_MAX> folder{"."};
    if (end != nullptr) {
        // The root has no name without its separator.
        const std::size_t length = end == path ? 1 : static_cast<std::size_t>(end - path);
        if (length >= folder.size()) {
            errno = ENAMETOOLONG;
            return -1;
        }
        std::memcpy(folder.data(), path, length);
        folder[length] = '\0';
    }
    return open(folder.data(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

int sync_folder_of(const char *path)
{
    // After a power cut the new name exists only if its folder was written, too.
    const int fd = open_folder_of(path);
    if (fd < 0)
        return errno;
    const int error = sync_file(fd);
    close(fd);
    return error;
}

} // namespace zel
