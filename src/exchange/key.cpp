#include "exchange/key.h"

#include "exchange/carry.h"
#include "lex/lex-misc.h"

#include <algorithm>
#include <array>

namespace zel::exchange {

namespace {

constexpr char hex_digits[] = "0123456789abcdef";

constexpr bool is_control(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }

void append_hex(std::string &out, char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    out += "\\x";
    out += hex_digits[value >> 4];
    out += hex_digits[value & 15];
}

// The letter that stands behind a backslash for the byte; 0 for none.
constexpr char letter_of(char byte)
{
    return byte == '"' ? '\0' : escape_letter(static_cast<unsigned char>(byte));
}

// The bytes that do not stand for themselves in an item's name.
constexpr auto escaped = [] {
    std::array<bool, 256> table{};
    for (unsigned c = 0; c < table.size(); ++c)
        table[c] = letter_of(static_cast<char>(c)) != '\0' || is_control(static_cast<char>(c));
    return table;
}();

void append_escape(std::string &out, char c)
{
    if (const char letter = letter_of(c); letter != '\0')
        out.append(1, '\\') += letter;
    else if (is_control(c))
        append_hex(out, c);
    else
        out.append(1, '\\') += c;
}

void append_valid(std::string &out, std::string_view name, bool is_group)
{
    std::size_t plain = 0;
    for (std::size_t at = 0; at < name.size(); ++at) {
        // The first plain colon ends the group; an item's colons need no escape.
        if (!escaped[static_cast<unsigned char>(name[at])] && (!is_group || name[at] != ':'))
            continue;
        out.append(name.substr(plain, at - plain));
        append_escape(out, name[at]);
        plain = at + 1;
    }
    out.append(name.substr(plain));
}

void append_escaped(std::string &out, std::string_view name, bool is_group)
{
    while (!name.empty()) {
        const std::size_t valid = valid_length(name);
        append_valid(out, name.substr(0, valid), is_group);
        name.remove_prefix(valid);
        if (!name.empty()) {
            append_hex(out, name.front());
            name.remove_prefix(1);
        }
    }
}

int hex_value(char c)
{
    const std::string_view digits = hex_digits;
    const std::size_t at = digits.find(c);
    return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

// Undoes one escape whose backslash has been taken, and takes it.
bool read_escape(std::string_view &text, std::string &name)
{
    if (text.empty())
        return false;
    const char letter = text.front();
    text.remove_prefix(1);
    if (letter == 'x') {
        const int high = text.size() < 2 ? -1 : hex_value(text[0]);
        const int low = high < 0 ? -1 : hex_value(text[1]);
        if (low < 0 || high + low == 0) // no name holds a zero byte
            return false;
        text.remove_prefix(2);
        name += static_cast<char>(high * 16 + low);
        return true;
    }
    for (const char byte : std::string_view(":\\\n\t\r"))
        if (letter == (byte == ':' ? ':' : letter_of(byte))) {
            name += byte;
            return true;
        }
    return false;
}

// Reads up to the end, or, if a colon ends the name, up to the first one that stands for itself.
bool read_escaped(std::string_view &text, std::string &name, bool ends_at_colon)
{
    name.clear();
    for (;;) {
        const std::size_t end = ends_at_colon ? text.find(':') : text.npos;
        const std::size_t plain = std::min({text.find('\\'), end, text.size()});
        name.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty() || plain == end)
            return true;
        text.remove_prefix(1);
        if (!read_escape(text, name))
            return false;
    }
}

} // namespace

void append_name(std::string &out, std::string_view name) { append_escaped(out, name, false); }

void append_key(std::string &out, std::string_view group, std::string_view item)
{
    append_escaped(out, group, true);
    out += ':';
    append_escaped(out, item, false);
}

bool split_key(std::string_view key, std::string &group, std::string &item)
{
    if (!read_escaped(key, group, true) || key.empty())
        return false;
    key.remove_prefix(1);
    return read_escaped(key, item, false);
}

bool read_name(std::string_view text, std::string &name) { return read_escaped(text, name, false); }

} // namespace zel::exchange
