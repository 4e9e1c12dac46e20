#include "exchange/c-format.h"

#include <algorithm>

namespace zel::exchange {

namespace {

using arguments = std::vector<std::string_view>;

// More than any text has. A larger number must not make a table of its size.
constexpr std::size_t most_arguments = 100;

constexpr std::string_view lengths[] = {"hh", "h", "ll", "l", "L", "q", "j", "z", "t", ""};

// What is passed for each length modifier, in the order of the table.
constexpr std::string_view integers[] = {"hhd", "hd", "lld", "ld", "lld",
                                         "lld", "jd", "zd",  "td", "d"};
constexpr std::string_view naturals[] = {"hhu", "hu", "llu", "lu", "llu",
                                         "llu", "ju", "zu",  "tu", "u"};
constexpr std::size_t long_one = 3;
constexpr std::size_t no_length = 9;

std::size_t take_length(std::string_view &text)
{
    // The table ends with the empty modifier, with which every text begins.
    std::size_t at = 0;
    while (!text.starts_with(lengths[at]))
        ++at;
    text.remove_prefix(lengths[at].size());
    return at;
}

// The type of a conversion; empty for a letter that converts nothing.
std::string_view type_of(char letter, std::size_t length)
{
    switch (letter) {
    case 'd':
    case 'i':
        return integers[length];
    case 'o':
    case 'u':
    case 'x':
    case 'X':
        return naturals[length];
    case 'e':
    case 'E':
    case 'f':
    case 'F':
    case 'g':
    case 'G':
    case 'a':
    case 'A':
        return lengths[length] == "L" ? "Lf" : length == no_length || length == long_one ? "f" : "";
    case 'c':
        return length == no_length ? "c" : length == long_one ? "lc" : "";
    case 's':
        return length == no_length ? "s" : length == long_one ? "ls" : "";
    case 'p':
        return length == no_length ? "p" : "";
    default:
        return {};
    }
}

// Takes "NUMBER$" and returns the number; 0 when it does not stand there, a number beyond the table
// for one that counts nothing.
std::size_t take_position(std::string_view &text)
{
    const std::size_t end = text.find_first_not_of("0123456789");
    if (end == 0 || end == std::string_view::npos || text[end] != '$' || end > 3)
        return 0;
    std::size_t number = 0;
    for (const char digit : text.substr(0, end))
        number = number * 10 + static_cast<std::size_t>(digit - '0');
    text.remove_prefix(end + 1);
    return number == 0 ? most_arguments + 1 : number;
}

// Collects the types of the arguments that the conversions of one text take.
struct format_reader {
    std::string_view text;
    arguments &found;
    bool numbered = false;
    bool unnumbered = false;

    bool add(std::size_t position, std::string_view type);
    bool read_star();
    bool read_width();
    bool read_conversion();
};

bool format_reader::add(std::size_t position, std::string_view type)
{
    (position == 0 ? unnumbered : numbered) = true;
    if (position == 0)
        position = found.size() + 1;
    // A text numbers all of its arguments or none.
    if (numbered == unnumbered || position > most_arguments || type.empty())
        return false;
    found.resize(std::max(found.size(), position));
    std::string_view &place = found[position - 1];
    // Two conversions may take one argument if they agree on its type.
    if (!place.empty() && place != type)
        return false;
    place = type;
    return true;
}

bool format_reader::read_star()
{
    text.remove_prefix(1);
    return add(take_position(text), "d");
}

// Takes a width or a precision: digits or an asterisk.
bool format_reader::read_width()
{
    if (text.starts_with('*'))
        return read_star();
    text.remove_prefix(std::min(text.find_first_not_of("0123456789"), text.size()));
    return true;
}

// Takes what follows a percent sign.
bool format_reader::read_conversion()
{
    if (text.starts_with('%')) {
        text.remove_prefix(1);
        return true;
    }
    const std::size_t position = take_position(text);
    text.remove_prefix(std::min(text.find_first_not_of("-+#0'I"), text.size()));
    if (!read_width())
        return false;
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        if (!read_width())
            return false;
    }
    const std::size_t length = take_length(text);
    if (text.empty())
        return false;
    const char letter = text.front();
    text.remove_prefix(1);
    return add(position, type_of(letter, length));
}

} // namespace

bool read_c_format(std::string_view text, arguments &types)
{
    types.clear();
    format_reader reader{text, types};
    for (std::size_t at = text.find('%'); at != std::string_view::npos;
         at = reader.text.find('%')) {
        reader.text.remove_prefix(at + 1);
        if (!reader.read_conversion())
            return false;
    }
    // Nobody knows the type of an argument that no conversion takes.
    return std::find(types.begin(), types.end(), "") == types.end();
}

std::optional<arguments> c_format_arguments(std::string_view text)
{
    arguments types;
    return read_c_format(text, types) ? std::optional(std::move(types)) : std::nullopt;
}

} // namespace zel::exchange
