#include "support/zel_malloc.h"

#include "support/log-print.h"
#include "support/misc-error.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

char *copy_of(const char *text, std::size_t length)
{
    char *copy = static_cast<char *>(std::malloc(length + 2));
    if (copy != nullptr)
        std::memcpy(copy, text, length + 1);
    return copy;
}

} // namespace

char *_zel_strdup(const char *text, const char *, int)
{
    if (text == nullptr || *text == '\0')
        return nullptr;
    char *copy = copy_of(text, std::strlen(text));
    if (copy == nullptr) {
        LogPrint(1, "zel_strdup: ERROR not enough memory\n");
        _zel_fatal("zel_malloc", 111, "not enough memory");
    }
    return copy;
}

char *_zel_strdup2(const char *text, const char *, int)
{
    if (text == nullptr)
        return nullptr;
    char *copy = copy_of(text, std::strlen(text));
    if (copy == nullptr)
        LogPrint(1, "zel_strdup2: ERROR not enough memory\n");
    return copy;
}

char *_zel_str_add(char *owned, const char *add, const char *file, int line)
{
    if (add == nullptr)
        return owned;
    if (owned == nullptr)
        return _zel_strdup(add, file, line);
    const std::size_t length = std::strlen(owned);
    const std::size_t added = std::strlen(add);
    char *grown = static_cast<char *>(std::realloc(owned, length + added + 2));
    if (grown == nullptr) {
        _zel_fatal(file, line, "not enough memory");
        return owned;
    }
    std::memcpy(grown + length, add, added + 1);
    return grown;
}

char *_zel_strdup_add(const char *first, const char *second)
{
    if (first == nullptr)
        return zel_strdup(second);
    if (second == nullptr)
        return zel_strdup(first);
    const std::size_t length = std::strlen(first);
    const std::size_t added = std::strlen(second);
    char *joined = static_cast<char *>(std::malloc(length + added + 2));
    if (joined == nullptr) {
        _zel_fatal("zel_malloc", __LINE__, "not enough memory");
        return nullptr;
    }
    std::memcpy(joined, first, length);
    std::memcpy(joined + length, second, added + 1);
    return joined;
}

namespace zel {

void free_string(char *text) noexcept { std::free(text); }

void replace_string(char *&owned, char *value) noexcept
{
    std::free(owned);
    owned = value;
}

} // namespace zel

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

const char *get_os_string() { return "Linux or unknown"; }

void print_os(std::FILE *stream) { std::fprintf(stream, "\n%s\n\n", get_os_string()); }
