#include "lint/text.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zel::lint {

namespace {

constexpr std::uint16_t kind_of(unsigned char c)
{
    switch (c) {
    case '%':
        return has_percent;
    case '_':
        return has_underscore;
    case '<':
        return has_angle;
    case '&':
        return has_ampersand;
    case '(':
    case ')':
    case '[':
    case ']':
    case '{':
    case '}':
        return has_bracket;
    case '@':
    case ':':
    case '/':
    case '\\':
        return has_address;
    case ' ':
    case '\t':
    case '\n':
    case '\r':
        return has_blank;
    // The first byte of general punctuation: signs that turn a text around, brackets, dots.
    case 0xE2:
        return has_high | has_general | has_bracket;
    // Those of the wide brackets.
    case 0xE3:
    case 0xEF:
        return has_high | has_bracket;
    default:
        break;
    }
    if (c >= 0x80)
        return has_high;
    if (c < ' ' || c == 0x7f)
        return has_control;
    if (is_ascii_digit(static_cast<char>(c)))
        return has_digit;
    return is_ascii_letter(static_cast<char>(c)) ? has_letter : has_other;
}

constexpr std::array<std::uint16_t, 256> make_kinds()
{
    std::array<std::uint16_t, 256> table{};
    for (unsigned c = 0; c < table.size(); ++c)
        table[c] = kind_of(static_cast<unsigned char>(c));
    return table;
}
constexpr auto kinds = make_kinds();

bool is_middle(char c) { return (c & 0xC0) == 0x80; } // of a character in UTF-8

} // namespace

text look_at(std::string_view bytes)
{
    std::uint32_t holds = 0;
    for (const char c : bytes)
        holds |= kinds[static_cast<unsigned char>(c)];
    return {bytes, holds};
}

char32_t next_char(std::string_view bytes, std::size_t &at)
{
    const auto lead = static_cast<unsigned char>(bytes[at]);
    if (lead < 0x80) {
        ++at;
        return lead;
    }
    const char *start = bytes.data() + at;
    const gunichar c = g_utf8_get_char_validated(start, static_cast<gssize>(bytes.size() - at));
    if (c >= 0x110000) { // the two ways to say that it is none
        ++at;
        return 0xFFFD;
    }
    at += lead >= 0xF0 ? 4U : lead >= 0xE0 ? 3U : 2U;
    return c;
}

char32_t last_char(std::string_view bytes, std::size_t &at)
{
    // Back to the lead byte, but no further than a character is long.
    std::size_t start = --at;
    while (start > 0 && at - start < 3 && is_middle(bytes[start]))
        --start;
    std::size_t end = start;
    const char32_t c = next_char(bytes, end);
    // What was read does not end here: the byte belongs to no character.
    if (end != at + 1)
        return 0xFFFD;
    at = start;
    return c;
}

bool is_letter(char32_t c)
{
    return c < 0x80 ? is_ascii_letter(static_cast<char>(c))
                    : g_unichar_isalpha(c) != FALSE || g_unichar_ismark(c) != FALSE;
}

bool is_digit(char32_t c)
{
    return c < 0x80 ? is_ascii_digit(static_cast<char>(c)) : g_unichar_isdigit(c) != FALSE;
}

bool is_wide(char32_t c) { return c >= 0x1100 && g_unichar_iswide(c) != FALSE; }

std::size_t count_chars(std::string_view bytes)
{
    // Eight bytes at a time: those that begin 10 continue a character.
    constexpr std::uint64_t ones = 0x0101010101010101U;
    std::size_t middles = 0;
    std::size_t at = 0;
    for (std::uint64_t x = 0; bytes.size() - at >= sizeof x; at += sizeof x) {
        std::memcpy(&x, bytes.data() + at, sizeof x);
        middles += static_cast<std::size_t>(((x >> 7 & ~(x >> 6) & ones) * ones) >> 56);
    }
    for (; at < bytes.size(); ++at)
        middles += is_middle(bytes[at]) ? 1U : 0U;
    return bytes.size() - middles;
}

} // namespace zel::lint
