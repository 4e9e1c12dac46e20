#include "langlib/compiled-head.h"

#include "langlib/compiled-file.h"
#include "support/string-copy.h"

namespace zel {

char *read_language_name(const char *path, std::string_view data)
{
    // In step with the scanner of _lang_load.
    const zel_lex_guard lex(zel_lex_new(compiled_keywords, LEX_NUMBER_ONE_KIND |
                                                               LEX_KEYWORD_NOCASE | LEX_ESCAPES |
                                                               LEX_NEWLINE_SPACE));
    if (!lex)
        return nullptr;
    const bool is_file = data.data() == nullptr;
    zel_lex_buf_t *buf =
        is_file ? zel_lex_buf_file_new(path)
                : zel_lex_buf_mem_new(data.data(), static_cast<std::uint32_t>(data.size()));
    if (buf == nullptr)
        return nullptr;
    if (is_file && zel_lex_buf_file_get_fp(buf) == nullptr) {
        zel_lex_buf_free(buf);
        return nullptr;
    }
    zel_lex_set_buf(lex.get(), buf);
    char *name = nullptr;
    const zel_token_t *token = zel_next_token(lex.get());
    // The head ends with the first group or entry: the texts are not read.
    while (token->id != TOKEN_EOF && token->id != KEY_GROUP && token->id != '{') {
        const bool named = token->id == KEY_LANGUAGE;
        token = zel_next_token(lex.get());
        // The last name counts, as when the file is loaded.
        if (named && (token->id == TOKEN_STRING || token->id == TOKEN_IDENT))
            replace_string(name, zel_strdup(token->lexeme));
    }
    zel_lex_free_buf(lex.get());
    return name;
}

} // namespace zel
