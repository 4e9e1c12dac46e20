#include "lex/lex-scan.h"

#include "lex/lex-keyword.h"
#include "support/log-print.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

using zel::add_byte;
using zel::clear_token;
using zel::find_keyword;
using zel::is_digit;
using zel::lose_text;
using zel::mark_start;
using zel::next_char;
using zel::peek_char;
using zel::reserve;

// What a byte means to the runs that are taken from the input block at once.
enum : unsigned char {
    in_ident = 1,  // continues an identifier
    in_string = 2, // stands for itself inside a string
};

constexpr std::array<unsigned char, 256> make_classes()
{
    std::array<unsigned char, 256> classes{};
    for (unsigned c = 0; c < 256; ++c) {
        const int byte = static_cast<int>(c);
        // Each byte of a character beyond ASCII counts as a letter, in every locale.
        if (zel::is_letter(byte) || zel::is_digit(byte) || c == '_' || c >= 128)
            classes[c] |= in_ident;
        if (c != '"' && c != '\\' && c != '\n' && c != '\r')
            classes[c] |= in_string;
    }
    return classes;
}

constexpr auto classes = make_classes();

bool is_class(int c, unsigned char mask)
{
    return c >= 0 && (classes[static_cast<unsigned char>(c)] & mask) != 0;
}

// The part of the input block that may be taken at once: nothing while a character is held back or
// a client's own reader or step is plugged in.
struct block_view {
    const unsigned char *begin;
    const unsigned char *end;
};

block_view open_block(const zel_lex_buf_t *buf)
{
    if (buf->direct == 0 || buf->held != 0 || buf->next_char != zel::buf_shared_next_char ||
        buf->index >= buf->count)
        return {nullptr, nullptr};
    return {buf->data + buf->index, buf->data + buf->count};
}

// The first byte that does not stand for itself inside a string. Texts are most of what is read, so
// they are looked at sixteen bytes at a time where the processor can: byte by byte a source takes 3
// percent longer to scan, a compiled file 6 percent longer to load.
const unsigned char *find_string_special(const unsigned char *p, const unsigned char *end)
{
#if defined(__SSE2__)
    const __m128i quote = _mm_set1_epi8('"');
    const __m128i backslash = _mm_set1_epi8('\\');
    const __m128i line_feed = _mm_set1_epi8('\n');
    const __m128i carriage_return = _mm_set1_epi8('\r');
    for (; end - p >= 16; p += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        const __m128i special = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(bytes, quote), _mm_cmpeq_epi8(bytes, backslash)),
            _mm_or_si128(_mm_cmpeq_epi8(bytes, line_feed), _mm_cmpeq_epi8(bytes, carriage_return)));
        const auto mask = static_cast<unsigned>(_mm_movemask_epi8(special));
        if (mask != 0)
            return p + __builtin_ctz(mask);
    }
#endif
    while (p != end && (classes[*p] & in_string) != 0)
        ++p;
    return p;
}

const unsigned char *find_ident_end(const unsigned char *p, const unsigned char *end)
{
    while (p != end && (classes[*p] & in_ident) != 0)
        ++p;
    return p;
}

// Takes n bytes of the block, none of them a line feed.
void take_block(zel_lex_buf_t *buf, std::size_t n)
{
    buf->index += static_cast<std::uint32_t>(n);
    buf->position += n;
    buf->column += static_cast<std::uint32_t>(n);
}

// Appends the run of plain bytes that stands next in the block; false without memory.
template <class FindEnd>
bool add_run(zel_lex_buf_t *buf, zel_token_t *token, FindEnd &&find_end)
{
    const block_view block = open_block(buf);
    if (block.begin == block.end)
        return true;
    const auto n = static_cast<std::size_t>(find_end(block.begin, block.end) - block.begin);
    const bool fits = reserve(token, n);
    if (fits) {
        std::memcpy(token->lexeme + token->length, block.begin, n);
        token->length += static_cast<std::uint32_t>(n);
    }
    take_block(buf, n); // what is lost is passed over all the same
    return fits;
}

void end_text(zel_token_t *token) { token->lexeme[token->length] = '\0'; }

int finish(zel_token_t *token, int id)
{
    token->id = static_cast<std::int16_t>(id);
    return id;
}

// Takes everything before the first of the two bytes that stands in the block.
void skip_until(zel_lex_buf_t *buf, int byte, int other)
{
    const block_view block = open_block(buf);
    if (block.begin == nullptr)
        return;
    auto n = static_cast<std::size_t>(block.end - block.begin);
    for (const int wanted : {byte, other})
        if (const void *found = std::memchr(block.begin, wanted, n))
            n = static_cast<std::size_t>(static_cast<const unsigned char *>(found) - block.begin);
    take_block(buf, n);
}

// Called behind "/*": passes over the comment. False when the input ends in it.
bool skip_block_comment(zel_lex_buf_t *buf)
{
    for (;;) {
        skip_until(buf, '\n', '*');
        const int c = next_char(buf);
        if (c == ZEL_LEX_EOF)
            return false;
        if (c == '*' && peek_char(buf) == '/') {
            next_char(buf);
            return true;
        }
    }
}

// Called behind "//": passes over the line with its line feed. False when the input ends first.
bool skip_line_comment(zel_lex_buf_t *buf)
{
    for (;;) {
        skip_until(buf, '\n', '\n');
        const int c = next_char(buf);
        if (c == '\n' || c == ZEL_LEX_EOF)
            return c == '\n';
    }
}

int hex_value(int c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    // Both cases of a letter become the small one.
    const int lower = c | 0x20;
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Returns the byte for the two characters after \x; where they are no digits, what "%x" makes of
// them.
int hex_byte(int high, int low)
{
    const char digits[] = {static_cast<char>(high), static_cast<char>(low), '\0'};
    unsigned value = 0;
    return std::sscanf(digits, "%x", &value) == 1 ? static_cast<int>(value & 0xff) : 0;
}

// Letters of one-character escapes in strings and the bytes they stand for.
int string_escape(int letter)
{
    switch (letter) {
    case '\\':
    case '"':
        return letter;
    case '0':
        return 0;
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case 'r':
        return '\r';
    case 'a':
        return '\a';
    case 'b':
        return '\b';
    default:
        return -1;
    }
}

// What one escape did to the string: this, or the kind of token that ends it.
constexpr int string_goes_on = 0;

int scan_hex_escape(zel_lex_buf_t *buf, zel_token_t *token)
{
    const int high = next_char(buf);
    const int low = high == ZEL_LEX_EOF ? ZEL_LEX_EOF : next_char(buf);
    if (low == ZEL_LEX_EOF)
        return TOKEN_EOF;
    return add_byte(token, hex_byte(high, low)) ? string_goes_on : TOKEN_ERR_MEM;
}

int scan_string_escape(zel_lex_t *lex, zel_token_t *token)
{
    zel_lex_buf_t *buf = lex->buf;
    const int letter = next_char(buf);
    if (letter == ZEL_LEX_EOF)
        return TOKEN_EOF;
    if (letter == 'x' || letter == 'X')
        return scan_hex_escape(buf, token);
    if (letter == '\n' || letter == '\r') {
        // A backslash at the start of the next line belongs to the line break.
        if (peek_char(buf) == '\\')
            next_char(buf);
        return string_goes_on;
    }
    const int byte = string_escape(letter);
    if (byte >= 0)
        return add_byte(token, byte) ? string_goes_on : TOKEN_ERR_MEM;
    if ((lex->flags & LEX_KEEP_BAD_ESCAPES) == 0)
        return TOKEN_BAD_ESCAPE;
    LogPrint(1, "zel_get_token: WARNING unknown escape %c\n", letter);
    return add_byte(token, '\\') && add_byte(token, letter) ? string_goes_on : TOKEN_ERR_MEM;
}

// Takes one character of a string, where a plain run has ended.
int scan_string_char(zel_lex_t *lex, zel_token_t *token)
{
    const int c = next_char(lex->buf);
    switch (c) {
    case '"':
        return TOKEN_STRING;
    case '\n':
    case '\r':
        return TOKEN_ERR_EOL;
    case ZEL_LEX_EOF:
        return TOKEN_EOF;
    case '\\':
        if ((lex->flags & LEX_ESCAPES) != 0)
            return scan_string_escape(lex, token);
        [[fallthrough]];
    default:
        return add_byte(token, c) ? string_goes_on : TOKEN_ERR_MEM;
    }
}

int scan_string(zel_lex_t *lex)
{
    zel_token_t *token = lex->work;
    int kind = string_goes_on;
    while (kind == string_goes_on) {
        if (!add_run(lex->buf, token, find_string_special))
            return lose_text(lex, token);
        kind = scan_string_char(lex, token);
    }
    if (kind == TOKEN_ERR_MEM)
        return lose_text(lex, token);
    end_text(token);
    return finish(token, kind);
}

// Letters of escapes in character constants; any other letter leaves the backslash.
int character_escape(int letter)
{
    switch (letter) {
    case 'f':
        return '\f';
    case 't':
        return '\t';
    case 'v':
        return '\v';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case '0':
        return 0;
    case '"':
    case '\'':
        return letter;
    case 'a':
        return '\a';
    case 'b':
        return '\b';
    default:
        return '\\';
    }
}

// One character between single quotes. If another character stands where the closing quote must be,
// that one is lost and the token is a number.
int scan_character(zel_lex_t *lex)
{
    zel_token_t *token = lex->work;
    int c = next_char(lex->buf);
    if (c == '\\') {
        const int letter = next_char(lex->buf);
        c = letter == ZEL_LEX_EOF ? letter : character_escape(letter);
    }
    if (c == ZEL_LEX_EOF)
        return finish(token, TOKEN_EOF);
    // The token's text is the character's number.
    token->length = static_cast<std::uint32_t>(
        std::snprintf(token->lexeme, static_cast<std::size_t>(token->capacity), "%d", c));
    return finish(token, next_char(lex->buf) == '\'' ? TOKEN_CHAR : TOKEN_NUMBER);
}

int scan_identifier(zel_lex_t *lex, int first)
{
    zel_token_t *token = lex->work;
    bool fits = add_byte(token, first);
    // A run ends with its block; the identifier may go on in the next one.
    do
        fits = fits && add_run(lex->buf, token, find_ident_end);
    while (fits && is_class(peek_char(lex->buf), in_ident) && add_byte(token, next_char(lex->buf)));
    if (!fits)
        return lose_text(lex, token);
    end_text(token);
    return finish(token, find_keyword(lex, token->lexeme, token->length));
}

// Reads a run of digits as a number, cut to 32 bits; returns the character after them.
int read_digits(zel_lex_buf_t *buf, int first, std::uint32_t &number)
{
    std::uint64_t value = 0;
    int c = first;
    for (; is_digit(c); c = next_char(buf))
        value = std::min<std::uint64_t>(value * 10 + static_cast<unsigned>(c - '0'), 0xffffffffU);
    number = static_cast<std::uint32_t>(value);
    return c;
}

constexpr std::uint32_t marker_name_limit = 2047;

void enter_marker_file(zel_lex_t *lex, const zel_token_t *name)
{
    if (lex->marker_count >= ZEL_LEX_MARKER_FILES || name->length > marker_name_limit)
        return;
    char *copy = strdup(name->lexeme);
    if (copy == nullptr) {
        lex->out_of_memory = 1;
        return;
    }
    // The slot may still hold the name of a file that was left.
    std::free(lex->marker_files[lex->marker_count]);
    lex->marker_files[lex->marker_count] = copy;
    lex->buf->marker_file = lex->marker_count++;
}

void leave_marker_file(zel_lex_t *lex)
{
    if (lex->marker_count > 0)
        --lex->marker_count;
    lex->buf->marker_file = lex->marker_count - 1; // wraps to "no file" for an empty table
}

// # line "file" [flag] and the rest of its line. The work token's text holds the name meanwhile.
void scan_line_marker(zel_lex_t *lex)
{
    zel_lex_buf_t *buf = lex->buf;
    zel_token_t *name = lex->work;
    int c = next_char(buf);
    while (!is_digit(c) && c != ZEL_LEX_EOF)
        c = next_char(buf);
    std::uint32_t line = 0;
    c = read_digits(buf, c, line);
    while (c != '"' && c != ZEL_LEX_EOF)
        c = next_char(buf);
    for (c = c == '"' ? next_char(buf) : c; c != '"' && c != ZEL_LEX_EOF; c = next_char(buf))
        // A name that is too long is read to its end and not kept: enter_marker_file refuses it.
        if (name->length <= marker_name_limit && !add_byte(name, c))
            lex->out_of_memory = 1;
    end_text(name);
    std::uint32_t flag = 0;
    while (!is_digit(c) && c != '\n' && c != ZEL_LEX_EOF)
        c = next_char(buf);
    if (is_digit(c))
        c = read_digits(buf, c, flag);
    while (c != '\n' && c != ZEL_LEX_EOF)
        c = next_char(buf);
    // A marker that the end of the file cuts off changes nothing.
    if (c != ZEL_LEX_EOF) {
        buf->marker_line = line;
        // The preprocessor's flags: 1 enters a file, 2 returns to one, others do not change it.
        if (flag < 2)
            enter_marker_file(lex, name);
        else if (flag == 2)
            leave_marker_file(lex);
    }
    clear_token(name);
}

// An operator of one character, or of two when the second one follows.
int scan_pair(zel_lex_t *lex, int single, int second, int pair)
{
    if (peek_char(lex->buf) != second)
        return finish(lex->work, single);
    next_char(lex->buf);
    return finish(lex->work, pair);
}

int scan_number(zel_lex_t *lex, int first)
{
    const int kind = lex->do_numeric(lex, first, 0);
    // Errors are negative: they keep their kind, whatever the flag says.
    return finish(lex->work,
                  kind > 0 && (lex->flags & LEX_NUMBER_ONE_KIND) != 0 ? TOKEN_NUMBER : kind);
}

// After "/": returns the kind of the token, or 0 behind a comment.
int scan_slash(zel_lex_t *lex)
{
    zel_lex_buf_t *buf = lex->buf;
    const int second = (lex->flags & LEX_NO_COMMENTS) != 0 ? 0 : peek_char(buf);
    if (second != '*' && second != '/')
        return finish(lex->work, '/');
    next_char(buf);
    const bool closed = second == '*' ? skip_block_comment(buf) : skip_line_comment(buf);
    if (closed)
        return 0;
    // Only a block comment can be cut: a line comment may well end with the file.
    lex->open_comment = second == '*' ? 1 : 0;
    return finish(lex->work, TOKEN_EOF);
}

const unsigned char *skip_blanks(const unsigned char *p, const unsigned char *end)
{
    while (p != end && zel::is_blank(*p))
        ++p;
    return p;
}

// Takes the white space that stands next in the block; line feeds, too, where they are space.
void skip_white_space(zel_lex_t *lex)
{
    zel_lex_buf_t *buf = lex->buf;
    const bool over_lines = (lex->flags & LEX_NEWLINE_SPACE) != 0;
    // The end of a word is a character that is held: as white space it has done its work.
    if (buf->next_char == zel::buf_shared_next_char &&
        (zel::is_blank(buf->held) || (over_lines && buf->held == '\n')))
        buf->held = 0;
    const block_view block = open_block(buf);
    const unsigned char *line_start = nullptr;
    std::uint32_t lines = 0;
    const unsigned char *p = skip_blanks(block.begin, block.end);
    while (over_lines && p != block.end && *p == '\n') {
        ++lines;
        line_start = p + 1;
        p = skip_blanks(p + 1, block.end);
    }
    take_block(buf, static_cast<std::size_t>(p - block.begin));
    if (lines != 0) {
        buf->line += lines;
        buf->marker_line += lines;
        buf->column = static_cast<std::uint32_t>(p - line_start);
    }
}

// A sign is a token by itself, or together with the sign behind it another one. A byte with a kind
// of 0 is no sign.
struct sign {
    int behind = 0;
    int kind = 0;
};
constexpr auto signs = [] {
    std::array<sign, 256> table{};
    for (const char alone : std::string_view("$%()*,.:;?[\\]{}~"))
        table[static_cast<unsigned char>(alone)] = {0, alone};
    table['!'] = {'=', TOKEN_NE};
    table['&'] = {'&', TOKEN_AND};
    table['|'] = {'|', TOKEN_OR};
    table['+'] = {'+', TOKEN_INC};
    table['-'] = {'-', TOKEN_DECR};
    table['<'] = {'=', TOKEN_LE};
    table['='] = {'=', TOKEN_EQ};
    table['>'] = {'=', TOKEN_GE};
    return table;
}();

// Acts on one character: returns the kind of the token it begins, or 0 when it is passed over.
int scan_from(zel_lex_t *lex, int c)
{
    switch (c) {
    case ZEL_LEX_EOF:
        return finish(lex->work, TOKEN_EOF);
    case ' ':
    case '\t':
        return 0;
    case '\n':
        return (lex->flags & LEX_NEWLINE_SPACE) != 0 ? 0 : finish(lex->work, TOKEN_NEWLINE);
    case '#':
        if ((lex->flags & LEX_LINE_MARKERS) == 0)
            return finish(lex->work, c);
        scan_line_marker(lex);
        return 0;
    case '/':
        return scan_slash(lex);
    case '"':
        return scan_string(lex);
    case '\'':
        return (lex->flags & LEX_ESCAPES) != 0 ? scan_character(lex) : finish(lex->work, c);
    default:
        break;
    }
    if (is_digit(c))
        return scan_number(lex, c);
    const sign &known = signs[static_cast<unsigned char>(c)];
    // A byte without a meaning of its own begins an identifier, so that none is lost.
    if (known.kind == 0)
        return scan_identifier(lex, c);
    return known.behind == 0 ? finish(lex->work, c) : scan_pair(lex, c, known.behind, known.kind);
}

bool is_octal(int c) { return c >= '0' && c <= '7'; }
bool is_hex(int c) { return hex_value(c) >= 0; }
bool is_decimal_or_point(int c) { return is_digit(c) || c == '.'; }

// Takes the characters of one class that follow; sets seen if the given one is among them.
bool add_while(zel_lex_t *lex, bool (*accepts)(int), int character, bool &seen)
{
    while (accepts(peek_char(lex->buf))) {
        const int c = next_char(lex->buf);
        seen = seen || c == character;
        if (!add_byte(lex->work, c))
            return false;
    }
    return true;
}

} // namespace

int zel_get_token(zel_lex_t *lex)
{
    clear_token(lex->work);
    if (lex->buf == nullptr)
        return TOKEN_ERR_MEM;
    int kind = 0;
    while (kind == 0) {
        skip_white_space(lex);
        // Again after each comment: a token's place is where it begins itself.
        mark_start(lex);
        kind = scan_from(lex, next_char(lex->buf));
    }
    return kind;
}

// Hexadecimal digits after 0x, octal ones after another 0, else decimal digits and points. Neither
// a sign nor an exponent belongs to a number.
int lex_do_numeric(zel_lex_t *lex, int first, int start)
{
    zel_token_t *token = lex->work;
    token->length = static_cast<std::uint32_t>(start);
    // Looked at once: a NUL, which cannot be held, must not join what stands on both sides of it.
    const int second = first == '0' ? peek_char(lex->buf) : 0;
    int kind = TOKEN_DEC;
    bool fits = add_byte(token, first);
    bool seen = false;
    if (first == '0' && (second | 0x20) == 'x') {
        next_char(lex->buf);
        fits = fits && add_byte(token, 'x') && add_while(lex, is_hex, 0, seen);
        kind = TOKEN_HEX;
    } else if (first == '0' && second != '.') {
        fits = fits && (!is_octal(second) || add_while(lex, is_octal, 0, seen));
        // A 0 by itself is decimal.
        kind = token->length == static_cast<std::uint32_t>(start) + 1 ? TOKEN_DEC : TOKEN_OCT;
    } else {
        fits = fits && add_while(lex, is_decimal_or_point, '.', seen);
        kind = seen ? TOKEN_FLOAT : TOKEN_DEC;
    }
    if (!fits)
        return lose_text(lex, token);
    end_text(token);
    return kind;
}
