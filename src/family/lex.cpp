#include "family/lex.h"

#include "lex/lex-io.h"
#include "lex/lex-keyword.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

int keyws(zel_lex_t *lex, const char *word)
{
    return zel::find_keyword(lex, word, std::strlen(word));
}

std::uint64_t zel_lex_seek(zel_lex_t *lex, std::uint64_t offset)
{
    // A token that has been looked at ahead is kept: it comes before those of the new place.
    zel_lex_buf_seek(lex->buf, offset);
    return offset;
}

void zel_lex_buf_clear(zel_lex_t *lex, zel_lex_buf_t *buf)
{
    zel_lex_set_buf(lex, buf);
    // What the block still held is dropped. A file buffer reads on where its stream stands.
    buf->count = 0;
    buf->index = 0;
}

int zel_lex_buf_set_read_char(zel_lex_buf_t *buf, zel_lex_read_fn function, void *context)
{
    buf->read_char = function;
    buf->read_context = context;
    // From now on every character goes through the client's function.
    buf->direct = 0;
    return 0;
}

int scf_printf(const char *format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::vprintf(format, args);
    va_end(args);
    return 0;
}
