#include "checker/c-scan.h"

#include "app/global.h"
#include "checker/c-skip.h"
#include "source/item-index.h"
#include "support/string-copy.h"
#include "support/string.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

using namespace zel;

constexpr std::size_t NAME_SIZE = 1024; // of a group, item or place, with the closing NUL
constexpr std::size_t APP_SIZE = 2048;
constexpr std::size_t READ_SIZE = 1 << 16;
using name_buffer = char[NAME_SIZE];

// Every level of strings inside strings needs a longer text around it; deeper ones are no scripts.
constexpr unsigned MAX_STRING_DEPTH = 64;

// What one file's scan carries along.
struct scan {
    zel::item_index &index;
    symtab_t *symbols;
    const char *path;
    unsigned string_depth; // string literals around the text being read
    std::int64_t now;      // the creation time of inserted items
};

int line_of(const zel_token_t *token) { return static_cast<int>(token->line); }

// Adds as much of the text as fits.
void append(name_buffer &buffer, const char *text)
{
    const std::size_t length = std::strlen(buffer);
    const std::size_t added = std::min(std::strlen(text), NAME_SIZE - 1 - length);
    std::memcpy(buffer + length, text, added);
    buffer[length + added] = '\0';
}

// The text of a string or the value of a name; null after a message.
const char *text_of(const symtab_t *symbols, const zel_token_t *token, const char *path, int error)
{
    if (token->id == TOKEN_STRING)
        return token->lexeme;
    if (token->id != TOKEN_IDENT) {
        std::printf("ERROR(%d): syntax %s line %d string or id expecetd\n", error, path,
                    line_of(token));
        return nullptr;
    }
    const char *value = symtab_get(symbols, token->lexeme);
    if (value == nullptr)
        std::printf("WARNING: syntax %s line %d symbol not found\n", path, line_of(token));
    return value;
}

bool read_comma(const scan &s, zel_lex_t *lex, int error)
{
    const zel_token_t *token = zel_next_token(lex);
    if (token->id == ',')
        return true;
    std::printf("ERROR(%d): syntax %s line %d expected ','\n", error, s.path, line_of(token));
    return false;
}

struct request {
    name_buffer group;
    int line; // of the group's token
};

void print_request(const char *place, const char *group, const char *item)
{
    std::printf("%s: ->%s<->%s<-\n", place, group, item);
}

void make_place(const scan &s, const request &wanted, name_buffer &place)
{
    if (std::snprintf(place, sizeof place, "%05d:%s", wanted.line, s.path) < 0)
        place[0] = '\0';
    zel_path_to_unix(place);
}

// The request's item, found or inserted, and marked as used; null without memory.
zel::indexed_item *use_item(const scan &s, const request &wanted, const char *name)
{
    zel::indexed_item *found = s.index.find(wanted.group, name);
    if (found != nullptr) {
        std::printf("    found ");
    } else {
        std::printf("not found, insert item ");
        found = s.index.insert(wanted.group, name);
        if (found == nullptr)
            return nullptr;
        found->item->ctime = s.now;
    }
    found->item->used = 1;
    return found;
}

// "group", item
int read_entry(const scan &s, zel_lex_t *lex, int type)
{
    request wanted{};
    const zel_token_t *token = zel_next_token(lex);
    if (token->id != TOKEN_STRING) {
        std::printf("ERROR(9): syntax %s line %d missing group string  ID %d\n", s.path,
                    line_of(token), token->id);
        return 1;
    }
    append(wanted.group, token->lexeme);
    wanted.line = line_of(token);
    if (!read_comma(s, lex, 10))
        return 1;
    const char *name = text_of(s.symbols, zel_next_token(lex), s.path, 11);
    if (name == nullptr)
        return 1;

    zel::indexed_item *used = use_item(s, wanted, name);
    name_buffer place;
    make_place(s, wanted, place);
    if (used == nullptr) {
        std::printf("\nERROR(24): insert item >%s<", name);
        print_request(place, wanted.group, name);
        return 1;
    }
    used->item->typ = type;
    zel::add_use(*used, place);
    print_request(place, wanted.group, name);
    return 0;
}

// symbol ,
bool read_symbol(const scan &s, zel_lex_t *lex)
{
    const zel_token_t *token = zel_next_token(lex);
    if (token->id == TOKEN_IDENT || token->id == WORD_SYM)
        return read_comma(s, lex, 13);
    std::printf("ERROR(12): syntax %s line %d missing symbol id ID(%d)\n", s.path, line_of(token),
                token->id);
    return false;
}

// "description" ,
zel::string_guard read_description(const scan &s, zel_lex_t *lex)
{
    const zel_token_t *token = zel_next_token(lex);
    if (token->id != TOKEN_STRING) {
        std::printf("ERROR(14): syntax %s line %d missing description\n", s.path, line_of(token));
        return nullptr;
    }
    zel::string_guard description(zel_strdup2(token->lexeme));
    if (description == nullptr) {
        std::puts("ERROR(15): not enough memory");
        return nullptr;
    }
    return read_comma(s, lex, 16) ? std::move(description) : nullptr;
}

// "group" ,
bool read_group(const scan &s, zel_lex_t *lex, request &wanted)
{
    const zel_token_t *token = zel_next_token(lex);
    if (token->id != TOKEN_STRING) {
        std::printf("ERROR(17): syntax %s line %d missing group string \n", s.path, line_of(token));
        return false;
    }
    append(wanted.group, token->lexeme);
    wanted.line = line_of(token);
    return read_comma(s, lex, 18);
}

// item item ... ) False when the call has no end, or nothing is left of a name after a message.
bool read_item_name(const scan &s, zel_lex_t *lex, name_buffer &name)
{
    bool complained = false;
    for (;;) {
        const zel_token_t *token = zel_next_token(lex);
        if (token->id == ')')
            return !complained || name[0] != '\0';
        const char *piece = text_of(s.symbols, token, s.path, 19);
        if (token->id == TOKEN_EOF)
            return false;
        if (piece != nullptr)
            append(name, piece);
        complained = complained || piece == nullptr;
    }
}

// [symbol ,] "description" , "group" , item item ... )
int read_described_entry(const scan &s, zel_lex_t *lex, bool with_symbol)
{
    if (with_symbol && !read_symbol(s, lex))
        return 1;
    zel::string_guard description = read_description(s, lex);
    request wanted{};
    name_buffer name{};
    if (description == nullptr || !read_group(s, lex, wanted) || !read_item_name(s, lex, name))
        return 1;

    zel::indexed_item *used = use_item(s, wanted, name);
    if (used == nullptr) {
        std::printf("\nERROR(25): insert item >%s<", name);
        return 1;
    }
    zel::replace_string(used->item->description, description.release());
    name_buffer place;
    make_place(s, wanted, place);
    zel::add_use(*used, place);
    print_request(place, wanted.group, name);
    return 0;
}

int read_tokens(const scan &s, zel_lex_t *lex);

void read_request(const scan &s, zel_lex_t *lex, const request_form &form)
{
    skip_to_arguments(lex, form);
    if (form.description)
        read_described_entry(s, lex, form.symbol);
    else
        read_entry(s, lex, form.type);
}

// After the STOP marker, through the START marker or the end.
void skip_stopped(const scan &s, zel_lex_t *lex, const zel_token_t *token)
{
    std::printf("language_check stop file >%s< line >%d<\n", s.path, line_of(token));
    do
        token = zel_next_token(lex);
    while (token->id != WORD_START && token->id != TOKEN_EOF);
    if (token->id == WORD_START)
        std::printf("language check start file >%s< line >%d<\n", s.path, line_of(token));
}

// After "#": define NAME "value", or the application's name. What does not belong to a definition
// stays for the loop.
void read_definition(const scan &s, zel_lex_t *lex)
{
    if (zel_token_look_ahead(lex, 1)->id != WORD_DEFINE)
        return;
    zel_next_token(lex);
    const int kind = zel_token_look_ahead(lex, 1)->id;
    if (kind == WORD_APP) {
        zel_next_token(lex);
        parse_lang_app(&s.index.source()->app, s.symbols, lex, s.path);
    } else if (kind == TOKEN_IDENT || kind == TOKEN_STRING) {
        const zel_token_t *name = zel_next_token(lex);
        const zel_token_t *value = zel_token_look_ahead(lex, 1);
        if (value->id == TOKEN_STRING) {
            symtab_add(s.symbols, name->lexeme, value->lexeme);
            zel_next_token(lex);
        }
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

// The scanners that no text needs at the moment. Every file and every literal that may be a script
// takes one; if each were made anew, checking a tree with requests would take 30 percent longer.
struct idle_scanners {
    std::array<zel_lex_t *, 4> kept;
    std::size_t count;
};
idle_scanners idle;

void keep_scanner(zel_lex_t *lex) noexcept
{
    const auto is_small = [](const zel_token_t *token) {
        return token->capacity == ZEL_LEX_LEXEME; // none hoards one text's room
    };
    if (idle.count == idle.kept.size() || !is_small(lex->work) || !is_small(lex->current) ||
        !is_small(lex->ahead))
        return _zel_lex_free(lex);
    zel::restart_scanner(lex);
    idle.kept[idle.count++] = lex;
}
using kept_lex_guard = std::unique_ptr<zel_lex_t, zel::release<keep_scanner>>;

kept_lex_guard take_scanner()
{
    return kept_lex_guard(idle.count != 0 ? idle.kept[--idle.count] : zel::new_check_scanner());
}

// The text of a string literal may be a script with requests of its own.
int read_text(const scan &s, const char *text)
{
    if (s.string_depth == MAX_STRING_DEPTH || !may_hold_request(text))
        return 0;
    const kept_lex_guard lex = take_scanner();
    if (lex == nullptr) {
        std::puts("ERROR(5): unable to init string lexical scanner");
        return -1;
    }
    const zel_lex_buf_guard buffer(
        zel_lex_buf_mem_new(text, static_cast<std::uint32_t>(std::strlen(text))));
    if (buffer == nullptr) {
        std::puts("ERROR(6): unable to init string lexical scanner");
        return -1;
    }
    zel_lex_set_buf(lex.get(), buffer.get());
    const scan inner{s.index, s.symbols, s.path, s.string_depth + 1, s.now};
    return read_tokens(inner, lex.get());
}

// A string literal and those that follow it directly.
int read_literals(const scan &s, zel_lex_t *lex, const zel_token_t *token)
{
    if (zel_token_look_ahead(lex, 1)->id != TOKEN_STRING)
        return read_text(s, token->lexeme);
    std::string joined = token->lexeme;
    while (zel_token_look_ahead(lex, 1)->id == TOKEN_STRING)
        joined += zel_next_token(lex)->lexeme;
    return read_text(s, joined.c_str());
}

int read_tokens(const scan &s, zel_lex_t *lex)
{
    for (;;) {
        zel::skip_plain_code(lex);
        const zel_token_t *token = zel_next_token(lex);
        const int kind = token->id;
        if (kind == TOKEN_EOF) {
            if (zel_lex_out_of_memory(lex) != 0)
                zel::copy_failed(); // a request may have been lost
            return 0;
        }
        if (kind == TOKEN_STRING && read_literals(s, lex, token) != 0)
            return -1;
        if (kind == '#')
            read_definition(s, lex);
        else if (kind == WORD_STOP)
            skip_stopped(s, lex, token);
        else if (kind >= WORD_GET_STRING)
            for (const request_form &form : request_forms)
                if (form.word == kind)
                    read_request(s, lex, form);
    }
}

} // namespace

int check_parse(LangSource *root, symtab_t *symbols, zel_lex_t *lex, const char *path)
{
    zel::item_index index(root);
    return read_tokens({index, symbols, path, 0, lang_global.start_time}, lex);
}

int parse_lang_entry(LangSource *root, symtab_t *symbols, zel_lex_t *lex, const char *path,
                     int type)
{
    zel::item_index index(root);
    return read_entry({index, symbols, path, 0, lang_global.start_time}, lex, type);
}

int parse_lang_entry2(LangSource *root, symtab_t *symbols, zel_lex_t *lex, const char *path,
                      int with_symbol)
{
    zel::item_index index(root);
    return read_described_entry({index, symbols, path, 0, lang_global.start_time}, lex,
                                with_symbol != 0);
}

int parse_lang_app(char **app, symtab_t *symbols, zel_lex_t *lex, const char *path)
{
    const zel_token_t *token = zel_next_token(lex);
    if (token->id != TOKEN_STRING) {
        std::printf("ERROR(7): syntax %s line %d missing first string \n", path, line_of(token));
        return 1;
    }
    name_buffer name{};
    append(name, token->lexeme);
    const char *version = text_of(symbols, zel_next_token(lex), path, 8);
    if (version == nullptr)
        return 1;
    char text[APP_SIZE];
    if (std::snprintf(text, sizeof text, "%s:%s", name, version) < 0)
        return 1;
    zel::replace_string(*app, zel_strdup(text));
    return 0;
}

int get_id_or_string(LangSource *, symtab_t *symbols, zel_lex_t *lex, char *buffer,
                     const char *path)
{
    const char *text = text_of(symbols, zel_next_token(lex), path, 23);
    if (text != nullptr)
        std::snprintf(buffer, NAME_SIZE, "%s", text);
    return 0;
}

int check_c_file(LangSource *root, const char *path)
{
    zel::item_index index(root);
    if (zel::check_file(index, path, lang_global.start_time) != 0)
        lang_exit(0);
    return 0;
}

namespace zel {

zel_lex_t *new_check_scanner() { return zel_lex_new(check_words, check_flags); }

int check_file(item_index &index, const char *path, std::int64_t now)
{
    const char *shown = path == nullptr ? "(null)" : path;
    std::printf("check c file >%s<\n", shown);
    const kept_lex_guard lex = take_scanner();
    if (lex == nullptr) {
        std::puts("ERROR(2): unable to init lexical scanner");
        return -1;
    }
    const zel_lex_buf_guard buffer(zel_lex_buf_file_new(path));
    if (buffer == nullptr) {
        std::puts("ERROR(3): unable to init lexical scanner");
        return -1;
    }
    if (zel_lex_buf_file_get_fp(buffer.get()) == nullptr) {
        std::printf("ERROR(4): unable to open file %s\n", shown);
        return -1;
    }
    // One area for all files: most are read with one call, and none allocates.
    static std::array<char, READ_SIZE> area;
    std::setvbuf(zel_lex_buf_file_get_fp(buffer.get()), area.data(), _IOFBF, area.size());
    zel_lex_set_buf(lex.get(), buffer.get());
    const symtab_guard symbols(symtab_new());
    const int result = read_tokens({index, symbols.get(), path, 0, now}, lex.get());
    if (zel_lex_buf_read_failed(buffer.get()) == 0)
        return result;
    // Its requests are not all found: items would count as not used.
    std::fprintf(stderr, "check: %s cannot be read to its end: %s\n", shown, std::strerror(errno));
    return -1;
}

} // namespace zel
