#include "langlib/lang-request.h"

#include "langlib/lang.h"
#include "lex/lex-misc.h"
#include "support/log-print.h"
#include "support/string-copy.h"

namespace {

// Takes a token of that kind; logs what was expected if it is of another.
const zel_token_t *expect(zel_lex_t *lex, int kind, const char *expected)
{
    const zel_token_t *token = zel_next_token(lex);
    if (lex_match(token, kind) == 1)
        return token;
    LogPrint(1, "lex_lang_get: ERROR: %s expected %s\n", zel_lex_linemarker_info(lex, token),
             expected);
    return nullptr;
}

bool read_char(zel_lex_t *lex, int kind, const char *expected)
{
    return expect(lex, kind, expected) != nullptr;
}

bool read_string(zel_lex_t *lex, zel::string_guard &text)
{
    const zel_token_t *token = expect(lex, TOKEN_STRING, "string");
    if (token == nullptr)
        return false;
    // A copy, since the tokens behind it take its place.
    text.reset(zel_strdup2(token->lexeme));
    return text != nullptr;
}

char *_zel_lex_lang_get(zel_lex_t *lex)
{
    zel::string_guard first;
    zel::string_guard second;
    if (lex == nullptr || !read_char(lex, '(', "'('"))
        return nullptr;
    // The log names the line of the bracket as that of the request.
    const int line = static_cast<int>(zel_current_token(lex)->line);
    if (!read_string(lex, first) || !read_char(lex, ',', "','") || !read_string(lex, second))
        return nullptr;
    // Two strings are group and item; with a third one the first only describes.
    if (lex_match(zel_token_look_ahead(lex, 1), ')') == 1) {
        zel_next_token(lex);
        return zel_strdup(_lang_get_string(first.get(), second.get(), zel_lex_get_file(lex), line));
    }
    zel::string_guard third;
    if (!read_char(lex, ',', "','") || !read_string(lex, third) || !read_char(lex, ')', "')'"))
        return nullptr;
    return zel_strdup(_lang_get_string(second.get(), third.get(), zel_lex_get_file(lex), line));
}

} // namespace

char *zel_lex_lang_get_string(zel_lex_t *lex) { return _zel_lex_lang_get(lex); }

char *zel_lex_lang_get(zel_lex_t *lex) { return _zel_lex_lang_get(lex); }
