#pragma once

// Scanning a text in a test and describing its tokens in one line: the kind's number, and behind a
// colon the text of words, strings, numbers and broken strings: "256:a 267 256:b -1" is a<=b.

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <string_view>

#include "lex/lex.h"

namespace scan_test {

inline constexpr unsigned escapes = LEX_NEWLINE_SPACE | LEX_ESCAPES;

// A scanner over a text in memory or over a file.
class scanner {
public:
    scanner(std::string_view text, unsigned flags, const Keytab *table = nullptr)
        : text_(text), lex_(zel_lex_new(table, flags))
    {
        zel_lex_set_buf(
            lex_, zel_lex_buf_mem_new(text_.data(), static_cast<std::uint32_t>(text_.size())));
    }
    struct from_file {
        const char *path;
    };
    scanner(from_file file, unsigned flags, const Keytab *table = nullptr)
        : lex_(zel_lex_new(table, flags))
    {
        zel_lex_set_buf(lex_, zel_lex_buf_file_new(file.path));
    }
    ~scanner()
    {
        zel_lex_free_buf(lex_);
        _zel_lex_free(lex_);
    }
    scanner(const scanner &) = delete;
    scanner &operator=(const scanner &) = delete;

    zel_lex_t *lex() const { return lex_; }
    zel_lex_buf_t *buf() const { return zel_lex_get_buf(lex_); }
    zel_token_t *next() const { return zel_next_token(lex_); }

private:
    std::string text_;
    zel_lex_t *lex_;
};

inline bool has_text(int id)
{
    return (id >= TOKEN_IDENT && id <= TOKEN_CHAR) || id >= 20000 || id == TOKEN_BAD_ESCAPE ||
           id == TOKEN_ERR_EOL;
}

inline std::string describe(const zel_token_t *token)
{
    std::string out = std::to_string(token->id);
    if (has_text(token->id))
        out += ":" + std::string(token->lexeme);
    return out;
}

inline std::string with_place(const zel_token_t *token)
{
    return describe(token) + "@" + std::to_string(token->line) + ":" +
           std::to_string(token->column);
}

// Every token to the end of the input, the end included.
template <class Describe>
std::string all_tokens(const scanner &from, Describe describe_one)
{
    std::string out;
    for (int n = 0; n < 100000; n++) {
        const zel_token_t *token = from.next();
        out += (n > 0 ? " " : "") + describe_one(token);
        if (token->id == TOKEN_EOF)
            return out;
    }
    return out + " UNENDED";
}

inline std::string scan(std::string_view text, unsigned flags, const Keytab *table = nullptr)
{
    return all_tokens(scanner(text, flags, table), describe);
}

inline std::string scan_places(std::string_view text, unsigned flags, const Keytab *table = nullptr)
{
    return all_tokens(scanner(text, flags, table), with_place);
}

} // namespace scan_test
