#include "checker/c-scan.h"

#include "app/global.h"
#include "checker/c-skip.h"
#include "checker/kept-scanner.h"
#include "source/item-index.h"
#include "support/string-copy.h"
#include "support/string.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

using namespace zel;

constexpr std::size_t NAME_SIZE = 1024; // of a group, item or place, with the closing NUL
constexpr std::size_t APP_SIZE = 2048;
using name_buffer = char[NAME_SIZE];

// Every level of strings inside strings needs a longer text around it; deeper ones are no scripts.
constexpr unsigned MAX_STRING_DEPTH = 64;
constexpr unsigned MAX_CALL_DEPTH = 64; // the same for calls

// What the scan of one file carries along.
struct scan {
    zel::item_index &index;
    symtab_t *symbols;
    const char *path;
    const scan_how &how;
    unsigned string_depth = 0; // string literals around the text being read
    unsigned call_depth = 0;   // calls around the one being read
    place literal{};           // where the outermost of them stands
    place request{};           // where the request that is read stands
    bool told = false;         // that it is not read
    bool is_defined = false;   // a macro of the request's name: its parameters are no texts
};

int line_of(const zel_token_t *token) { return static_cast<int>(token->line); }

place place_of(const scan &s, const zel_token_t *token)
{
    return s.string_depth != 0 ? s.literal : place{token->line, token->column};
}

// A message as the command prints it.
[[gnu::format(printf, 2, 3)]] void say(const scan &s, const char *format, ...)
{
    if (s.how.messages == nullptr)
        return;
    std::va_list values;
    va_start(values, format);
    std::vfprintf(s.how.messages, format, values);
    va_end(values);
}

// Tells the listener about the first fault of the request: later ones only follow from it.
void tell_unread(scan &s, piece of, unread_cause cause = unread_cause::no_literal)
{
    if (s.how.to != nullptr && !s.told)
        s.how.to->unread({s.path, s.request, of, cause});
    s.told = true;
}

// Adds as much of the text as fits.
void append(scan &s, name_buffer &buffer, const char *text, piece of)
{
    const std::size_t length = std::strlen(buffer);
    const std::size_t whole = std::strlen(text);
    const std::size_t added = std::min(whole, NAME_SIZE - 1 - length);
    std::memcpy(buffer + length, text, added);
    buffer[length + added] = '\0';
    // The name is longer than the buffer: the look-up would find another one.
    if (added != whole)
        tell_unread(s, of, unread_cause::goes_on);
}

// Returns the text of a string or the value of a name; null after a message.
const char *text_of(scan &s, const zel_token_t *token, int error, piece of = piece::item)
{
    if (token->id == TOKEN_STRING) {
        // A NUL byte ends the text for everything that follows here.
        if (token->length != std::strlen(token->lexeme))
            tell_unread(s, of, unread_cause::goes_on);
        return token->lexeme;
    }
    const char *value = nullptr;
    if (token->id == TOKEN_IDENT) {
        value = symtab_get(s.symbols, token->lexeme);
        if (value == nullptr)
            say(s, "WARNING: syntax %s line %d symbol not found\n", s.path, line_of(token));
        else if (symtab_is_doubtful(s.symbols, token->lexeme))
            tell_unread(s, of, unread_cause::two_values);
    } else {
        say(s, "ERROR(%d): syntax %s line %d string or id expecetd\n", error, s.path,
            line_of(token));
    }
    if (value == nullptr)
        tell_unread(s, of);
    return value;
}

bool is_piece(const zel_token_t *token)
{
    return token->id == TOKEN_STRING || token->id == TOKEN_IDENT;
}

int read_text(scan &s, const char *text, place at);

// Takes the literals that follow a string directly, and appends them.
void take_literals(zel_lex_t *lex, std::string &text)
{
    while (zel_token_look_ahead(lex, 1)->id == TOKEN_STRING)
        text += zel_next_token(lex)->lexeme;
}

// Takes the pieces of a text that follow the one just read. As outside of requests, literals may be
// scripts.
std::string take_pieces(scan &s, zel_lex_t *lex)
{
    std::string out;
    while (is_piece(zel_token_look_ahead(lex, 1))) {
        const zel_token_t *token = zel_next_token(lex);
        if (token->id == TOKEN_IDENT) {
            const char *value = symtab_get(s.symbols, token->lexeme);
            out += value == nullptr ? token->lexeme : value;
            continue;
        }
        const place at = place_of(s, token);
        std::string text = token->lexeme;
        take_literals(lex, text);
        out += text;
        if (read_text(s, text.c_str(), at) != 0)
            zel::copy_failed(); // a request may have been lost
    }
    return out;
}

// For a listener, after an item without a description: looks whether that was all of the text.
void look_behind(scan &s, zel_lex_t *lex, const char *group, const std::string &name)
{
    const zel_token_t *next = zel_token_look_ahead(lex, 1);
    if (!is_piece(next)) {
        if (next->id != ')')
            tell_unread(s, piece::item, unread_cause::goes_on);
        return;
    }
    if (s.told)
        return;
    adjacent_request found{s.path, place_of(s, next), piece::item, group, name, name};
    found.whole += take_pieces(s, lex);
    s.how.to->in_pieces(found);
    s.told = true;
}

// For a listener: where a comma should be, behind the first piece of a part, stands another token.
// If that is a piece, too, the request comes in pieces.
void look_at_piece(scan &s, zel_lex_t *lex, piece of, const char *read)
{
    const zel_token_t *token = zel_current_token(lex);
    if (of == piece::symbol || !is_piece(token) || s.told)
        return tell_unread(s, of);
    adjacent_request found{s.path, place_of(s, token), of, of == piece::group ? read : "", read,
                           read};
    const char *value =
        token->id == TOKEN_STRING ? token->lexeme : symtab_get(s.symbols, token->lexeme);
    found.whole += value == nullptr ? token->lexeme : value;
    found.whole += take_pieces(s, lex);
    s.how.to->in_pieces(found);
    s.told = true;
}

// Reads the comma behind a part of a request; read is what was read of that part.
bool read_comma(scan &s, zel_lex_t *lex, int error, piece of, const char *read)
{
    const zel_token_t *token = zel_next_token(lex);
    if (token->id == ',')
        return true;
    say(s, "ERROR(%d): syntax %s line %d expected ','\n", error, s.path, line_of(token));
    if (s.how.to != nullptr)
        look_at_piece(s, lex, of, read);
    return false;
}

struct request {
    name_buffer group;
    int line; // of the group's token
    place at; // of the item's
};

void print_request(const scan &s, const char *where, const char *group, const char *item)
{
    say(s, "%s: ->%s<->%s<-\n", where, group, item);
}

void make_place(const scan &s, const request &wanted, name_buffer &where)
{
    // A place is only shown, so one that does not fit may be cut.
    if (std::snprintf(where, sizeof where, "%05d:%s", wanted.line, s.path) < 0)
        where[0] = '\0';
    zel_path_to_unix(where);
}

// Finds or inserts the request's item and marks it as used; null without memory.
zel::indexed_item *use_item(const scan &s, const request &wanted, const char *name)
{
    zel::indexed_item *found = s.index.find(wanted.group, name);
    const bool is_new = found == nullptr;
    if (!is_new) {
        say(s, "    found ");
    } else {
        say(s, "not found, insert item ");
        found = s.index.insert(wanted.group, name);
        if (found == nullptr)
            return nullptr;
        found->item->ctime = s.how.now;
    }
    found->item->used = 1;
    if (s.how.to != nullptr)
        s.how.to->found({s.path, wanted.at, wanted.group, found->item, is_new});
    return found;
}

// "group", item
int read_entry(scan &s, zel_lex_t *lex, int type)
{
    request wanted{};
    const zel_token_t *token = zel_next_token(lex);
    if (token->id != TOKEN_STRING) {
        say(s, "ERROR(9): syntax %s line %d missing group string  ID %d\n", s.path, line_of(token),
            token->id);
        tell_unread(s, piece::group);
        return 1;
    }
    append(s, wanted.group, text_of(s, token, 0, piece::group), piece::group);
    wanted.line = line_of(token);
    if (!read_comma(s, lex, 10, piece::group, wanted.group))
        return 1;
    token = zel_next_token(lex);
    wanted.at = place_of(s, token);
    const char *name = text_of(s, token, 11);
    if (name == nullptr)
        return 1;

    zel::indexed_item *used = use_item(s, wanted, name);
    name_buffer where;
    make_place(s, wanted, where);
    if (used == nullptr) {
        say(s, "\nERROR(24): insert item >%s<", name);
        print_request(s, where, wanted.group, name);
        return 1;
    }
    used->item->typ = type;
    // A place without memory counts as a failed copy: the command then writes nothing.
    zel::add_use(*used, where);
    print_request(s, where, wanted.group, name);
    if (s.how.to != nullptr)
        look_behind(s, lex, wanted.group, name);
    return 0;
}

// symbol ,
bool read_symbol(scan &s, zel_lex_t *lex)
{
    const zel_token_t *token = zel_next_token(lex);
    if (token->id == TOKEN_IDENT || token->id == WORD_SYM)
        return read_comma(s, lex, 13, piece::symbol, "");
    say(s, "ERROR(12): syntax %s line %d missing symbol id ID(%d)\n", s.path, line_of(token),
        token->id);
    tell_unread(s, piece::symbol);
    return false;
}

// "description" ,
zel::string_guard read_description(scan &s, zel_lex_t *lex)
{
    const zel_token_t *token = zel_next_token(lex);
    if (token->id != TOKEN_STRING) {
        say(s, "ERROR(14): syntax %s line %d missing description\n", s.path, line_of(token));
        tell_unread(s, piece::description);
        return nullptr;
    }
    zel::string_guard description(zel_strdup2(token->lexeme));
    if (description == nullptr) {
        say(s, "ERROR(15): not enough memory\n");
        return nullptr;
    }
    return read_comma(s, lex, 16, piece::description, description.get()) ? std::move(description)
                                                                         : nullptr;
}

// "group" ,
bool read_group(scan &s, zel_lex_t *lex, request &wanted)
{
    const zel_token_t *token = zel_next_token(lex);
    if (token->id != TOKEN_STRING) {
        say(s, "ERROR(17): syntax %s line %d missing group string \n", s.path, line_of(token));
        tell_unread(s, piece::group);
        return false;
    }
    append(s, wanted.group, text_of(s, token, 0, piece::group), piece::group);
    wanted.line = line_of(token);
    return read_comma(s, lex, 18, piece::group, wanted.group);
}

// item item ... ) False when the call has no end, or nothing is left of a name after a message.
bool read_item_name(scan &s, zel_lex_t *lex, request &wanted, name_buffer &name)
{
    bool complained = false;
    for (bool first = true;; first = false) {
        const zel_token_t *token = zel_next_token(lex);
        if (first)
            wanted.at = place_of(s, token);
        if (token->id == ')')
            return !complained || name[0] != '\0';
        const char *text = text_of(s, token, 19);
        if (token->id == TOKEN_EOF)
            return false;
        if (text != nullptr)
            append(s, name, text, piece::item);
        complained = complained || text == nullptr;
    }
}

// [symbol ,] "description" , "group" , item item ... )
int read_described_entry(scan &s, zel_lex_t *lex, bool with_symbol)
{
    if (with_symbol && !read_symbol(s, lex))
        return 1;
    zel::string_guard description = read_description(s, lex);
    request wanted{};
    name_buffer name{};
    if (description == nullptr || !read_group(s, lex, wanted) ||
        !read_item_name(s, lex, wanted, name))
        return 1;

    zel::indexed_item *used = use_item(s, wanted, name);
    if (used == nullptr) {
        say(s, "\nERROR(25): insert item >%s<", name);
        return 1;
    }
    // The request that is scanned last decides about the description.
    zel::replace_string(used->item->description, description.release());
    name_buffer where;
    make_place(s, wanted, where);
    zel::add_use(*used, where);
    print_request(s, where, wanted.group, name);
    return 0;
}

int read_tokens(scan &s, zel_lex_t *lex);

void read_request(scan &s, zel_lex_t *lex, const request_form &form)
{
    s.request = place_of(s, zel_current_token(lex));
    // In a definition of the request's own name the parameters are no texts: nothing is told.
    s.told = s.is_defined;
    s.is_defined = false;
    skip_to_arguments(lex, form);
    if (form.description)
        read_described_entry(s, lex, form.symbol);
    else
        read_entry(s, lex, form.type);
}

// After the STOP marker, through the START marker or the end.
void skip_stopped(scan &s, zel_lex_t *lex, const zel_token_t *token)
{
    say(s, "language_check stop file >%s< line >%d<\n", s.path, line_of(token));
    do
        token = zel_next_token(lex);
    while (token->id != WORD_START && token->id != TOKEN_EOF);
    if (token->id == WORD_START)
        say(s, "language check start file >%s< line >%d<\n", s.path, line_of(token));
}

// "name" version
int read_app(scan &s, char **app, zel_lex_t *lex)
{
    const zel_token_t *token = zel_next_token(lex);
    s.request = place_of(s, token);
    s.told = false;
    if (token->id != TOKEN_STRING) {
        say(s, "ERROR(7): syntax %s line %d missing first string \n", s.path, line_of(token));
        tell_unread(s, piece::application);
        return 1;
    }
    name_buffer name{};
    append(s, name, token->lexeme, piece::application);
    const char *version = text_of(s, zel_next_token(lex), 8, piece::application);
    if (version == nullptr)
        return 1;
    char text[APP_SIZE];
    if (std::snprintf(text, sizeof text, "%s:%s", name, version) < 0)
        return 1;
    zel::replace_string(*app, zel_strdup(text));
    return 0;
}

// NAME "value". The compiler may see a longer value than the scan keeps, or another one.
void read_name(scan &s, zel_lex_t *lex)
{
    const std::string name = zel_next_token(lex)->lexeme;
    if (zel_token_look_ahead(lex, 1)->id != TOKEN_STRING)
        return;
    const zel_token_t *value = zel_next_token(lex);
    const char *known = symtab_get(s.symbols, name.c_str());
    const bool differs = known != nullptr && std::strcmp(known, value->lexeme) != 0;
    // A second definition changes nothing: it is added for the message about it.
    if (known == nullptr || s.how.messages != nullptr)
        symtab_add(s.symbols, name.c_str(), value->lexeme);
    if (s.how.to == nullptr)
        return;
    const std::uint32_t line = value->line;
    const zel_token_t *next = zel_token_look_ahead(lex, 1);
    // The value continues behind the literal: only a part of it is known.
    if (differs || (next->id != TOKEN_EOF && next->line == line))
        symtab_doubt(s.symbols, name.c_str());
}

// After "#": reads define NAME "value", or the application's name. What does not belong to a
// definition stays for the loop; a wrapper's own definition is passed over.
void read_definition(scan &s, zel_lex_t *lex)
{
    if (zel_token_look_ahead(lex, 1)->id != WORD_DEFINE)
        return;
    zel_next_token(lex);
    const int kind = zel_token_look_ahead(lex, 1)->id;
    if (kind == WORD_APP) {
        zel_next_token(lex);
        read_app(s, &s.index.source()->app, lex);
    } else if (kind == TOKEN_IDENT || kind == TOKEN_STRING) {
        read_name(s, lex);
    } else if (kind >= WORD_WRAPPER) {
        skip_definition(lex);
    } else {
        s.is_defined = kind >= WORD_GET_STRING && kind <= WORD_SYM;
    }
}

// Most literals hold nothing to find, and need no scanner to tell. Every request word has "lang"
// and an underscore in it, and a definition has a quoted value; a word can also come about from
// quoted pieces, or where a carriage return drops out.
bool may_hold_request(const char *text)
{
    const char *mark = std::strpbrk(text, "\"\r_");
    return mark != nullptr && (std::strpbrk(mark, "\"\r") != nullptr || strcasestr(text, "lang"));
}

// The text of a string literal may be a script with requests of its own.
int read_text(scan &s, const char *text, place at)
{
    if (s.string_depth == MAX_STRING_DEPTH || !may_hold_request(text))
        return 0;
    const kept_lex_guard lex = take_scanner();
    if (lex == nullptr) {
        say(s, "ERROR(5): unable to init string lexical scanner\n");
        return -1;
    }
    const zel_lex_buf_guard buffer(
        zel_lex_buf_mem_new(text, static_cast<std::uint32_t>(std::strlen(text))));
    if (buffer == nullptr) {
        say(s, "ERROR(6): unable to init string lexical scanner\n");
        return -1;
    }
    zel_lex_set_buf(lex.get(), buffer.get());
    scan inner{s.index, s.symbols, s.path, s.how, s.string_depth + 1, 0, at};
    return read_tokens(inner, lex.get());
}

// Reads a string literal and those that follow it directly.
int read_literals(scan &s, zel_lex_t *lex, const zel_token_t *token)
{
    const place at = place_of(s, token);
    if (zel_token_look_ahead(lex, 1)->id != TOKEN_STRING)
        return read_text(s, token->lexeme, at);
    std::string joined = token->lexeme;
    take_literals(lex, joined);
    return read_text(s, joined.c_str(), at);
}

void read_call(scan &s, zel_lex_t *lex, const zel_token_t *token, const wrapper *form);

// Acts on the token, which is no string.
void read_word(scan &s, zel_lex_t *lex, const zel_token_t *token)
{
    const int kind = token->id;
    if (kind == '#')
        read_definition(s, lex);
    else if (kind == WORD_STOP)
        skip_stopped(s, lex, token);
    else if (kind >= WORD_WRAPPER && s.how.wrappers != nullptr)
        read_call(s, lex, token, s.how.wrappers->of(token));
    else if (kind == TOKEN_IDENT && s.string_depth == 0)
        read_call(s, lex, token, locale_word(token));
    else if (kind >= WORD_GET_STRING)
        for (const request_form &form : request_forms)
            if (form.word == kind)
                read_request(s, lex, form);
}

// Reads a call of a word of lang-locale.h or of one of the application's own functions; null is
// neither.
void read_call(scan &s, zel_lex_t *lex, const zel_token_t *token, const wrapper *form)
{
    if (form == nullptr || s.call_depth == MAX_CALL_DEPTH)
        return;
    const place at{token->line, token->column};
    const bool own = token->id >= WORD_WRAPPER && s.how.wrappers != nullptr;
    ++s.call_depth;
    const wrapper_call call =
        read_wrapper_call(lex, own ? s.how.wrappers->group() : std::string(), *form, s.symbols,
                          [&](const zel_token_t *word) { read_word(s, lex, word); });
    --s.call_depth;
    s.request = at;
    s.told = false;
    if (call.is == wrapper_call::kind::unread) {
        if (!own)
            say(s, "WARNING: syntax %s line %d %s is no literal\n", s.path,
                static_cast<int>(at.line), call.of == piece::group ? "group" : "item");
        tell_unread(s, call.of);
    }
    if (call.is != wrapper_call::kind::read)
        return;
    if (call.doubtful)
        tell_unread(s, call.of, unread_cause::two_values);
    request wanted{{}, static_cast<int>(call.at.line), call.at};
    append(s, wanted.group, call.group.c_str(), piece::group);
    name_buffer where;
    make_place(s, wanted, where);
    zel::indexed_item *used = use_item(s, wanted, call.item.c_str());
    if (used == nullptr)
        // A lost request: the command must not write the source.
        return zel::copy_failed();
    used->item->typ = REQUEST_TEXT;
    zel::add_use(*used, where);
    print_request(s, where, wanted.group, call.item.c_str());
}

int read_tokens(scan &s, zel_lex_t *lex)
{
    const bool has_wrappers = s.how.wrappers != nullptr && s.string_depth == 0;
    for (;;) {
        // The jump looks for "lang" alone and would miss the application's own words.
        if (!has_wrappers)
            zel::skip_plain_code(lex);
        const zel_token_t *token = zel_next_token(lex);
        const int kind = token->id;
        if (kind == TOKEN_EOF) {
            if (zel_lex_out_of_memory(lex) != 0)
                zel::copy_failed(); // a request may have been lost
            return 0;
        }
        if (kind != TOKEN_STRING)
            read_word(s, lex, token);
        else if (read_literals(s, lex, token) != 0)
            return -1;
    }
}

// A scan as commands of old have it, for one of the readers below.
struct printed_scan {
    printed_scan(LangSource *root, symtab_t *symbols, const char *path)
        : none(root == nullptr ? lang_alloc_group() : nullptr),
          index(root == nullptr ? none.get() : root), s{index, symbols, path, how}
    {
    }
    // The order counts: index refers to none, and s to index and how.
    source_guard none;
    zel::item_index index;
    scan_how how{lang_global.start_time, stdout, nullptr, nullptr};
    scan s;
};

} // namespace

int check_parse(LangSource *root, symtab_t *symbols, zel_lex_t *lex, const char *path)
{
    printed_scan of(root, symbols, path);
    return read_tokens(of.s, lex);
}

int parse_lang_entry(LangSource *root, symtab_t *symbols, zel_lex_t *lex, const char *path,
                     int type)
{
    printed_scan of(root, symbols, path);
    return read_entry(of.s, lex, type);
}

int parse_lang_entry2(LangSource *root, symtab_t *symbols, zel_lex_t *lex, const char *path,
                      int with_symbol)
{
    printed_scan of(root, symbols, path);
    return read_described_entry(of.s, lex, with_symbol != 0);
}

int parse_lang_app(char **app, symtab_t *symbols, zel_lex_t *lex, const char *path)
{
    printed_scan of(nullptr, symbols, path);
    return read_app(of.s, app, lex);
}

int get_id_or_string(LangSource *root, symtab_t *symbols, zel_lex_t *lex, char *buffer,
                     const char *path)
{
    printed_scan of(root, symbols, path);
    const char *text = text_of(of.s, zel_next_token(lex), 23);
    if (text != nullptr)
        std::snprintf(buffer, NAME_SIZE, "%s", text);
    return 0;
}

int zel::scan_tokens(item_index &index, symtab_t *symbols, const char *path, const scan_how &how,
                     zel_lex_t *lex)
{
    scan s{index, symbols, path, how};
    return read_tokens(s, lex);
}
