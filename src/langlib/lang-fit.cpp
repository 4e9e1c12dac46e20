// Formats that fit an item's, and nothing else.

#include "langlib/lang-fit.h"

#include "langlib/lang-locale.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>

namespace {

constexpr std::size_t most_arguments = 32;
constexpr std::size_t most_digits = 3; // of a width or a precision
constexpr std::uint16_t to_the_end = UINT16_MAX;

// Kinds of arguments; what has the same kind and length is passed the same way and means the same.
enum kind : unsigned char { none, whole, natural, real, character, string, pointer };

enum length : unsigned char { plain, hh, h, l, ll, j, z, t, big_l };
constexpr unsigned bit(length one) { return 1U << one; }
constexpr unsigned whole_lengths =
    bit(plain) | bit(hh) | bit(h) | bit(l) | bit(ll) | bit(j) | bit(z) | bit(t);

// Letters, allowed flags, allowed lengths, kind, whether a precision is.
struct conversion {
    const char *letters;
    const char *flags;
    unsigned lengths;
    kind argument;
    bool precision;
};
constexpr conversion conversions[] = {
    {"di", "-+ 0'", whole_lengths, whole, true},
    {"u", "-0'", whole_lengths, natural, true},
    {"oxX", "-#0", whole_lengths, natural, true},
    {"fFgG", "-+ #0'", bit(plain) | bit(l) | bit(big_l), real, true},
    {"eEaA", "-+ #0", bit(plain) | bit(l) | bit(big_l), real, true},
    {"c", "-", bit(plain) | bit(l), character, false},
    {"s", "-", bit(plain) | bit(l), string, true},
    {"p", "-", bit(plain), pointer, false},
};

// For each character the row of its conversion, counted from 1; 0 for none.
constexpr std::array<unsigned char, 128> rows = [] {
    std::array<unsigned char, 128> by_letter{};
    for (std::size_t i = 0; i < std::size(conversions); ++i)
        for (const char *letter = conversions[i].letters; *letter != '\0'; ++letter)
            by_letter[static_cast<unsigned char>(*letter)] = static_cast<unsigned char>(i + 1);
    return by_letter;
}();

struct argument {
    kind type = none;
    length size = plain;
    std::uint16_t reach = 0; // of a string: how much of it is read, to its end without a precision

    bool same_type(const argument &other) const { return type == other.type && size == other.size; }
    // Reads no more than the other one.
    bool fits(const argument &other) const { return same_type(other) && reach <= other.reach; }
};

// What a format asks for.
struct arguments {
    std::array<argument, most_arguments> all;
    std::size_t count = 0; // behind the last one that is used
    std::size_t next = 0;  // of a conversion without a position
    bool positions = false;

    // False when the argument is used as two kinds, or there are too many.
    bool use(std::size_t position, argument one)
    {
        if (position >= most_arguments ||
            (all[position].type != none && !all[position].same_type(one)))
            return false;
        one.reach = std::max(one.reach, all[position].reach);
        all[position] = one;
        count = std::max(count, position + 1);
        return true;
    }

    bool without_gaps() const
    {
        // printf cannot step over an argument whose type it does not know.
        return std::none_of(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count),
                            [](const argument &one) { return one.type == none; });
    }
};

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Reads at most three digits; false with more.
bool read_digits(const char *&at, std::size_t &number)
{
    const char *first = at;
    for (number = 0; is_digit(*at); ++at)
        if (static_cast<std::size_t>(at - first) < most_digits)
            number = number * 10 + static_cast<std::size_t>(*at - '0');
    return static_cast<std::size_t>(at - first) <= most_digits;
}

length read_length(const char *&at)
{
    constexpr struct {
        char letter;
        length once;
        length twice;
    } letters[] = {{'h', h, hh}, {'l', l, ll}, {'j', j, j},
                   {'z', z, z},  {'t', t, t},  {'L', big_l, big_l}};
    for (const auto &one : letters)
        if (*at == one.letter) {
            ++at;
            if (one.once == one.twice || *at != one.letter)
                return one.once;
            ++at;
            return one.twice;
        }
    return plain;
}

// Reads "2$": sets the position, counted from 0, and moves behind it; false when there is none.
bool read_position(const char *&at, std::size_t &position)
{
    const char *end = at;
    std::size_t number = 0;
    if (*at == '0' || !read_digits(end, number) || end == at || *end != '$')
        return false;
    at = end + 1;
    position = number - 1;
    return true;
}

// Reads one conversion, behind its "%", and moves behind it.
bool read_conversion(const char *&at, arguments &asked)
{
    std::size_t position = 0;
    const bool placed = read_position(at, position);
    // A format either numbers all of its arguments or none.
    if ((asked.count > 0 && placed != asked.positions))
        return false;
    asked.positions = placed;
    if (!placed)
        position = asked.next++;
    const char *flags = at;
    at += std::strspn(at, "-+ #0'");
    const auto flag_count = static_cast<std::size_t>(at - flags);
    // A "*" is refused below: it would take an argument of its own.
    std::size_t digits = 0;
    if (!read_digits(at, digits))
        return false;
    const bool precision = *at == '.';
    if (precision && !read_digits(++at, digits))
        return false;
    const length size = read_length(at);
    const auto letter = static_cast<unsigned char>(*at);
    if (letter >= rows.size() || rows[letter] == 0)
        return false;
    const conversion &row = conversions[rows[letter] - 1];
    if ((row.lengths & bit(size)) == 0 || (precision && !row.precision) ||
        (flag_count > 0 && std::strspn(flags, row.flags) < flag_count))
        return false;
    ++at;
    // "%lf" means the same as "%f".
    const length passed = row.argument == real && size == l ? plain : size;
    const auto read = precision ? static_cast<std::uint16_t>(digits) : to_the_end;
    return asked.use(position,
                     {row.argument, passed, row.argument == string ? read : std::uint16_t{0}});
}

// Behind the format stands a byte that ends every conversion.
bool read_format(std::string_view format, arguments &asked)
{
    const char *at = format.data();
    const char *end = at + format.size();
    const auto next = [&] { return std::memchr(at, '%', static_cast<std::size_t>(end - at)); };
    while ((at = static_cast<const char *>(next())) != nullptr) {
        ++at;
        if (*at == '%')
            ++at;
        else if (!read_conversion(at, asked))
            return false;
    }
    return asked.without_gaps();
}

} // namespace

bool zel::format_fits(std::string_view text, std::string_view item)
{
    arguments wanted;
    arguments asked;
    return read_format(item, wanted) && read_format(text, asked) && wanted.count == asked.count &&
           std::equal(asked.all.begin(),
                      asked.all.begin() + static_cast<std::ptrdiff_t>(asked.count),
                      wanted.all.begin(), std::mem_fn(&argument::fits));
}

const char *lang_format_or(const char *text, const char *item)
{
    if (item == nullptr)
        return "";
    if (text == nullptr || text == item)
        return item;
    return zel::format_fits(text, item) ? text : item;
}