#include "lex/lex-io.h"

#include "support/file-call.h"
#include "support/log-print.h"
#include "support/string-copy.h"

#include <cerrno>
#include <cstdlib>
#include <unistd.h>

namespace {

constexpr std::uint32_t block_size = 8192;

int read_memory(zel_lex_buf_t *buf, void *)
{
    return buf->index >= buf->count ? ZEL_LEX_EOF : buf->data[buf->index++];
}

// Fills the block from the stream. A buffer without a stream is at its end.
bool load_block(zel_lex_buf_t *buf)
{
    buf->index = 0;
    buf->count = 0;
    if (buf->stream != nullptr)
        buf->count =
            static_cast<std::uint32_t>(std::fread(buf->data, 1, buf->capacity, buf->stream));
    // Keeps the errno of the first failed read: the caller asks for it much later.
    if (buf->count < buf->capacity && buf->read_error == 0 && zel_lex_buf_read_failed(buf) != 0)
        buf->read_error = errno;
    return buf->count != 0;
}

int read_file(zel_lex_buf_t *buf, void *)
{
    if (buf->index >= buf->count && !load_block(buf))
        return ZEL_LEX_EOF;
    return buf->data[buf->index++];
}

// Follows a file that is still being written. The pause keeps an idle wait from using up a
// processor.
int read_file_tail(zel_lex_buf_t *buf, void *)
{
    if (buf->stream == nullptr)
        return ZEL_LEX_EOF;
    while (buf->index >= buf->count && !load_block(buf)) {
        // Otherwise the stream remembers the end of the file and never reads again.
        std::clearerr(buf->stream);
        usleep(1000);
    }
    return buf->data[buf->index++];
}

std::uint64_t seek_memory(zel_lex_buf_t *buf, std::uint64_t offset)
{
    // Line and column stay as they are: nobody counts the line feeds on the way.
    buf->position = offset;
    buf->index = offset > buf->count ? buf->count : static_cast<std::uint32_t>(offset);
    buf->held = 0;
    return offset;
}

std::uint64_t seek_file(zel_lex_buf_t *buf, std::uint64_t offset)
{
    buf->position = offset;
    buf->index = 0;
    buf->count = 0;
    buf->held = 0;
    if (buf->stream != nullptr)
        fseeko(buf->stream, static_cast<off_t>(offset), SEEK_SET);
    return offset;
}

// The count of the block's bytes is not one of them: only the caller knows what the block holds.
void start_counters(zel_lex_buf_t *buf)
{
    buf->position = 0;
    buf->line = 1;
    buf->column = 0;
    buf->index = 0;
    buf->marker_line = 1;
    buf->held = 0;
}

void set_reader(zel_lex_buf_t *buf, zel_lex_read_fn function)
{
    buf->read_char = function;
    buf->read_context = nullptr;
    // The scanner may take runs straight from the block: no client's function stands between.
    buf->direct = 1;
}

void close_stream(zel_lex_buf_t *buf)
{
    if (buf->stream != nullptr && buf->borrowed == 0)
        std::fclose(buf->stream);
    buf->stream = nullptr;
    buf->borrowed = 0;
}

void release_data(zel_lex_buf_t *buf)
{
    if (buf->owns_data != 0)
        std::free(buf->data);
    buf->data = nullptr;
    buf->owns_data = 0;
    buf->capacity = 0;
}

zel_lex_buf_t *new_record()
{
    auto *buf = static_cast<zel_lex_buf_t *>(std::calloc(1, sizeof(zel_lex_buf_t)));
    if (buf == nullptr)
        return nullptr;
    buf->next_char = zel::buf_shared_next_char;
    buf->look_ahead = zel::buf_shared_look_ahead;
    buf->seek = seek_memory;
    set_reader(buf, read_memory);
    start_counters(buf);
    return buf;
}

// Whether the stream is a directory: the system opens one for reading and only then has nothing to
// give.
bool is_directory(std::FILE *stream)
{
    struct stat status {};
    return fstat(fileno(stream), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

namespace zel {

int buf_shared_next_char(zel_lex_buf_t *buf) { return take_char(buf); }

int buf_shared_look_ahead(zel_lex_buf_t *buf)
{
    // 0 means that nothing is held, so a NUL byte that is looked at ahead is lost.
    if (buf->held == 0)
        buf->held = next_char(buf);
    return buf->held;
}

} // namespace zel

zel_lex_buf_t *zel_lex_buf_new()
{
    zel_lex_buf_guard buf(new_record());
    if (!buf)
        return nullptr;
    buf->data = static_cast<unsigned char *>(std::malloc(block_size));
    if (buf->data == nullptr)
        return nullptr;
    // A bare buffer has an area but no bytes in it: until a client plugs in a reader, it is at its
    // end.
    buf->owns_data = 1;
    buf->capacity = block_size;
    return buf.release();
}

zel_lex_buf_t *zel_lex_buf_mem_new(const void *data, std::uint32_t length)
{
    zel_lex_buf_t *buf = new_record();
    if (buf != nullptr)
        zel_lex_buf_mem_set_buf(buf, data, length);
    return buf;
}

void zel_lex_buf_mem_set_buf(zel_lex_buf_t *buf, const void *data, std::uint32_t length)
{
    if (buf == nullptr)
        return;
    close_stream(buf);
    release_data(buf);
    zel::replace_string(buf->file_name, nullptr);
    buf->kind = ZEL_LEX_BUF_MEMORY;
    buf->seek = seek_memory;
    set_reader(buf, read_memory);
    // The block is only read; the record points to it as to one of its own.
    buf->data = static_cast<unsigned char *>(const_cast<void *>(data));
    buf->size = length;
    buf->count = length;
    start_counters(buf);
}

zel_lex_buf_t *zel_lex_buf_file_new(const char *path)
{
    zel_lex_buf_guard buf(zel_lex_buf_new());
    if (!buf) {
        LogPrint(1, "zel_lex_buf_file_new: ERROR not enough memory\n");
        return nullptr;
    }
    buf->kind = ZEL_LEX_BUF_FILE;
    buf->seek = seek_file;
    set_reader(buf.get(), read_file);
    buf->file_name = zel_strdup(path);
    if (!zel::is_copy(buf->file_name, path)) {
        LogPrint(1, "zel_lex_buf_file_new: ERROR not enough memory\n");
        return nullptr;
    }
    // The stream comes later, through zel_lex_buf_file_set_fp.
    if (path == nullptr)
        return buf.release();
    buf->stream = zel_fopen(path, "rb");
    if (buf->stream == nullptr || is_directory(buf->stream)) {
        // Freeing may change errno, which the caller reports.
        const int error = buf->stream == nullptr ? errno : EISDIR;
        LogPrint(1, "zel_lex_buf_file_new: ERROR open file >%s<\n", path);
        buf.reset();
        errno = error;
        return nullptr;
    }
    return buf.release();
}

void zel_lex_buf_file_set_fp(zel_lex_buf_t *buf, std::FILE *stream)
{
    if (buf == nullptr)
        return;
    close_stream(buf);
    // The caller opened the stream, so the caller closes it.
    buf->stream = stream;
    buf->borrowed = 1;
    buf->count = 0;
    start_counters(buf);
}

std::FILE *zel_lex_buf_file_get_fp(zel_lex_buf_t *buf)
{
    return buf == nullptr ? nullptr : buf->stream;
}

int zel_lex_buf_file_set_tail(zel_lex_buf_t *buf, int on)
{
    if (buf == nullptr)
        return 1;
    // Takes the place of a reader that a client has plugged in, too.
    set_reader(buf, on != 0 ? read_file_tail : read_file);
    return 0;
}

int zel_lex_buf_read_failed(const zel_lex_buf_t *buf)
{
    return buf != nullptr && buf->stream != nullptr && std::ferror(buf->stream) != 0 ? 1 : 0;
}

void zel_lex_buf_free(zel_lex_buf_t *buf)
{
    if (buf == nullptr)
        return;
    close_stream(buf);
    release_data(buf);
    std::free(buf->file_name);
    std::free(buf);
}

int zel_lex_buf_next_char(zel_lex_buf_t *buf) { return buf->next_char(buf); }

int zel_lex_buf_look_ahead(zel_lex_buf_t *buf) { return buf->look_ahead(buf); }

std::uint64_t zel_lex_buf_seek(zel_lex_buf_t *buf, std::uint64_t offset)
{
    return buf->seek(buf, offset);
}
