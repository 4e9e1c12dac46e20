#include "support/file_mem.h"

#include "support/file-call.h"
#include "support/log-print.h"
#include "support/string-copy.h"

#include <array>
#include <bit>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// How reading or writing a file ended; failed is a read or a write that went wrong.
enum outcome { GOOD, NO_STATUS, NOT_OPENED, NO_MEMORY, FAILED, OUTCOME_COUNT };

// Log lines per outcome, with the path; null where an operation says nothing.
using outcome_messages = std::array<const char *, OUTCOME_COUNT>;

constexpr outcome_messages read_messages = {
    nullptr,
    "zel_read_file_to_mem: ERROR stat file >%s<\n",
    "zel_read_file_to_mem: ERROR open file >%s<\n",
    "zel_read_file_to_mem: ERROR not enough memory >%s<\n",
    "zel_read_file_to_mem: ERROR read file >%s<\n",
};
constexpr outcome_messages write_messages = {
    nullptr,
    nullptr,
    "zel_write_mem_to_file: ERROR open file >%s<\n",
    nullptr,
    "zel_write_mem_to_file: ERROR write file >%s<\n",
};
constexpr outcome_messages mem_read_messages = {
    nullptr,
    "zel_file_mem_read: ERROR stat file >%s<\n",
    "zel_file_mem_read: ERROR open file >%s<\n",
    nullptr,
    nullptr,
};
constexpr outcome_messages mem_write_messages = {
    nullptr,
    nullptr,
    "zel_file_mem_write: ERROR open file >%s<\n",
    nullptr,
    "zel_file_mem_write: ERROR write file >%s<\n",
};

// Logs a failure; the path may be null.
outcome logged(outcome result, const outcome_messages &messages, const char *path)
{
    if (messages[result] != nullptr)
        LogPrint(1, messages[result], path == nullptr ? "(null)" : path);
    return result;
}

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

// Fills data (new) and count unless the outcome is a failure.
outcome read_whole(const char *path, char *&data, std::int64_t &count)
{
    struct stat status {};
    if (path == nullptr || zel_stat(path, &status) != 0)
        return NO_STATUS;
    const int fd = zel_open(path, O_RDONLY | O_CLOEXEC, 0);
    if (fd < 0)
        return NOT_OPENED;
    zel::string_guard text(
        static_cast<char *>(std::malloc(static_cast<std::size_t>(status.st_size) + 2)));
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

outcome write_whole(const char *path, const char *data, std::int64_t size, int flags, int mode)
{
    const int fd = zel_open(path, flags, static_cast<mode_t>(mode));
    if (fd < 0)
        return NOT_OPENED;
    const bool written = zel::write_all(fd, {data, static_cast<std::size_t>(size)}) == 0;
    const bool closed = close(fd) == 0;
    return written && closed ? GOOD : FAILED;
}

// Room for a text of so many bytes and its NUL. It grows in powers of two, so that appending piece
// by piece is linear although the record keeps no capacity.
bool make_room(zel_file_mem_t &mem, std::int64_t size)
{
    const std::size_t room = std::bit_ceil(static_cast<std::size_t>(size) + 1);
    char *grown = static_cast<char *>(std::realloc(mem.data, room));
    if (grown == nullptr)
        return false;
    mem.data = grown;
    return true;
}

zel_file_mem_t *new_record()
{
    zel_file_mem_guard mem(static_cast<zel_file_mem_t *>(std::calloc(1, sizeof(zel_file_mem_t))));
    if (mem == nullptr || !make_room(*mem, 0))
        return nullptr;
    mem->ref = 1;
    *mem->data = '\0';
    return mem.release();
}

std::int64_t length_of(const char *text, int length)
{
    return length < 0 ? static_cast<std::int64_t>(std::strlen(text)) : length;
}

zel_file_mem_t *append_bytes(zel_file_mem_t *mem, const char *text, std::int64_t length)
{
    if (mem == nullptr)
        mem = new_record();
    if (mem == nullptr)
        return nullptr;
    // A part of the record's own data moves with it.
    const auto at =
        reinterpret_cast<std::uintptr_t>(text) - reinterpret_cast<std::uintptr_t>(mem->data);
    const bool own = at <= static_cast<std::uintptr_t>(mem->size);
    if (!make_room(*mem, mem->size + length)) {
        mem->error = 1;
        return mem;
    }
    std::memmove(mem->data + mem->size, own ? mem->data + at : text,
                 static_cast<std::size_t>(length));
    mem->size += length;
    mem->data[mem->size] = '\0';
    return mem;
}

} // namespace

std::int64_t zel_read_file_to_mem(const char *path, char **data)
{
    *data = nullptr;
    std::int64_t count = 0;
    return logged(read_whole(path, *data, count), read_messages, path) == GOOD ? count : -1;
}

std::int64_t zel_write_mem_to_file(const char *path, const char *data, int length, int flags,
                                   int mode)
{
    if (path == nullptr || data == nullptr) {
        LogPrint(1, "zel_write_mem_to_file: ERROR null ptr %p:%p\n",
                 static_cast<const void *>(path), static_cast<const void *>(data));
        return -1;
    }
    const std::int64_t size = length_of(data, length);
    const outcome result = write_whole(path, data, size, flags, mode);
    return logged(result, write_messages, path) == GOOD ? size : -1;
}

zel_file_mem_t *zel_file_mem_read(zel_file_mem_t *mem, const char *path)
{
    char *data = nullptr;
    std::int64_t count = 0;
    const outcome result = logged(read_whole(path, data, count), mem_read_messages, path);
    const zel::string_guard text(data);
    if (result == NO_MEMORY && mem != nullptr)
        mem->error = 1;
    return result == GOOD ? append_bytes(mem, text.get(), count) : nullptr;
}

zel_file_mem_t *zel_file_mem_append(zel_file_mem_t *mem, const char *text, int length)
{
    if (text == nullptr)
        return mem;
    const std::int64_t size = length_of(text, length);
    return size == 0 ? mem : append_bytes(mem, text, size);
}

std::int64_t zel_file_mem_write(const zel_file_mem_t *mem, const char *path, int flags, int mode)
{
    if (mem == nullptr || path == nullptr) {
        LogPrint(1, "zel_file_mem_write: ERROR null ptr %p:%p\n", static_cast<const void *>(mem),
                 static_cast<const void *>(path));
        return -1;
    }
    const outcome result = write_whole(path, mem->data, mem->size, flags, mode);
    return logged(result, mem_write_messages, path) == GOOD ? mem->size : -1;
}

std::int64_t zel_file_mem_size(const zel_file_mem_t *mem) { return mem == nullptr ? 0 : mem->size; }

char *zel_file_mem_data(const zel_file_mem_t *mem) { return mem == nullptr ? nullptr : mem->data; }

void zel_file_mem_ref(zel_file_mem_t *mem)
{
    if (mem != nullptr)
        ++mem->ref;
}

void zel_file_mem_unref(zel_file_mem_t *mem)
{
    if (mem == nullptr || --mem->ref > 0)
        return;
    std::free(mem->data);
    std::free(mem);
}

void zel_file_mem_free(zel_file_mem_t *mem) { zel_file_mem_unref(mem); }
