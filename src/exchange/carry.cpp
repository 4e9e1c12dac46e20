#include "exchange/carry.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include <glib.h>

namespace zel::exchange {

namespace {

// The first of the three bytes of U+E000 to U+EFFF; the second says the quarter.
constexpr char lead = '\xEE';

bool is_middle(char byte) { return (byte & 0xC0) == 0x80; }

// Whether a character of U+EF00 to U+EFFF stands at the start.
bool is_carrier(std::string_view text)
{
    return text.size() >= 3 && text[0] == lead && (text[1] & 0xFC) == 0xBC && is_middle(text[2]);
}

char carried_byte(std::string_view carrier)
{
    return static_cast<char>((carrier[1] & 3) << 6 | (carrier[2] & 0x3F));
}

void append_carrier(std::string &out, char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    out += lead;
    out += static_cast<char>(0xBC | value >> 6);
    out += static_cast<char>(0x80 | (value & 0x3F));
}

// Whether a character that XML cannot hold stands at the start: a control but tab, line feed and
// carriage return, or U+FFFE or U+FFFF.
bool is_unknown_to_xml(std::string_view text)
{
    const auto c = static_cast<unsigned char>(text.front());
    if (c < ' ')
        return c != '\t' && c != '\n' && c != '\r';
    return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
}

// How many bytes of the character at the start are carried; 0 for one that travels as it is.
std::size_t carried_length(std::string_view text, holds what)
{
    // A text's own character of that range is carried, too: else it would come back as a byte.
    if (is_carrier(text))
        return 3;
    if (what == holds::cells && (text.front() == '\t' || text.front() == '\r'))
        return 1;
    if (what == holds::xml && is_unknown_to_xml(text))
        return text.front() == '\xEF' ? 3 : 1;
    return 0;
}

constexpr std::uint8_t bit_of(holds what)
{
    return static_cast<std::uint8_t>(1U << static_cast<unsigned>(what));
}

// For each byte the formats in which a character that begins with it may be carried. Hardly a text
// has one, so that most are passed over with a look at the table.
constexpr auto suspects = [] {
    std::array<std::uint8_t, 256> table{};
    for (unsigned char c = 0; c < ' '; ++c)
        table[c] = c == '\t' || c == '\n' || c == '\r' ? std::uint8_t{0} : bit_of(holds::xml);
    table['\t'] = table['\r'] = bit_of(holds::cells);
    table[0xEE] = 0xFF;
    table[0xEF] = bit_of(holds::xml);
    return table;
}();

// The position of the first character of a valid text that is carried, or its size.
std::size_t find_carried(std::string_view text, holds what)
{
    std::size_t at = what == holds::utf8 ? std::min(text.find(lead), text.size()) : 0;
    while (at < text.size() &&
           ((suspects[static_cast<unsigned char>(text[at])] & bit_of(what)) == 0 ||
            carried_length(text.substr(at, 3), what) == 0))
        ++at;
    return at;
}

void append_valid(std::string &out, std::string_view text, holds what)
{
    while (!text.empty()) {
        const std::size_t plain = find_carried(text, what);
        out.append(text.substr(0, plain));
        text.remove_prefix(plain);
        const std::size_t length = text.empty() ? 0 : carried_length(text, what);
        for (const char byte : text.substr(0, length))
            append_carrier(out, byte);
        text.remove_prefix(length);
    }
}

} // namespace

std::size_t valid_length(std::string_view text)
{
    // ASCII without NUL bytes is valid, eight bytes at a time: none has its top bit, neither before
    // nor after one is taken off.
    constexpr std::uint64_t ones = 0x0101010101010101U;
    std::size_t at = 0;
    for (std::uint64_t x = 0; text.size() - at >= sizeof x; at += sizeof x) {
        std::memcpy(&x, text.data() + at, sizeof x);
        if (((x | (x - ones)) & ones << 7) != 0)
            break;
    }
    if (at == text.size())
        return at;
    const char *end = nullptr;
    g_utf8_validate_len(text.data() + at, text.size() - at, &end);
    return static_cast<std::size_t>(end - text.data());
}

bool must_carry(std::string_view text, holds what)
{
    return !text.empty() &&
           (valid_length(text) != text.size() || find_carried(text, what) != text.size());
}

void append_carried(std::string &out, std::string_view text, holds what)
{
    while (!text.empty()) {
        const std::size_t valid = valid_length(text);
        append_valid(out, text.substr(0, valid), what);
        text.remove_prefix(valid);
        if (!text.empty()) {
            append_carrier(out, text.front());
            text.remove_prefix(1);
        }
    }
}

void uncarry(std::string &text, encoding good)
{
    if (text.find(lead) == std::string::npos)
        return;
    std::string out;
    out.reserve(text.size());
    for (std::string_view rest = text; !rest.empty();) {
        // No text holds a NUL, so no carrier stands for one.
        const bool carries = is_carrier(rest) && carried_byte(rest) != '\0';
        out += carries ? carried_byte(rest) : rest.front();
        rest.remove_prefix(carries ? 3 : 1);
    }
    // If the result is not UTF-8, the characters were the text's own.
    if (good == encoding::any || valid_length(out) == out.size())
        text = std::move(out);
}

} // namespace zel::exchange
