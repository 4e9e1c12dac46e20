#include "checker/adjacent.h"

#include "checker/c-scan.h"
#include "checker/c-skip.h"
#include "checker/request-form.h"
#include "checker/symtab.h"

#include <cstring>

namespace zel {

namespace {

constexpr unsigned most_depth = 64; // of strings in strings, as in the check

struct search {
    const char *path;
    const adjacent_listener &to;
    symtab_t *symbols;
    unsigned depth;     // string literals around the text that is read
    std::uint32_t line; // where the outermost of them stands
    std::uint32_t column;
};

bool is_piece(int kind) { return kind == TOKEN_STRING || kind == TOKEN_IDENT; }

// The text of a string or the value of a name; null when there is none.
const char *text_of(const search &s, const zel_token_t *token)
{
    if (token->id == TOKEN_STRING)
        return token->lexeme;
    return token->id == TOKEN_IDENT ? symtab_get(s.symbols, token->lexeme) : nullptr;
}

// Tells the pieces that follow the one that was read, if there are any.
void look_behind(const search &s, zel_lex_t *lex, piece of, const std::string &group,
                 const std::string &read)
{
    const zel_token_t *next = zel_token_look_ahead(lex, 1);
    if (!is_piece(next->id))
        return;
    adjacent_request found{s.path, next->line, next->column, of, group, read, read};
    if (s.depth != 0) {
        found.line = s.line;
        found.column = s.column;
    }
    while (is_piece(zel_token_look_ahead(lex, 1)->id)) {
        const zel_token_t *token = zel_next_token(lex);
        const char *text = text_of(s, token);
        found.whole += text == nullptr ? token->lexeme : text;
    }
    s.to(found);
}

bool take_comma(zel_lex_t *lex)
{
    if (zel_token_look_ahead(lex, 1)->id != ',')
        return false;
    zel_next_token(lex);
    return true;
}

// STRING, which must be in one piece; empty when it is none, or is in pieces.
bool take_whole(const search &s, zel_lex_t *lex, piece of, std::string &text)
{
    if (zel_token_look_ahead(lex, 1)->id != TOKEN_STRING)
        return false;
    text = zel_next_token(lex)->lexeme;
    look_behind(s, lex, of, of == piece::group ? text : "", text);
    return take_comma(lex);
}

// "group", item
void read_entry(const search &s, zel_lex_t *lex)
{
    std::string group;
    if (!take_whole(s, lex, piece::group, group) || !is_piece(zel_token_look_ahead(lex, 1)->id))
        return;
    if (const char *item = text_of(s, zel_next_token(lex)))
        look_behind(s, lex, piece::item, group, item);
}

// [symbol ,] "description" , "group" , ... : the item may be in pieces.
void read_described_entry(const search &s, zel_lex_t *lex, bool with_symbol)
{
    if (with_symbol) {
        zel_next_token(lex);
        if (!take_comma(lex))
            return;
    }
    std::string text;
    if (take_whole(s, lex, piece::description, text))
        take_whole(s, lex, piece::group, text);
}

void read_request(const search &s, zel_lex_t *lex, const request_form &form)
{
    skip_to_arguments(lex, form);
    if (form.description)
        read_described_entry(s, lex, form.symbol);
    else
        read_entry(s, lex);
}

// Behind "#": define NAME "value".
void read_definition(const search &s, zel_lex_t *lex)
{
    if (zel_token_look_ahead(lex, 1)->id != WORD_DEFINE)
        return;
    zel_next_token(lex);
    const int kind = zel_token_look_ahead(lex, 1)->id;
    if (!is_piece(kind))
        return;
    const std::string name = zel_next_token(lex)->lexeme;
    const zel_token_t *value = zel_token_look_ahead(lex, 1);
    if (value->id == TOKEN_STRING && symtab_get(s.symbols, name.c_str()) == nullptr)
        symtab_add(s.symbols, name.c_str(), value->lexeme);
}

void read_code(const search &s, zel_lex_t *lex);

// A string literal with those that follow it: its text may be a script.
void read_literals(const search &s, zel_lex_t *lex, const zel_token_t *token)
{
    search inner = s;
    ++inner.depth;
    if (s.depth == 0) {
        inner.line = token->line;
        inner.column = token->column;
    }
    std::string text = token->lexeme;
    while (zel_token_look_ahead(lex, 1)->id == TOKEN_STRING)
        text += zel_next_token(lex)->lexeme;
    if (inner.depth > most_depth || strcasestr(text.c_str(), "lang_") == nullptr)
        return;
    const zel_lex_guard scanner(new_check_scanner());
    const zel_lex_buf_guard buffer(
        zel_lex_buf_mem_new(text.c_str(), static_cast<std::uint32_t>(text.size())));
    if (scanner == nullptr || buffer == nullptr)
        return;
    zel_lex_set_buf(scanner.get(), buffer.get());
    read_code(inner, scanner.get());
}

void skip_stopped(zel_lex_t *lex)
{
    int kind = 0;
    do
        kind = zel_next_token(lex)->id;
    while (kind != WORD_START && kind != TOKEN_EOF);
}

void read_code(const search &s, zel_lex_t *lex)
{
    for (;;) {
        skip_plain_code(lex);
        const zel_token_t *token = zel_next_token(lex);
        const int kind = token->id;
        if (kind == TOKEN_EOF)
            return;
        if (kind == TOKEN_STRING)
            read_literals(s, lex, token);
        else if (kind == '#')
            read_definition(s, lex);
        else if (kind == WORD_STOP)
            skip_stopped(lex);
        for (const request_form &form : request_forms)
            if (form.word == kind)
                read_request(s, lex, form);
    }
}

} // namespace

bool find_adjacent(const char *path, const adjacent_listener &to)
{
    const zel_lex_guard lex(new_check_scanner());
    const zel_lex_buf_guard buffer(zel_lex_buf_file_new(path));
    if (lex == nullptr || buffer == nullptr || zel_lex_buf_file_get_fp(buffer.get()) == nullptr)
        return false;
    zel_lex_set_buf(lex.get(), buffer.get());
    const symtab_guard symbols(symtab_new());
    read_code({path, to, symbols.get(), 0, 0, 0}, lex.get());
    return true;
}

} // namespace zel
