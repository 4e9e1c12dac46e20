#pragma once

// A text as the rules look at it: its bytes and what kinds of characters they are, found in one
// pass, so that most rules know at once that they have nothing to do.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <glib.h>

namespace zel::lint {

// Bits of text::holds.
enum : std::uint32_t {
    has_percent = 1,
    has_underscore = 2,
    has_angle = 4, // <
    has_ampersand = 8,
    has_bracket = 16,  // one of ()[]{}, or a byte that may begin a wide one
    has_digit = 32,    // 0 to 9
    has_address = 64,  // one of @ : / \ (and so perhaps an address or a path)
    has_control = 128, // of ASCII, but for tab, line feed and carriage return
    has_high = 256,    // bytes beyond ASCII
    has_general = 512, // a byte that may begin punctuation and marks of all scripts (U+2000)
    has_letter = 1024, // of ASCII
    has_blank = 2048,  // space, tab or line end
    has_other = 4096,  // what is left of ASCII
    has_forms = 8192   // set by note_forms: it has plural forms
};

struct text {
    std::string_view bytes;
    std::uint32_t holds = 0;

    bool has(std::uint32_t any) const { return (holds & any) != 0; }
    bool is_blank() const { return (holds & ~has_blank) == 0; } // or empty
};

text look_at(std::string_view bytes);

// The character at the position, which moves behind it; U+FFFD, one byte on, for bytes that are no
// UTF-8.
char32_t next_char(std::string_view bytes, std::size_t &at);

// The character before the position, which moves to its start.
char32_t last_char(std::string_view bytes, std::size_t &at);

bool is_letter(char32_t c);
bool is_digit(char32_t c);
constexpr bool is_blank(char c)
{
    return c <= ' ' && (c == ' ' || (c >= '\t' && c <= '\r' && c != '\v' && c != '\f'));
}
constexpr bool is_ascii_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool is_ascii_digit(char c) { return c >= '0' && c <= '9'; }
constexpr bool is_word_byte(char c) { return is_ascii_letter(c) || is_ascii_digit(c) || c == '_'; }

// Chinese, Japanese and Korean characters and the punctuation that is as wide: scripts that set no
// blank where others do.
bool is_wide(char32_t c);

// Characters of a text in UTF-8; every byte that is none counts for at most one.
std::size_t count_chars(std::string_view bytes);

} // namespace zel::lint
