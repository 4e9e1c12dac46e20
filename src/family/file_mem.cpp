#include "family/file_mem.h"

#include "support/file-call.h"
#include "support/log-print.h"
#include "support/string-copy.h"

#include <bit>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {

constexpr zel::file_messages write_messages = {
    nullptr, nullptr, "zel_write_mem_to_file: ERROR open file >%s<\n", nullptr,
    "zel_write_mem_to_file: ERROR write file >%s<\n"};
constexpr zel::file_messages mem_read_messages = {
    nullptr, "zel_file_mem_read: ERROR stat file >%s<\n",
    "zel_file_mem_read: ERROR open file >%s<\n", nullptr, nullptr};
constexpr zel::file_messages mem_write_messages = {
    nullptr, nullptr, "zel_file_mem_write: ERROR open file >%s<\n", nullptr,
    "zel_file_mem_write: ERROR write file >%s<\n"};

// The flags are the caller's, so what a failed write has left in the file stays there.
zel::file_outcome write_whole(const char *path, const char *data, std::int64_t size, int flags,
                              int mode)
{
    const int fd = zel_open(path, flags, static_cast<mode_t>(mode));
    if (fd < 0)
        return zel::NOT_OPENED;
    const bool written = zel::write_all(fd, {data, static_cast<std::size_t>(size)}) == 0;
    // Some file systems report a full disk only when the file is closed.
    const bool closed = close(fd) == 0;
    return written && closed ? zel::GOOD : zel::FAILED;
}

// Makes room for a text of so many bytes and its NUL. Grows in powers of two, so that appending
// piece by piece is linear although the record keeps no capacity.
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
    // A part of the record's own data moves with that data.
    const auto at =
        reinterpret_cast<std::uintptr_t>(text) - reinterpret_cast<std::uintptr_t>(mem->data);
    // A text in front of the data gives a huge number: one comparison is enough.
    const bool own = at <= static_cast<std::uintptr_t>(mem->size);
    if (!make_room(*mem, mem->size + length)) {
        // The record keeps what it has, and notes that something is missing.
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

std::int64_t zel_write_mem_to_file(const char *path, const char *data, int length, int flags,
                                   int mode)
{
    if (path == nullptr || data == nullptr) {
        LogPrint(1, "zel_write_mem_to_file: ERROR null ptr %p:%p\n",
                 static_cast<const void *>(path), static_cast<const void *>(data));
        return -1;
    }
    const std::int64_t size = length_of(data, length);
    const zel::file_outcome result = write_whole(path, data, size, flags, mode);
    return zel::logged(result, write_messages, path) == zel::GOOD ? size : -1;
}

zel_file_mem_t *zel_file_mem_read(zel_file_mem_t *mem, const char *path)
{
    // Read into an area of its own first: a failure must leave the given record as it was.
    char *data = nullptr;
    std::int64_t count = 0;
    const zel::file_outcome result =
        zel::logged(zel::read_whole(path, data, count), mem_read_messages, path);
    const zel::string_guard text(data);
    // Only a record that exists can tell of the lack of memory.
    if (result == zel::NO_MEMORY && mem != nullptr)
        mem->error = 1;
    return result == zel::GOOD ? append_bytes(mem, text.get(), count) : nullptr;
}

zel_file_mem_t *zel_file_mem_append(zel_file_mem_t *mem, const char *text, int length)
{
    if (text == nullptr)
        return mem;
    const std::int64_t size = length_of(text, length);
    // An empty text makes no record.
    return size == 0 ? mem : append_bytes(mem, text, size);
}

std::int64_t zel_file_mem_write(const zel_file_mem_t *mem, const char *path, int flags, int mode)
{
    if (mem == nullptr || path == nullptr) {
        LogPrint(1, "zel_file_mem_write: ERROR null ptr %p:%p\n", static_cast<const void *>(mem),
                 static_cast<const void *>(path));
        return -1;
    }
    const zel::file_outcome result = write_whole(path, mem->data, mem->size, flags, mode);
    return zel::logged(result, mem_write_messages, path) == zel::GOOD ? mem->size : -1;
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