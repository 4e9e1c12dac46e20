#include "support/file_mem.h"

#include "support/file-call.h"
#include "support/log-print.h"
#include "support/string-copy.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr zel::file_messages read_messages = {
    nullptr, "zel_read_file_to_mem: ERROR stat file >%s<\n",
    "zel_read_file_to_mem: ERROR open file >%s<\n",
    "zel_read_file_to_mem: ERROR not enough memory >%s<\n",
    "zel_read_file_to_mem: ERROR read file >%s<\n"};

// Reads until size bytes are there or the file ends; the count, -1 on a read error.
std::int64_t read_all(int fd, char *data, std::int64_t size)
{
    std::int64_t count = 0;
    while (count < size) {
        const ssize_t got = read(fd, data + count, static_cast<std::size_t>(size - count));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return -1;
        if (got == 0)
            break;
        count += got;
    }
    return count;
}

} // namespace

namespace zel {

file_outcome logged(file_outcome result, const file_messages &messages, const char *path)
{
    if (messages[result] != nullptr)
        LogPrint(1, messages[result], path == nullptr ? "(null)" : path);
    return result;
}

file_outcome read_whole(const char *path, char *&data, std::int64_t &count)
{
    struct stat status {};
    if (path == nullptr || zel_stat(path, &status) != 0)
        return NO_STATUS;
    const int fd = zel_open(path, O_RDONLY | O_CLOEXEC, 0);
    if (fd < 0)
        return NOT_OPENED;
    zel::string_guard text(
        static_cast<char *>(std::malloc(static_cast<std::size_t>(status.st_size) + 2)));
    // The file may have grown or shrunk since stat: what is read ends at the earlier size.
    if (text != nullptr)
        count = read_all(fd, text.get(), status.st_size);
    close(fd);
    if (text == nullptr)
        return NO_MEMORY;
    if (count < 0)
        return FAILED;
    text.get()[count] = '\0';
    data = text.release();
    return GOOD;
}

} // namespace zel

std::int64_t zel_read_file_to_mem(const char *path, char **data)
{
    *data = nullptr;
    std::int64_t count = 0;
    return zel::logged(zel::read_whole(path, *data, count), read_messages, path) == zel::GOOD
               ? count
               : -1;
}
