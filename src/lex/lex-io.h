#pragma once

// The character source of the token scanner: a block of memory or a file, handed out one
// character at a time with one of look-ahead, counting position, line and column. Carriage returns
// are dropped (and counted). A client may plug in a reader of its own.

#include <cstdint>
#include <cstdio>
#include <memory>

#include "support/guard.h"

struct zel_lex_buf_t;

// End of input. Characters are bytes 0-255.
inline constexpr int ZEL_LEX_EOF = -1;

enum { ZEL_LEX_BUF_BARE = 0, ZEL_LEX_BUF_MEMORY = 1, ZEL_LEX_BUF_FILE = 2 };

using zel_lex_char_fn = int (*)(zel_lex_buf_t *);
using zel_lex_seek_fn = std::uint64_t (*)(zel_lex_buf_t *, std::uint64_t offset);
using zel_lex_read_fn = int (*)(zel_lex_buf_t *, void *context);

struct zel_lex_buf_t {
    std::uint32_t kind;        // memory, file, or bare
    std::FILE *stream;         // the open file or null
    std::uint32_t borrowed;    // 1: the caller opened the stream and closes it
    char *file_name;           // the path given, owned, or null
    unsigned char *data;       // the block being read
    std::uint32_t owns_data;   // 1: data is the buffer's own read block
    std::uint32_t capacity;    // of an own block: 8192
    zel_lex_char_fn next_char; // default: the shared step that counts and drops returns
    zel_lex_char_fn look_ahead;
    zel_lex_seek_fn seek;
    zel_lex_read_fn read_char; // memory, file, file tail, or the client's
    std::uint32_t size;        // of a memory block
    std::uint64_t position;    // characters taken so far, dropped returns and reads of the end too
    std::uint32_t line;        // from 1
    std::uint32_t column;      // characters taken on this line, from 0
    std::uint32_t count;       // valid bytes in data
    std::uint32_t index;       // next byte of data to read
    std::uint32_t marker_file; // set by line markers: index of the file name
    std::uint32_t marker_line; // line according to line markers, from 1
    std::int32_t held;         // the character read ahead, 0 none
    void *read_context;        // second argument of read_char
    std::uint32_t direct;      // 1: read_char is ours, so bytes of data may be taken directly
    std::int32_t read_error;   // errno of the first reading of the file that failed, or 0
};

// A bare buffer with an own block and the memory functions; null without memory.
[[nodiscard]] zel_lex_buf_t *zel_lex_buf_new();

// A memory buffer over the caller's block, which is neither copied nor owned.
[[nodiscard]] zel_lex_buf_t *zel_lex_buf_mem_new(const void *data, std::uint32_t length);

// Points a buffer at another block: own data and the file name are released, counters start again.
void zel_lex_buf_mem_set_buf(zel_lex_buf_t *buf, const void *data, std::uint32_t length);

// A file buffer; with a path it is opened. Null, logged, when the file cannot be opened (with
// errno) or without memory. Without a path the buffer has no open file.
[[nodiscard]] zel_lex_buf_t *zel_lex_buf_file_new(const char *path);

// Reads from a stream that the caller opened and closes; counters start again.
void zel_lex_buf_file_set_fp(zel_lex_buf_t *buf, std::FILE *stream);
std::FILE *zel_lex_buf_file_get_fp(zel_lex_buf_t *buf);

// On: at the end of the file the read is retried until data comes. 0; 1 for a null buffer.
int zel_lex_buf_file_set_tail(zel_lex_buf_t *buf, int on);

// 1 when the system could not read the buffer's file to its end, else 0 (also for null).
int zel_lex_buf_read_failed(const zel_lex_buf_t *buf);

// Closes the stream unless it is borrowed, releases own data and the record. Null is ignored.
void zel_lex_buf_free(zel_lex_buf_t *buf);
using zel_lex_buf_guard = std::unique_ptr<zel_lex_buf_t, zel::release<zel_lex_buf_free>>;

// The next character; the one after it, held until it is taken (a NUL cannot be held and is lost).
int zel_lex_buf_next_char(zel_lex_buf_t *buf);
int zel_lex_buf_look_ahead(zel_lex_buf_t *buf);

// Moves to an offset from the start; line, column and marker counters stay.
std::uint64_t zel_lex_buf_seek(zel_lex_buf_t *buf, std::uint64_t offset);

namespace zel {

// The shared steps behind the default function slots, inline for the scanner: while the default
// functions are installed a character costs no call.
int buf_shared_next_char(zel_lex_buf_t *buf);
int buf_shared_look_ahead(zel_lex_buf_t *buf);

inline int take_char(zel_lex_buf_t *buf)
{
    if (buf->held != 0) {
        // Position, line and column counted it when it was read ahead.
        const int held = buf->held;
        buf->held = 0;
        return held;
    }
    for (;;) {
        // A client's reader may tell the end in 16 bits, as 0xffff.
        const int c = buf->direct != 0 && buf->index < buf->count
                          ? buf->data[buf->index++]
                          : static_cast<std::int16_t>(buf->read_char(buf, buf->read_context));
        ++buf->position;
        ++buf->column;
        if (c == '\n') {
            ++buf->line;
            ++buf->marker_line;
            buf->column = 0;
        }
        if (c != '\r')
            return c;
    }
}

inline int next_char(zel_lex_buf_t *buf)
{
    return buf->next_char == buf_shared_next_char ? take_char(buf) : buf->next_char(buf);
}

inline int peek_char(zel_lex_buf_t *buf)
{
    if (buf->look_ahead != buf_shared_look_ahead)
        return buf->look_ahead(buf);
    if (buf->held == 0)
        buf->held = next_char(buf);
    return buf->held;
}

} // namespace zel
