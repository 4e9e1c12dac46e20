#include "lex/lex-misc.h"

#include <cstring>

int trans_str_id(const trans_id_t *table, const char *word, int fallback)
{
    for (; word != nullptr && table != nullptr && table->word != nullptr; ++table)
        if (std::strcmp(word, table->word) == 0)
            return static_cast<int>(table->id);
    return fallback;
}

int lex_match(const zel_token_t *token, int kind)
{
    return token != nullptr && token->id == kind ? 1 : 0;
}

const char *zel_lex_linemarker_info(zel_lex_t *lex, const zel_token_t *token)
{
    const char *file = nullptr;
    // Outside of marked files the index is -1, or that of a slot without a name.
    if (token->file_index >= 0 && token->file_index < ZEL_LEX_MARKER_FILES)
        file = lex->marker_files[token->file_index];
    if (file != nullptr)
        // A marker names only file and line, so the column is that of the text that was scanned.
        std::snprintf(lex->position_text, sizeof lex->position_text, "%s:%d:%d", file,
                      static_cast<int>(token->file_line), static_cast<int>(token->column));
    else
        std::snprintf(lex->position_text, sizeof lex->position_text, "%d:%d",
                      static_cast<int>(token->line), static_cast<int>(token->column));
    return lex->position_text;
}

const char *zel_lex_get_file(zel_lex_t *lex)
{
    if (lex == nullptr)
        return "Lex null ptr";
    if (lex->buf == nullptr)
        return "Lexbuf null ptr";
    switch (lex->buf->kind) {
    case ZEL_LEX_BUF_MEMORY:
        return "Memory";
    case ZEL_LEX_BUF_FILE:
        return lex->buf->file_name != nullptr ? lex->buf->file_name : "No file name";
    default:
        return "ERROR";
    }
}

int lex_write_char(std::FILE *stream, int byte)
{
    // The quoted form has no escape for a NUL, so it is left out.
    if (byte == 0)
        return 0;
    const char letter = zel::escape_letter(static_cast<unsigned char>(byte));
    if (letter == 0) {
        std::fputc(byte, stream);
        return 1;
    }
    std::fputc('\\', stream);
    std::fputc(letter, stream);
    return 2;
}

int lex_write_str(std::FILE *stream, const char *text, int n)
{
    if (text == nullptr) {
        std::fputs(" \"\"", stream);
        return 0;
    }
    // The result counts the quotes, but not the blank before them.
    int written = 2;
    std::fputs(" \"", stream);
    for (int i = 0; text[i] != '\0' && (n < 1 || i < n); ++i)
        written += lex_write_char(stream, static_cast<unsigned char>(text[i]));
    std::fputc('"', stream);
    return written;
}

namespace {

constexpr int piece_limit = 1024;

// Returns the length of the next piece: through the separator, or as much as a piece may hold.
int piece_length(const char *text, char separator)
{
    int n = 0;
    while (text[n] != '\0' && n < piece_limit)
        if (text[n++] == separator)
            break;
    return n;
}

} // namespace

int lex_write_split_str_by_sep(std::FILE *stream, int indent, const char *text, char separator,
                               int column)
{
    if (text == nullptr || *text == '\0') {
        std::fputs("\"\"\n", stream);
        return 1;
    }
    int written = 0;
    while (*text != '\0') {
        const int n = piece_length(text, separator);
        // The first piece goes on with the caller's line, unless that is empty (column 0).
        if (column == 0)
            std::fprintf(stream, "%*s", indent > 0 ? indent : 0, "");
        written += lex_write_str(stream, text, n);
        std::fputc('\n', stream);
        text += n;
        column = 0;
    }
    return written;
}
