#pragma once

// The words of requests, as the files of this folder scan for them.

#include "lex/lex.h"

// Values of a request's type (item_t::typ).
enum { REQUEST_TEXT = 1, REQUEST_TOOLTIP = 2 };

namespace zel {

enum check_word {
    WORD_GET_STRING = 20000,
    WORD_TOOLTIP,
    WORD_GET_STR,
    WORD_GET,
    WORD_SYM,
    WORD_STOP,
    WORD_START,
    WORD_GET_INFO,
    WORD_APP,
    WORD_DEFINE,
    WORD_WRAPPER = 21000 // the application's first own word
};

inline constexpr Keytab check_words[] = {
    {nullptr, 0},
    {"ZEL_LANGUAGE_CHECK_STOP", WORD_STOP},
    {"ZEL_LANGUAGE_CHECK_START", WORD_START},
    {"ZEL_LANGUAGE_APP", WORD_APP},
    {"lang_get_info", WORD_GET_INFO}, // no request; ignored
    {"lang_get_string", WORD_GET_STRING},
    {"lang_get_str", WORD_GET_STR},
    {"lang_get", WORD_GET},
    {"lang_get_fmt", WORD_GET},
    {"lang_sym", WORD_SYM},
    {"lang_dummy", WORD_GET},
    {"lang_tooltip", WORD_TOOLTIP},
    {"define", WORD_DEFINE},
    {nullptr, 0},
};
static_assert(WORD_DEFINE == 20009);

inline constexpr unsigned check_flags = LEX_KEYWORD_NOCASE | LEX_ESCAPES | LEX_NEWLINE_SPACE;

// How a request's arguments are read: what is passed over before them (one token, the parenthesis,
// or everything through the first comma), and whether a symbol and a description come first.
struct request_form {
    int word;
    int type; // of the item, 0 leaves it
    bool skip_argument;
    bool description;
    bool symbol;
};
inline constexpr request_form request_forms[] = {
    {WORD_GET_STRING, REQUEST_TEXT, false, false, false},
    {WORD_TOOLTIP, REQUEST_TOOLTIP, false, false, false},
    {WORD_GET_STR, REQUEST_TEXT, true, false, false},
    {WORD_GET, 0, false, true, false},
    {WORD_SYM, 0, false, true, true},
};

// Takes what stands before the arguments that are read.
inline void skip_to_arguments(zel_lex_t *lex, const request_form &form)
{
    const zel_token_t *token = zel_next_token(lex);
    while (form.skip_argument && token->id != ',' && token->id != TOKEN_EOF)
        token = zel_next_token(lex);
}

} // namespace zel
