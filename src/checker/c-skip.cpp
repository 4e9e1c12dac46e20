#include "checker/c-skip.h"

#include "lex/lex.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

// The scanner has the last word on every token: this only jumps from one place that may matter to
// the next, and leaves to the scanner what begins there. Every word of a request has "lang" in it,
// and every other text is only of interest inside quotes or after "#".

namespace zel {

namespace {

enum byte_kind : unsigned char {
    PLAIN,
    FEED,
    LETTER_L, // of "lang"
    QUOTE,
    SLASH,
    HASH,
    DOUBT // a carriage return drops out of the text, a NUL is lost when it is looked ahead
};

constexpr std::array<byte_kind, 256> make_kinds()
{
    std::array<byte_kind, 256> kinds{};
    kinds['\n'] = FEED;
    kinds['l'] = kinds['L'] = LETTER_L;
    kinds['"'] = kinds['\''] = QUOTE;
    kinds['/'] = SLASH;
    kinds['#'] = HASH;
    kinds['\0'] = kinds['\r'] = DOUBT;
    return kinds;
}

enum : unsigned char {
    IN_IDENT = 1,
    DELIMITER = 2 // a whole token or white space; nothing goes on behind it
};

constexpr std::array<unsigned char, 256> make_parts()
{
    std::array<unsigned char, 256> parts{};
    for (unsigned c = 0; c < 256; ++c) {
        const int byte = static_cast<int>(c);
        if (is_digit(byte) || is_letter(byte) || c == '_' || c >= 128)
            parts[c] = IN_IDENT;
    }
    for (const char c : std::string_view(" \t\n$%()*,:;?[\\]{}~"))
        parts[static_cast<unsigned char>(c)] = DELIMITER;
    return parts;
}

constexpr auto kinds = make_kinds();
constexpr auto parts = make_parts();
constexpr std::string_view define = "define";

using byte_place = const unsigned char *;

// The walk over one block of the input.
struct block_walk {
    byte_place end;
    byte_place at;             // how far it is taken
    byte_place known;          // a token surely begins here
    byte_place line = nullptr; // behind the last line feed
    std::uint32_t lines = 0;   // line feeds passed

    void run();
    bool pass();
    bool pass_feed(byte_place feed);
    bool pass_letter();
    bool pass_slash();
    bool pass_block_comment();
    bool pass_hash();
    bool pass_return();
    bool stop_before();
    byte_place run_end(byte_place from) const;
    byte_place blanks_end(byte_place from) const;
};

// Steps back to the first byte of the token that is being passed, and leaves it to the scanner.
bool block_walk::stop_before()
{
    while (at != known && (parts[at[-1]] & DELIMITER) == 0)
        --at;
    return false;
}

bool block_walk::pass_feed(byte_place feed)
{
    ++lines;
    line = at = feed + 1;
    return true;
}

bool block_walk::pass_letter()
{
    // At the end of the block the word may go on in the next one.
    if (end - at < 4 || ((at[1] | 0x20) == 'a' && (at[2] | 0x20) == 'n' && (at[3] | 0x20) == 'g'))
        return stop_before();
    ++at;
    return true;
}

bool block_walk::pass_return()
{
    // Before a line feed a carriage return is space; anywhere else it drops out of a word.
    if (at[0] != '\r' || at[1] != '\n')
        return stop_before();
    ++at;
    return true;
}

bool block_walk::pass_block_comment()
{
    const block_walk before = *this;
    for (at += 2; at + 1 < end; ++at) {
        if (*at == '\n') {
            ++lines;
            line = at + 1;
        } else if (*at == '*' && at[1] == '/') {
            at += 2;
            known = at;
            return true;
        } else if (*at == '*' && at[1] == '\r') {
            // The carriage return drops out, so the comment may end here.
            break;
        }
    }
    // The comment ends in another block, or the scanner has to tell where.
    *this = before;
    return false;
}

bool block_walk::pass_slash()
{
    if (at[1] == '*')
        return pass_block_comment();
    if (at[1] == '/') {
        const void *feed = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
        if (feed == nullptr)
            return false;
        pass_feed(static_cast<byte_place>(feed));
        known = at;
        return true;
    }
    if (kinds[at[1]] == DOUBT)
        return false;
    ++at;
    return true;
}

// Returns the end of an identifier; end when it is not surely there.
byte_place block_walk::run_end(byte_place from) const
{
    while (from != end && (parts[*from] & IN_IDENT) != 0)
        ++from;
    return from != end && kinds[*from] != DOUBT ? from : end;
}

byte_place block_walk::blanks_end(byte_place from) const
{
    while (from != end && is_blank(*from))
        ++from;
    return from;
}

bool is_define(byte_place word, byte_place word_end)
{
    return std::equal(word, word_end, define.begin(), define.end(),
                      [](unsigned char a, char b) { return lower(a) == b; });
}

// A "#" matters before "define", and that only if a name and a string follow. The name of the
// application, and that of a request, begin with letters that are left to the scanner.
bool block_walk::pass_hash()
{
    const byte_place word = blanks_end(at + 1);
    const byte_place word_end = run_end(word);
    if (word_end == word || word_end == end)
        return false;
    known = word;
    if (is_define(word, word_end)) {
        const byte_place name = blanks_end(word_end);
        const byte_place name_end = run_end(name);
        const byte_place value = blanks_end(name_end);
        if (name_end == name || value == end || (*name | 0x20) == 'z' || kinds[*name] == LETTER_L ||
            *value == '"' || kinds[*value] == FEED || kinds[*value] == SLASH ||
            kinds[*value] == DOUBT) {
            known = at;
            return false;
        }
        known = name;
    }
    at = known;
    return true;
}

// Passes what stands here; false when the scanner has to go on. at + 1 must be in the block.
bool block_walk::pass()
{
    switch (kinds[*at]) {
    case PLAIN:
        ++at;
        return true;
    case FEED:
        return pass_feed(at);
    case LETTER_L:
        return pass_letter();
    case SLASH:
        return pass_slash();
    case HASH:
        return pass_hash();
    case DOUBT:
        return pass_return();
    case QUOTE:
        break;
    }
    return false;
}

void block_walk::run()
{
    for (;;) {
        while (at + 1 < end && kinds[*at] == PLAIN)
            ++at;
        // The last byte cannot be judged without the one behind it.
        if (at + 1 >= end) {
            stop_before();
            return;
        }
        if (!pass())
            return;
    }
}

bool block_is_open(const zel_lex_t *lex)
{
    constexpr unsigned flags = LEX_NEWLINE_SPACE | LEX_LINE_MARKERS | LEX_NO_COMMENTS;
    const zel_lex_buf_t *buf = lex->buf;
    // All that the walk relies on: a client's own function would have to see every byte.
    return lex->ahead->id == 0 && lex->get_token == zel_get_token &&
           lex->do_numeric == lex_do_numeric && (lex->flags & flags) == LEX_NEWLINE_SPACE &&
           buf != nullptr && buf->direct != 0 && buf->held == 0 &&
           buf->next_char == buf_shared_next_char && buf->look_ahead == buf_shared_look_ahead &&
           buf->index < buf->count;
}

} // namespace

void skip_plain_code(zel_lex_t *lex)
{
    if (!block_is_open(lex))
        return;
    zel_lex_buf_t *buf = lex->buf;
    const byte_place begin = buf->data + buf->index;
    block_walk block{buf->data + buf->count, begin, begin};
    block.run();
    const auto taken = static_cast<std::uint32_t>(block.at - begin);
    buf->index += taken;
    buf->position += taken;
    buf->line += block.lines;
    buf->marker_line += block.lines;
    buf->column = block.line == nullptr ? buf->column + taken
                                        : static_cast<std::uint32_t>(block.at - block.line);
}

} // namespace zel
