#pragma once

// Bytes that a format cannot hold, carried through it. Sources may hold control characters, and
// those in ascii any bytes; a catalog is UTF-8 and XML knows few controls. Each such byte travels
// as the private character U+EF00 + byte. So that nothing else comes back as a byte, the bytes of
// characters that are themselves among U+EF00 to U+EFFF travel the same way.

#include <string>
#include <string_view>

namespace zel::exchange {

enum class holds {
    utf8, // every character of UTF-8
    xml,  // those that XML 1.0 knows
    cells // all but tabs and carriage returns, which spreadsheets do not keep
};

// How many bytes from the start are valid UTF-8.
std::size_t valid_length(std::string_view text);

// Whether the text has to be changed to travel.
bool must_carry(std::string_view text, holds what);

// Appends the text as it travels.
void append_carried(std::string &out, std::string_view text, holds what = holds::utf8);

// What came back. Where the bytes would not be UTF-8 as a whole the text stays as it is, unless
// any bytes are good. U+EF00 stays itself, as no text holds a zero byte.
enum class encoding { utf8, any };
void uncarry(std::string &text, encoding good);

} // namespace zel::exchange
