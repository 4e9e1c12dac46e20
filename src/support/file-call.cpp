#include "support/file-call.h"

#include "support/log-print.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

int zel_open(const char *path, int flags, mode_t mode) { return open(path, flags, mode); }

std::FILE *zel_fopen(const char *path, const char *mode) { return std::fopen(path, mode); }

int zel_mkdir(const char *path, mode_t mode) { return mkdir(path, mode); }

int zel_rmdir(const char *path) { return rmdir(path); }

int zel_stat(const char *path, struct stat *status) { return stat(path, status); }

int _zel_access(const char *, int, const char *path, int mode) { return access(path, mode); }

int _zel_rename(const char *, int, const char *old_path, const char *new_path)
{
    return std::rename(old_path, new_path);
}

int _zel_unlink(const char *file, int line, const char *path)
{
    if (access(path, F_OK) != 0)
        return 0;
    const int result = unlink(path);
    if (result != 0) {
        const int error = errno;
        LogPrint(1, "zel_unlink: %s:%d ERROR  errno %d >%s<>%s<\n", file, line, error, path,
                 std::strerror(error));
        std::fprintf(stderr, "zel_unlink: %s:%d ERROR  errno %d >%s<>%s<\n", file, line, error,
                     path, std::strerror(error));
        errno = error;
    }
    return result;
}
