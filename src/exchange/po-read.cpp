#include "exchange/po-read.h"

#include "exchange/carry.h"
#include "lex/lex.h"
#include "support/hash-index.h"

#include <algorithm>
#include <cstring>

#include <glib.h>

namespace zel::exchange {

namespace {

enum po_word {
    po_msgctxt = 20000,
    po_msgid,
    po_msgid_plural,
    po_msgstr,
    po_domain,
    po_comment,          // lexeme: what follows the sign on the line
    po_obsolete,         // "#~": the rest of the line is read like any
    po_previous,         // "#|"
    po_obsolete_previous // "#~|"
};

constexpr Keytab keywords[] = {
    {nullptr, 0},          {"msgctxt", po_msgctxt},
    {"msgid", po_msgid},   {"msgid_plural", po_msgid_plural},
    {"msgstr", po_msgstr}, {"domain", po_domain},
    {nullptr, 0},
};

int finish(zel_token_t *token, int id)
{
    token->lexeme[token->length] = '\0';
    token->id = static_cast<std::int16_t>(id);
    return id;
}

// Appends what stands next in the block, up to one of the bytes. The reader's input is one block,
// and nothing is held back inside a string or comment.
bool add_until(zel_lex_buf_t *buf, zel_token_t *token, const char *ends)
{
    const unsigned char *begin = buf->data + buf->index;
    const unsigned char *const end = buf->data + buf->count;
    const unsigned char *p = begin;
    while (p != end && *p != static_cast<unsigned char>(ends[0]) &&
           *p != static_cast<unsigned char>(ends[1]) && *p != '\n' && *p != '\r')
        ++p;
    const auto length = static_cast<std::size_t>(p - begin);
    if (!reserve(token, length))
        return false;
    std::memcpy(token->lexeme + token->length, begin, length);
    token->length += static_cast<std::uint32_t>(length);
    buf->index += static_cast<std::uint32_t>(length);
    buf->position += length;
    buf->column += static_cast<std::uint32_t>(length);
    return true;
}

int digit_of(int c, int base)
{
    const int lower = c | 0x20;
    const int value = c >= '0' && c <= '9'           ? c - '0'
                      : lower >= 'a' && lower <= 'f' ? lower - 'a' + 10
                                                     : 16;
    return value < base ? value : -1;
}

// Reads the digits of an octal (at most three) or hexadecimal escape; -1 without any.
int read_digits(zel_lex_buf_t *buf, int base, int most)
{
    int value = -1;
    for (int count = 0; count < most && digit_of(peek_char(buf), base) >= 0; ++count)
        value = (std::max(value, 0) * base + digit_of(next_char(buf), base)) & 0xFF;
    return value;
}

constexpr int joined_line = 256; // a backslash at the end of a line joins the next one

// Returns the byte of an escape whose backslash has been taken; -1 if it is none. No text holds a
// zero byte, so that counts as none.
int read_escape(zel_lex_buf_t *buf)
{
    constexpr char letters[] = "nt\"\\rabfv";
    constexpr char meant[] = "\n\t\"\\\r\a\b\f\v";
    const int letter = peek_char(buf);
    int value = 0;
    if (digit_of(letter, 8) >= 0) {
        value = read_digits(buf, 8, 3);
    } else {
        next_char(buf);
        if (letter == '\n')
            value = joined_line;
        else if (letter == 'x')
            value = read_digits(buf, 16, INT32_MAX);
        else if (const char *found = letter > 0 ? std::strchr(letters, letter) : nullptr)
            value = static_cast<unsigned char>(meant[found - letters]);
    }
    return value > 0 ? value : -1;
}

int scan_string(zel_lex_buf_t *buf, zel_token_t *token)
{
    for (;;) {
        // A character that an escape has looked ahead at is taken first.
        if (buf->held == 0 && !add_until(buf, token, "\"\\"))
            return finish(token, TOKEN_ERR_MEM);
        const int c = next_char(buf);
        if (c == '"')
            return finish(token, TOKEN_STRING);
        if (c == '\n' || c == ZEL_LEX_EOF)
            return finish(token, TOKEN_ERR_EOL);
        const int byte = c == '\\' ? read_escape(buf) : c;
        if (byte < 0)
            return finish(token, TOKEN_BAD_ESCAPE);
        if (byte != joined_line && !add_byte(token, byte))
            return finish(token, TOKEN_ERR_MEM);
    }
}

// Adds the carriage return of a line that ends here, which the scanner would pass over.
bool add_return(const zel_lex_buf_t *buf, zel_token_t *token)
{
    const bool stands = buf->held == 0 && buf->index + 1 < buf->count &&
                        buf->data[buf->index] == '\r' && buf->data[buf->index + 1] == '\n';
    return !stands || add_byte(token, '\r');
}

// Scans what follows a "#".
int scan_comment(zel_lex_buf_t *buf, zel_token_t *token)
{
    if (!add_return(buf, token))
        return finish(token, TOKEN_ERR_MEM);
    const int sign = peek_char(buf);
    if (sign == '|' || sign == '~') {
        next_char(buf);
        if (sign == '|')
            return finish(token, po_previous);
        if (peek_char(buf) != '|')
            return finish(token, po_obsolete);
        next_char(buf);
        return finish(token, po_obsolete_previous);
    }
    if (sign != '\n' && sign != ZEL_LEX_EOF &&
        (!add_byte(token, next_char(buf)) || !add_until(buf, token, "\n\n") ||
         !add_return(buf, token)))
        return finish(token, TOKEN_ERR_MEM);
    // A carriage return ends the run, but not the line.
    for (int c = next_char(buf); c != ZEL_LEX_EOF; c = next_char(buf)) {
        const bool joins =
            c == '\n' && token->length != 0 && token->lexeme[token->length - 1] == '\\';
        if (c == '\n' && !joins)
            break;
        if (joins)
            --token->length;
        else if (!add_byte(token, c))
            return finish(token, TOKEN_ERR_MEM);
    }
    return finish(token, po_comment);
}

int get_token(zel_lex_t *lex)
{
    zel_lex_buf_t *buf = lex->buf;
    clear_token(lex->work);
    int c = peek_char(buf);
    while (c == ' ' || c == '\t' || c == '\n') {
        next_char(buf);
        c = peek_char(buf);
    }
    mark_start(lex);
    if (c != '"' && c != '#')
        return zel_get_token(lex);
    next_char(buf);
    return c == '"' ? scan_string(buf, lex->work) : scan_comment(buf, lex->work);
}

constexpr std::string_view charset_word = "charset=";

// Whether the position stands in the Content-Type field of a header, whose fields may be a string
// each or all in one.
bool is_in_content_type(std::string_view bytes, std::size_t position)
{
    std::string_view before = bytes.substr(0, position);
    before.remove_prefix(before.rfind('\n') + 1);
    const std::size_t quote = before.find('"');
    if (quote == std::string_view::npos)
        return false;
    before.remove_prefix(quote + 1);
    if (const std::size_t end = before.rfind("\\n"); end != std::string_view::npos)
        before.remove_prefix(end + 2);
    return before.starts_with("Content-Type:");
}

// The first place that names an encoding and is not in a remark.
std::size_t find_charset(std::string_view bytes)
{
    for (std::size_t line = 0; line < bytes.size();) {
        const std::size_t end = std::min(bytes.find('\n', line), bytes.size());
        const std::string_view text = bytes.substr(line, end - line);
        const std::size_t at = text.find(charset_word);
        const std::size_t begin = text.find_first_not_of(" \t");
        if (at != std::string_view::npos && text[begin] != '#')
            return line + at;
        line = end + 1;
    }
    return std::string_view::npos;
}

// The encoding that the header names; empty for UTF-8, and when it names none.
std::string charset_of(std::string_view bytes)
{
    const std::size_t at = find_charset(bytes);
    if (at == std::string_view::npos || !is_in_content_type(bytes, at))
        return {};
    constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                         "0123456789._:-";
    std::string_view name = bytes.substr(at + charset_word.size());
    name = name.substr(0, name.find_first_not_of(letters));
    // A template's placeholder says nothing, and ASCII is UTF-8 as well.
    for (const char *known : {"", "CHARSET", "UTF-8", "utf8", "ASCII", "US-ASCII"})
        if (g_ascii_strncasecmp(name.data(), known, name.size()) == 0 &&
            std::strlen(known) == name.size())
            return {};
    return std::string(name);
}

// The system's name for an encoding. By some names the system means one in which the backslash is
// another character, and no escape would be found.
const char *known_charset(const std::string &charset)
{
    constexpr const char *others[][2] = {
        {"SHIFT_JIS", "CP932"}, {"SHIFT-JIS", "CP932"}, {"SJIS", "CP932"}, {"JOHAB", "CP1361"}};
    for (const auto &row : others)
        if (g_ascii_strcasecmp(row[0], charset.c_str()) == 0)
            return row[1];
    return charset.c_str();
}

void name_utf8(std::string &header)
{
    const std::size_t at = header.find(charset_word);
    if (at == std::string::npos)
        return;
    constexpr std::string_view utf8 = "UTF-8";
    const std::size_t begin = at + charset_word.size();
    const std::size_t size = std::min(header.find_first_of(" \n;", begin), header.size()) - begin;
    // The text is UTF-8 from here on, whatever it was.
    if (size != utf8.size() || g_ascii_strncasecmp(&header[begin], utf8.data(), size) != 0)
        header.replace(begin, size, utf8);
}

std::string_view without_blank(std::string_view line)
{
    if (line.starts_with(' '))
        line.remove_prefix(1);
    return line;
}

// The places of a "#:" line, separated by blanks; a name that holds some stands between U+2068 and
// U+2069.
void append_references(std::vector<std::string> &out, std::string_view line)
{
    constexpr std::string_view open = "\xE2\x81\xA8";
    constexpr std::string_view close = "\xE2\x81\xA9";
    for (;;) {
        const std::size_t begin = line.find_first_not_of(" \t");
        if (begin == std::string_view::npos)
            return;
        line.remove_prefix(begin);
        std::size_t closed = line.starts_with(open) ? line.find(close) : std::string_view::npos;
        closed = closed == std::string_view::npos ? 0 : closed;
        const std::size_t end = std::min(line.find_first_of(" \t", closed), line.size());
        out.emplace_back(line.substr(0, end));
        line.remove_prefix(end);
    }
}

// Of several lines of flags the last one counts, as it does for msgfmt.
void read_flags(po_message &message, std::string_view line)
{
    message.fuzzy = false;
    message.flags.clear();
    while (!line.empty()) {
        std::string_view flag = line.substr(0, line.find(','));
        line.remove_prefix(std::min(line.size(), flag.size() + 1));
        const std::size_t begin = flag.find_first_not_of(" \t");
        if (begin == std::string_view::npos)
            continue;
        flag = flag.substr(begin, flag.find_last_not_of(" \t") + 1 - begin);
        if (flag == "fuzzy")
            message.fuzzy = true;
        else
            message.flags.emplace_back(flag);
    }
}

} // namespace

// The scanner, and what kind of line it is on.
struct po_scan {
    zel_lex_buf_guard buf; // outlives the scanner
    zel_lex_guard lex;
    const zel_token_t *token = nullptr;
    int line_kind = 0; // po_obsolete and the like, 0 for a plain line
    std::uint32_t line = 0;
};

// Contexts and ids, one behind the other in one string.
struct po_known {
    struct row {
        std::size_t begin;
        std::size_t size;
        std::uint32_t line;
    };
    std::string names;
    std::vector<row> rows;
    hash_index index;

    // Makes room at once for what a catalog of that size mostly holds.
    void reserve(std::size_t bytes)
    {
        names.reserve(bytes / 3);
        rows.reserve(bytes / 160);
        index.reserve(bytes / 160);
    }

    // The line of the message that came before with the same context and id; 0 when there is none.
    std::uint32_t meet(const po_message &message)
    {
        const std::size_t begin = names.size();
        if (message.id.context)
            names.append(*message.id.context) += '\0'; // no text holds one
        names.append(*message.id.text);
        const std::string_view all(names);
        const std::string_view name = all.substr(begin);
        const std::uint32_t hash = hash_of(name);
        const std::uint32_t at = index.find(hash, [&](std::uint32_t one) {
            return all.substr(rows[one].begin, rows[one].size) == name;
        });
        if (at != hash_index::none)
            return rows[at].line;
        index.add(hash, static_cast<std::uint32_t>(rows.size()));
        rows.push_back({begin, name.size(), message.line});
        return 0;
    }
};

po_reader::po_reader(std::string_view bytes, bool as_written)
    : as_written_(as_written), scan_(std::make_unique<po_scan>()),
      known_(std::make_unique<po_known>())
{
    drop_mark(bytes);
    const std::string charset = charset_of(bytes);
    if (!charset.empty()) {
        if (!recode(bytes, charset))
            return;
        bytes = recoded_;
    }
    known_->reserve(bytes.size());
    wrong_ = check_utf8(bytes);
    scan_->buf.reset(zel_lex_buf_mem_new(bytes.data(), static_cast<std::uint32_t>(bytes.size())));
    scan_->lex.reset(zel_lex_new(keywords, LEX_ESCAPES | LEX_NO_COMMENTS | LEX_NEWLINE_SPACE));
    if (!wrong_ && (!scan_->buf || !scan_->lex))
        wrong_ = {0, "not enough memory"};
    if (wrong_)
        return;
    zel_lex_set_get_token(scan_->lex.get(), get_token);
    zel_lex_set_buf(scan_->lex.get(), scan_->buf.get());
    advance();
}

po_reader::~po_reader() = default;

bool po_reader::recode(std::string_view bytes, const std::string &charset)
{
    gsize read = 0;
    gsize written = 0;
    GError *error = nullptr;
    char *text = g_convert(bytes.data(), static_cast<gssize>(bytes.size()), "UTF-8",
                           known_charset(charset), &read, &written, &error);
    if (text == nullptr) {
        // Either a byte is wrong, or the name in the header.
        if (error->code == G_CONVERT_ERROR_ILLEGAL_SEQUENCE ||
            error->code == G_CONVERT_ERROR_PARTIAL_INPUT)
            wrong_ = {line_at(bytes, std::min<std::size_t>(read, bytes.size())),
                      "a byte that is no " + charset};
        else
            wrong_ = {line_at(bytes, find_charset(bytes)),
                      "the encoding \"" + charset + "\" is not known"};
        g_error_free(error);
        return false;
    }
    recoded_.assign(text, written);
    g_free(text);
    return true;
}

bool po_reader::fail(const std::string &text)
{
    wrong_ = {scan_->token->line, text};
    return false;
}

// Takes the next token and the signs before it.
bool po_reader::advance()
{
    for (;;) {
        scan_->token = zel_next_token(scan_->lex.get());
        const int id = scan_->token->id;
        switch (id) {
        case po_obsolete:
        case po_previous:
        case po_obsolete_previous:
            scan_->line_kind = id;
            scan_->line = scan_->token->line;
            continue;
        case TOKEN_ERR_EOL:
            return fail("a text without its closing quote");
        case TOKEN_BAD_ESCAPE:
            return fail("an escape that is not known, or a zero byte");
        case TOKEN_ERR_MEM:
            return fail("not enough memory");
        default:
            // A sign counts up to the end of its line.
            if (scan_->token->line != scan_->line)
                scan_->line_kind = 0;
            return true;
        }
    }
}

// STRING ...
bool po_reader::read_string(std::string &text)
{
    text.clear();
    if (scan_->token->id != TOKEN_STRING)
        return fail("a text in quotes is missing");
    const std::uint32_t line = scan_->token->line;
    while (scan_->token->id == TOKEN_STRING) {
        text.append(scan_->token->lexeme, scan_->token->length);
        if (text.size() > largest_text)
            return fail("a text of more than 8 MB");
        if (!advance())
            return false;
    }
    // The catalog was checked, but escapes may spell any bytes.
    if (valid_length(text) == text.size())
        return true;
    wrong_ = {line, "escapes that make no UTF-8"};
    return false;
}

// MSGCTXT STRING | MSGID STRING | MSGID_PLURAL STRING, also those of the previous one.
bool po_reader::read_id(po_message &message, std::optional<std::string> po_id::*part)
{
    const bool previous =
        scan_->line_kind == po_previous || scan_->line_kind == po_obsolete_previous;
    po_id &id = previous ? message.previous : message.id;
    const bool has_text = id.text.has_value();
    const bool late = part == &po_id::context ? has_text : part == &po_id::plural && !has_text;
    if ((id.*part) || late || (previous && message.id.text))
        return fail("this word stands in the wrong place");
    // The message begins with its own first word, behind the previous ones.
    if (!previous && !message.id.context && !message.id.text) {
        message.line = scan_->token->line;
        message.obsolete = scan_->line_kind == po_obsolete;
    }
    (id.*part).emplace();
    return advance() && read_string(*(id.*part));
}

// MSGSTR STRING | MSGSTR "[" NUMBER "]" STRING
bool po_reader::read_text(po_message &message)
{
    if (!message.id.text || (!message.id.plural && !message.texts.empty()))
        return fail("msgstr without its msgid");
    if (!advance())
        return false;
    if (message.id.plural) {
        // The forms stand in their order, without gaps.
        const std::string form = std::to_string(message.texts.size());
        if (scan_->token->id != '[' || !advance() || form != scan_->token->lexeme || !advance() ||
            scan_->token->id != ']')
            return !wrong_ && fail("msgstr[" + form + "] is missing");
        if (!advance())
            return false;
    }
    message.texts.emplace_back();
    return read_string(message.texts.back());
}

bool po_reader::read_comment(po_message &message)
{
    std::string_view line(scan_->token->lexeme, scan_->token->length);
    const char sign = line.empty() ? ' ' : line.front();
    if (line.ends_with('\r') && (!as_written_ || sign == ','))
        line.remove_suffix(1);
    if (sign == '.')
        message.extracted.emplace_back(without_blank(line.substr(1)));
    else if (sign == ':')
        append_references(message.references, line.substr(1));
    else if (sign == ',')
        read_flags(message, line.substr(1));
    else
        message.remarks.emplace_back(without_blank(line));
    return advance();
}

bool po_reader::read_word(po_message &message)
{
    switch (scan_->token->id) {
    case po_comment:
        return read_comment(message);
    case po_msgctxt:
        return read_id(message, &po_id::context);
    case po_msgid:
        return read_id(message, &po_id::text);
    case po_msgid_plural:
        return read_id(message, &po_id::plural);
    case po_msgstr:
        return read_text(message);
    case po_domain:
        return fail("a catalog of several domains");
    default:
        return fail("no word of a catalog");
    }
}

bool po_reader::next(po_message &message)
{
    message.clear();
    // A message ends where no further msgstr follows.
    while (!wrong_ && scan_->token->id != TOKEN_EOF &&
           (message.texts.empty() || scan_->token->id == po_msgstr))
        if (!read_word(message))
            return false;
    if (wrong_)
        return false;
    if (message.texts.empty())
        return message.id.text || message.id.context ? fail("msgstr is missing") : false;
    if (message.is_header())
        name_utf8(message.texts.front());
    return is_first(message);
}

bool po_reader::is_first(const po_message &message)
{
    if (message.obsolete || message.is_header())
        return true;
    const std::uint32_t before = known_->meet(message);
    if (before == 0)
        return true;
    wrong_ = {message.line, "the same context and id as on line " + std::to_string(before)};
    return false;
}

} // namespace zel::exchange
