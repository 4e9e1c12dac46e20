#include "config/lang-cfg-read.h"

#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/string.h"

#include <glib.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// Collects the text of the token being scanned; what does not fit is dropped.
struct token_text {
    explicit token_text(zel_token_t *filled) : token(filled) {}
    void add(int character)
    {
        // A NUL would end the text for everybody who reads the lexeme.
        if (character != 0 && length < ZEL_LEX_LEXEME - 1)
            token->lexeme[length++] = static_cast<char>(character);
        end();
    }
    void trim()
    {
        zel_str_trim(token->lexeme);
        length = static_cast<int>(std::strlen(token->lexeme));
        end();
    }
    void end()
    {
        token->lexeme[length] = '\0';
        token->length = static_cast<std::uint32_t>(length);
    }

private:
    zel_token_t *token;
    int length = 0;
};

// Remembers the token in which the input ends: such a file may have been cut.
void note_open_end(const zel_lex_buf_t *buf, int character, const char *what)
{
    auto *store = static_cast<lang_cfg_t *>(buf->read_context);
    if (character == ZEL_LEX_EOF && store != nullptr)
        store->open_end = what;
}

bool ends_line(int character) { return character == '\n' || character == ZEL_LEX_EOF; }

// Called behind "[": reads up to "]", or to the end of a line that lacks it.
void scan_section(zel_lex_buf_t *buf, token_text &text)
{
    int character = '[';
    while (character != ']' && !ends_line(character = zel_lex_buf_look_ahead(buf))) {
        zel_lex_buf_next_char(buf);
        if (character != ']')
            text.add(character);
    }
    note_open_end(buf, character, "a section's name");
    text.trim();
}

// Called behind a backslash: the next character stands for itself, whatever it is.
void scan_escaped(zel_lex_buf_t *buf, token_text &text)
{
    const int character = zel_lex_buf_next_char(buf);
    if (character != ZEL_LEX_EOF)
        text.add(character);
}

// Called behind a double quote: reads up to the next one.
void scan_quoted(zel_lex_buf_t *buf, token_text &text)
{
    int character = zel_lex_buf_next_char(buf);
    for (; character != '"' && character != ZEL_LEX_EOF; character = zel_lex_buf_next_char(buf)) {
        if (character == '\\')
            scan_escaped(buf, text);
        else
            text.add(character);
    }
    note_open_end(buf, character, "a text in quotes");
}

// Reads on from the word's first character, up to "=", the end of the line, or a double quote.
void scan_word(zel_lex_buf_t *buf, int first, token_text &text)
{
    int character = first;
    for (;;) {
        if (character == '\\')
            scan_escaped(buf, text);
        else
            text.add(character);
        const int next = zel_lex_buf_look_ahead(buf);
        if (next == '=' || ends_line(next)) {
            text.trim();
            return;
        }
        character = zel_lex_buf_next_char(buf);
        // The quote is dropped, and a new token begins behind it.
        if (character == '"')
            return;
    }
}

// Skips what stands between tokens and returns the first character of the next one. The scanner's
// position is that of this character.
int skip_blanks(zel_lex_t *lex)
{
    for (;;) {
        zel_lex_start(lex);
        int character = zel_lex_buf_next_char(lex->buf);
        if (character == ';') {
            while (!ends_line(zel_lex_buf_look_ahead(lex->buf)))
                zel_lex_buf_next_char(lex->buf);
            note_open_end(lex->buf, zel_lex_buf_look_ahead(lex->buf), "a comment");
            continue;
        }
        // A tab begins a word, which is trimmed at its end.
        if (character != ' ' && character != '\r')
            return character;
    }
}

int scan_token(zel_lex_t *lex, token_text &text)
{
    const int character = skip_blanks(lex);
    switch (character) {
    case ZEL_LEX_EOF:
        return CFG_TOK_EOF;
    case '\n':
        return CFG_TOK_EOL;
    case '=':
        return CFG_TOK_ASSIGN;
    case '-':
        return CFG_TOK_MINUS;
    case '[':
        scan_section(lex->buf, text);
        return CFG_TOK_SECTION;
    case '"':
        scan_quoted(lex->buf, text);
        return CFG_TOK_WORD;
    default:
        scan_word(lex->buf, character, text);
        return CFG_TOK_WORD;
    }
}

bool is_end(const zel_token_t *token)
{
    return token->id == CFG_TOK_EOL || token->id == CFG_TOK_EOF;
}

// Takes tokens up to the end of the line; returns the token that ended it.
const zel_token_t *skip_line(zel_lex_t *lex, const zel_token_t *token)
{
    while (!is_end(token))
        token = zel_next_token(lex);
    return token;
}

// Stores a word that stands behind so many minus signs. The first sign is the entry's own; a text
// that nobody has bound keeps the others.
void set_value(cfg_entry_t *entry, std::size_t signs, const char *word)
{
    if (entry->type == CFG_VOID && signs > 1)
        zel::cfg_set_entry(entry, (std::string(signs - 1, '-') + word).c_str());
    else
        zel::cfg_set_entry(entry, word);
}

// value = { "-" | word } end-of-line. Returns the token that ended it.
const zel_token_t *read_value(zel_lex_t *lex, cfg_entry_t *entry)
{
    entry->negative = 0;
    std::size_t signs = 0;
    const zel_token_t *token = zel_next_token(lex);
    for (; !is_end(token); token = zel_next_token(lex)) {
        if (token->id == CFG_TOK_MINUS) {
            entry->negative = 1;
            ++signs;
        } else if (token->id == CFG_TOK_WORD) {
            set_value(entry, signs, token->lexeme);
            signs = 0;
        } else {
            zel::print_and_log(1, "_cfg_parse_entry: WARNING: line %d unexpected token %d\n",
                               static_cast<int>(token->line), token->id);
            return skip_line(lex, token);
        }
    }
    if (entry->type == CFG_VOID && signs > 0) { // nothing but signs is a text
        entry->negative = 0;
        zel::cfg_set_entry(entry, std::string(signs, '-').c_str());
    }
    return token;
}

// line = word "=" value. Returns the token that ended it.
const zel_token_t *read_key(lang_cfg_t *store, cfg_entry_t *section, const zel_token_t *word)
{
    // Made even if "=" is missing: an entry without data is never written.
    cfg_entry_t *entry = zel::cfg_key(store, section, word->lexeme);
    // Kept now, since the next token takes the place of this one.
    const int line = static_cast<int>(word->line);
    const zel_token_t *token = zel_next_token(store->lex);
    if (token->id != CFG_TOK_ASSIGN || entry == nullptr) {
        zel::print_and_log(1, "_cfg_file_read: ERROR: line %d '=' expected\n", line);
        return skip_line(store->lex, token);
    }
    return read_value(store->lex, entry);
}

// A number at the start of a word, in the entry's base: false when there is none.
template <class Convert>
bool convert(const char *word, Convert conversion)
{
    char *end = nullptr;
    conversion(word, &end);
    return end != word;
}

void set_unsigned(cfg_entry_t *entry, const char *word, int base)
{
    std::uint64_t value = 0;
    if (convert(word, [&](const char *text, char **end) { value = std::strtoul(text, end, base); }))
        *static_cast<std::uint64_t *>(entry->data) = entry->negative != 0 ? 0 - value : value;
}

void set_long(cfg_entry_t *entry, const char *word)
{
    std::int64_t value = 0;
    if (!convert(word, [&](const char *text, char **end) { value = std::strtol(text, end, 0); }))
        return;
    // Negated as unsigned: the smallest number has no positive counterpart.
    const auto bits = static_cast<std::uint64_t>(value);
    *static_cast<std::int64_t *>(entry->data) =
        static_cast<std::int64_t>(entry->negative != 0 ? 0 - bits : bits);
}

void set_double(cfg_entry_t *entry, const char *word)
{
    double value = 0;
    // The file has a decimal point in every locale.
    if (convert(word, [&](const char *text, char **end) { value = g_ascii_strtod(text, end); }))
        *static_cast<double *>(entry->data) = entry->negative != 0 ? -value : value;
}

} // namespace

namespace zel {

int cfg_get_token(zel_lex_t *lex)
{
    token_text text(lex->work);
    text.end();
    const int kind = lex->buf == nullptr ? static_cast<int>(CFG_TOK_EOF) : scan_token(lex, text);
    lex->work->id = static_cast<std::int16_t>(kind);
    return kind;
}

void cfg_set_entry(cfg_entry_t *entry, const char *word)
{
    if (entry->data == nullptr && entry->type != CFG_VOID)
        return;
    switch (entry->type) {
    case CFG_HEX:
        // A hexadecimal number is a pattern of bits: it has no sign.
        entry->negative = 0;
        set_unsigned(entry, word, 16);
        break;
    case CFG_OCTAL:
        set_unsigned(entry, word, 8);
        break;
    case CFG_LONG:
        set_long(entry, word);
        break;
    case CFG_STR:
        replace_string(*static_cast<char **>(entry->data), zel_strdup(word));
        break;
    case CFG_DOUBLE:
        set_double(entry, word);
        break;
    case CFG_VOID: {
        char *text = static_cast<char *>(entry->data);
        replace_string(text, zel_strdup(word));
        entry->data = text;
        break;
    }
    default:
        LogPrint(1, "_cfg_set_entry: WARNING: unknown data type %d\n", entry->type);
    }
}

void cfg_read_statements(lang_cfg_t *store)
{
    cfg_entry_t *section = nullptr;
    const zel_token_t *token = zel_next_token(store->lex);
    while (token != nullptr && token->id != CFG_TOK_EOF) {
        if (token->id == CFG_TOK_SECTION) {
            section = cfg_section(store, token->lexeme);
        } else if (token->id == CFG_TOK_WORD) {
            // Keys before the first section have a section without a name.
            if (section == nullptr)
                section = cfg_section(store, "");
            if (section == nullptr)
                return; // out of memory, reported
            token = read_key(store, section, token);
            if (token->id == CFG_TOK_EOF)
                return;
        } else if (token->id != CFG_TOK_EOL) {
            LogPrint(1, "_cfg_file_read: WARNING: %d unexpected token %d\n",
                     static_cast<int>(token->line), token->id);
        }
        token = zel_next_token(store->lex);
    }
}

} // namespace zel
