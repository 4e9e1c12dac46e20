#include "support/safe-file.h"

#include "support/string-copy.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t buffer_size = 256 * 1024;

std::FILE *open_fresh(const char *path)
{
    unlink(path); // what cannot be removed makes the exclusive creation fail
    const int fd = open(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (fd < 0)
        return nullptr;
    std::FILE *stream = fdopen(fd, "w+");
    if (stream == nullptr) {
        const int error = errno;
        close(fd);
        unlink(path);
        errno = error;
    }
    return stream;
}

// Some file systems have nothing to sync and say so.
int sync_error(int fd)
{
    if (fsync(fd) == 0 || errno == EINVAL || errno == ENOTSUP || errno == ENOSYS)
        return 0;
    return errno;
}

// The cause of a write that failed earlier, which the stream has forgotten: one more byte meets
// the same obstacle.
int earlier_write_error(int fd)
{
    errno = EIO;
    return write(fd, "", 1) == 1 ? EIO : errno;
}

int flush_error(std::FILE *stream)
{
    if (std::ferror(stream) != 0)
        return earlier_write_error(fileno(stream));
    if (std::fflush(stream) != 0)
        return errno;
    return sync_error(fileno(stream));
}

int close_stream(zel::safe_file &file)
{
    const int error = std::fclose(file.stream) == 0 ? 0 : errno;
    file.stream = nullptr;
    std::signal(SIGXFSZ, file.size_signal);
    return error;
}

int write_all(int fd, const char *data, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = write(fd, data, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return written == 0 ? EIO : errno;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return 0;
}

int copy_contents(int from, int to)
{
    std::array<char, 64 * 1024> block;
    for (;;) {
        const ssize_t size = read(from, block.data(), block.size());
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            return size == 0 ? sync_error(to) : errno;
        if (const int error = write_all(to, block.data(), static_cast<std::size_t>(size)))
            return error;
    }
}

// Copies an open file to a fresh name beside the target and renames that.
int copy_beside(int from, const char *target)
{
    std::string fresh = std::string(target) + ".XXXXXX";
    const int to = mkostemp(fresh.data(), O_CLOEXEC);
    if (to < 0)
        return errno;
    struct stat status {};
    if (fstat(from, &status) == 0)
        static_cast<void>(fchmod(to, status.st_mode & 0777));
    int error = copy_contents(from, to);
    if (close(to) != 0 && error == 0)
        error = errno;
    if (error == 0 && std::rename(fresh.c_str(), target) != 0)
        error = errno;
    if (error != 0)
        unlink(fresh.c_str());
    return error;
}

int move_across(const char *path, const char *target)
{
    const int from = open(path, O_RDONLY | O_CLOEXEC);
    if (from < 0)
        return errno;
    auto *before = std::signal(SIGXFSZ, SIG_IGN);
    const int error = copy_beside(from, target);
    std::signal(SIGXFSZ, before);
    close(from);
    if (error == 0)
        unlink(path);
    return error;
}

} // namespace

namespace zel {

safe_file safe_file_create(const char *path)
{
    safe_file file;
    file.stream = open_fresh(path);
    if (file.stream == nullptr) {
        file.error = errno;
        return file;
    }
    file.size_signal = std::signal(SIGXFSZ, SIG_IGN);
    file.path = zel_strdup(path);
    file.buffer = static_cast<char *>(std::malloc(buffer_size));
    if (file.buffer != nullptr)
        std::setvbuf(file.stream, file.buffer, _IOFBF, buffer_size);
    return file;
}

int safe_file_finish(safe_file &file)
{
    file.error = flush_error(file.stream);
    const int close_error = close_stream(file);
    if (file.error == 0)
        file.error = close_error;
    if (file.error != 0)
        unlink(file.path);
    return file.error;
}

int safe_file_move(safe_file &file, const char *target)
{
    if (std::rename(file.path, target) == 0)
        return 0;
    file.error = errno == EXDEV ? move_across(file.path, target) : errno;
    return file.error;
}

void safe_file_abandon(safe_file &file)
{
    if (file.stream != nullptr)
        close_stream(file);
    if (file.path != nullptr)
        unlink(file.path);
    safe_file_release(file);
}

void safe_file_release(safe_file &file)
{
    std::free(file.path);
    std::free(file.buffer);
    file.path = nullptr;
    file.buffer = nullptr;
}

} // namespace zel
