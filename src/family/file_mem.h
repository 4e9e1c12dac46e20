#pragma once

// Whole files in memory, as in support/file_mem.h: what only other applications of the family call,
// among it a reference-counted record that grows. Failures are logged.

#include <cstdint>
#include <memory>

#include "support/file_mem.h"
#include "support/guard.h"

// Writes length bytes (the string's length when negative) to a file opened with the flags and mode
// of open. Returns the bytes written, -1 on failure.
std::int64_t zel_write_mem_to_file(const char *path, const char *data, int length, int flags,
                                   int mode);

struct zel_file_mem_t {
    int ref;           // holders of the record, 1 at first
    std::int64_t size; // bytes of data without the final NUL
    int error;         // 1 once memory ran out while growing
    char *data;        // owned, always ended with a NUL
};

// Reads a file into a new record, or to the end of the given one. Returns the record; null on
// failure (a given record is then as it was and stays the caller's).
zel_file_mem_t *zel_file_mem_read(zel_file_mem_t *mem, const char *path);

// Appends length bytes (the string's length when negative), which may be the record's own, to the
// record, made when null; a null text or no bytes change nothing. Without memory the record is as
// it was, with its error set. Returns the record.
zel_file_mem_t *zel_file_mem_append(zel_file_mem_t *mem, const char *text, int length);

// Writes the data as zel_write_mem_to_file does.
std::int64_t zel_file_mem_write(const zel_file_mem_t *mem, const char *path, int flags, int mode);

// 0 and null for a null record.
std::int64_t zel_file_mem_size(const zel_file_mem_t *mem);
char *zel_file_mem_data(const zel_file_mem_t *mem);

// One holder more; one less, both in the same way: the last one releases data and record.
void zel_file_mem_ref(zel_file_mem_t *mem);
void zel_file_mem_unref(zel_file_mem_t *mem);
void zel_file_mem_free(zel_file_mem_t *mem);
using zel_file_mem_guard = std::unique_ptr<zel_file_mem_t, zel::release<zel_file_mem_free>>;
