#include "lint/conversions.h"

#include "langlib/lang.h"
#include "lex/min_lex.h"
#include "lint/name-set.h"
#include "lint/text.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace zel::lint {

namespace {

constexpr std::size_t longest_name = 33;    // of a symbol, as the library reads it
constexpr std::size_t most_arguments = 256; // more are a slip, not a position

// letter, what it takes
struct letter_row {
    char letter;
    argument kind;
};
constexpr letter_row letters[] = {
    {'d', argument::whole},          {'i', argument::whole},
    {'o', argument::whole_unsigned}, {'u', argument::whole_unsigned},
    {'x', argument::whole_unsigned}, {'X', argument::whole_unsigned},
    {'e', argument::real},           {'E', argument::real},
    {'f', argument::real},           {'F', argument::real},
    {'g', argument::real},           {'G', argument::real},
    {'a', argument::real},           {'A', argument::real},
    {'c', argument::character},      {'s', argument::string},
    {'p', argument::pointer},        {'n', argument::written},
    {'m', argument::none},           {'C', argument::character},
    {'S', argument::string},
};

// longest first
struct width_row {
    std::string_view word;
    width size;
};
constexpr width_row widths[] = {
    {"hh", width::hh}, {"h", width::h}, {"ll", width::ll}, {"l", width::l},  {"j", width::j},
    {"z", width::z},   {"t", width::t}, {"L", width::L},   {"q", width::ll},
};

// Walks over one conversion.
struct cursor {
    std::string_view text;
    std::size_t at;

    char look() const { return at < text.size() ? text[at] : '\0'; }
    bool take(char c)
    {
        const bool there = look() == c && at < text.size();
        at += there ? 1 : 0;
        return there;
    }
    std::optional<std::size_t> number()
    {
        const std::size_t start = at;
        std::size_t value = 0;
        for (; is_ascii_digit(look()); ++at)
            value = std::min<std::size_t>(value * 10 + static_cast<std::size_t>(look() - '0'),
                                          most_arguments + 1);
        return at == start ? std::nullopt : std::optional(value);
    }
    // NUMBER "$"
    std::size_t position()
    {
        const std::size_t start = at;
        const auto value = number();
        if (value && *value >= 1 && *value <= most_arguments && take('$'))
            return *value;
        at = start;
        return 0;
    }
};

struct conversion {
    std::size_t length;
    taken takes;
    std::size_t position; // 0 without one
    bool spaced;          // with the blank flag
    std::size_t stars;    // arguments for width and precision,
    std::size_t star_positions[2];
    int reach; // see percents
};

bool take_star(cursor &c, conversion &found)
{
    if (!c.take('*'))
        return false;
    found.star_positions[found.stars++] = c.position();
    return true;
}

width take_width(cursor &c)
{
    for (const width_row &row : widths)
        if (c.text.substr(c.at).starts_with(row.word)) {
            c.at += row.word.size();
            return row.size;
        }
    return width::plain;
}

// "%" [POSITION "$"] FLAG... [WIDTH] ["." [PRECISION]] [LENGTH] LETTER
std::optional<conversion> read_conversion(std::string_view text)
{
    cursor c{text, 1};
    conversion found{};
    found.position = c.position();
    for (; std::strchr("-+ #0'I", c.look()) != nullptr && c.look() != '\0'; ++c.at)
        found.spaced = found.spaced || c.look() == ' ';
    if (!take_star(c, found))
        c.number();
    found.reach = percents::to_the_end;
    if (c.take('.'))
        found.reach =
            take_star(c, found) ? percents::by_argument : static_cast<int>(c.number().value_or(0));
    width size = take_width(c);
    const char letter = c.look();
    const auto *row = std::find_if(std::begin(letters), std::end(letters),
                                   [=](const letter_row &one) { return one.letter == letter; });
    if (row == std::end(letters) || c.at == text.size())
        return std::nullopt;
    if (letter == 'C' || letter == 'S')
        size = width::l;
    if (row->kind == argument::real && size == width::l)
        size = width::plain; // "%lf" is "%f"
    found.takes = {row->kind, size};
    found.length = c.at + 1;
    return found;
}

// The name of "%NAME%" at the start of the text, empty when there is none.
std::string_view read_name(std::string_view text)
{
    std::size_t end = 1;
    while (end < text.size() && end <= longest_name && is_word_byte(text[end]))
        ++end;
    return end > 1 && end < text.size() && text[end] == '%' ? text.substr(1, end - 1)
                                                            : std::string_view();
}

bool is_capital(std::string_view name)
{
    return std::any_of(name.begin(), name.end(), [](char c) { return c >= 'A' && c <= 'Z'; }) &&
           std::none_of(name.begin(), name.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

// Whether what could be a symbol is one and not "%dx%d" or "%ld%%": names that begin like no
// conversion are, and those in capitals; others when nothing like a conversion follows.
bool is_symbol(std::string_view text, std::string_view name, const name_set &known)
{
    if (known.has(name))
        return true;
    if (name.size() == 1)
        return false; // "%b%e" is a date
    const auto begun = read_conversion(text);
    if (!begun)
        return true;
    if (begun->length == name.size() + 1)
        return false; // all of it is one
    if (is_capital(name))
        return true;
    const std::string_view closing = text.substr(name.size() + 1);
    const auto next = read_conversion(closing);
    return name.size() > 2 && !closing.starts_with("%%") && (!next || next->spaced);
}

// The arguments so far.
struct argument_count {
    std::size_t next = 0; // of the next conversion without a position
    bool placed = false;  // there was one with a position
};

void take_argument(percents &found, std::size_t position, taken takes, argument_count &count,
                   int reach = percents::to_the_end)
{
    found.mixed = found.mixed || (position == 0 ? count.placed : count.next != 0);
    count.placed = count.placed || position != 0;
    const std::size_t at = position == 0 ? count.next++ : position - 1;
    if (at >= most_arguments)
        return;
    if (found.arguments.size() <= at) {
        // Most texts that have one have few.
        constexpr std::size_t few = 4;
        found.arguments.reserve(few);
        found.reaches.reserve(few);
        found.arguments.resize(at + 1);
        found.reaches.resize(at + 1);
    }
    // An argument may be used twice: what reads most of it counts.
    const bool is_again = found.arguments[at].kind == takes.kind;
    const bool is_less = is_again && (found.reaches[at] == percents::to_the_end ||
                                      (reach >= 0 && reach < found.reaches[at]));
    found.arguments[at] = takes;
    if (!is_less)
        found.reaches[at] = reach;
}

void add_conversion(percents &found, std::string_view written, const conversion &read,
                    argument_count &count)
{
    for (std::size_t i = 0; i < read.stars; ++i)
        take_argument(found, read.star_positions[i], {argument::whole, width::plain}, count);
    if (read.takes.kind != argument::none)
        take_argument(found, read.position, read.takes, count, read.reach);
    found.writes = found.writes || read.takes.kind == argument::written;
    found.spaced = read.spaced && (found.spaced || found.conversions.empty());
    found.conversions.push_back(written);
}

// Whether the tilde begins what percent signs begin elsewhere, as in "~A is unbound~%".
bool is_lisp(std::string_view text)
{
    for (std::size_t at = text.find('~'); at < text.size(); at = text.find('~', at + 1)) {
        const char c = at + 1 < text.size() ? text[at + 1] : ' ';
        const bool ends = at + 2 >= text.size() || !is_word_byte(text[at + 2]);
        if (std::string_view("&:@~[{(").find(c) != std::string_view::npos ||
            (ends && std::string_view("aAsSdD").find(c) != std::string_view::npos))
            return true;
    }
    return false;
}

} // namespace

bool may_have_symbol(std::string_view text)
{
    for (std::size_t at = text.find('%'); at < text.size(); at = text.find('%', at + 1))
        if (!read_name(text.substr(at)).empty())
            return true;
    return false;
}

percents read_percents(std::string_view text, const percents *known)
{
    percents found;
    argument_count count;
    std::optional<bool> lisp; // asked once, and mostly never
    const name_set symbols(known == nullptr ? std::vector<std::string_view>() : known->symbols);
    for (std::size_t at = text.find('%'); at < text.size(); at = text.find('%', at)) {
        const std::string_view rest = text.substr(at);
        if (at > 0 && text[at - 1] == '~') {
            lisp = lisp ? lisp : is_lisp(text);
            if (*lisp || rest.size() == 1) {
                ++at; // a line end
                continue;
            }
        }
        if (rest.starts_with("%%")) {
            at += 2;
            continue;
        }
        const std::string_view name = read_name(rest);
        if (!name.empty() && is_symbol(rest, name, symbols)) {
            found.symbols.push_back(name);
            at += name.size() + 2;
            continue;
        }
        const auto read = read_conversion(rest);
        if (read)
            add_conversion(found, rest.substr(0, read->length), *read, count);
        found.stray = found.stray || !read;
        at += read ? read->length : 1;
    }
    return found;
}

percents described(const char *description)
{
    percents found;
    if (description == nullptr || std::strstr(description, "formater") == nullptr)
        return found;
    const min_lex_msg_guard elements(min_lex_split_msg(nullptr, description, ';', '='));
    const char *value = nullptr;
    min_lex_split_msg_get_str(elements.get(), "formater", &value, nullptr);
    // The two that the library knows, by their first two characters.
    for (std::string_view left = value == nullptr ? "" : value; !left.empty();) {
        const std::size_t comma = std::min(left.find(','), left.size());
        const std::string_view one = left.substr(0, comma);
        if (one.starts_with("%d") || one.starts_with("%s")) {
            found.conversions.push_back(one[1] == 'd' ? "%d" : "%s");
            found.arguments.push_back({one[1] == 'd' ? argument::whole : argument::string, {}});
        }
        left.remove_prefix(std::min(comma + 1, left.size()));
    }
    return found;
}

bool reads_more(const percents &own, const percents &expected)
{
    for (std::size_t i = 0; i < std::min(own.reaches.size(), expected.reaches.size()); ++i) {
        const int reads = own.reaches[i];
        const int may = expected.reaches[i];
        if (expected.arguments[i].kind == argument::string && may != percents::to_the_end &&
            reads != may && (may < 0 || reads < 0 || reads > may))
            return true;
    }
    return false;
}

std::string shown(const percents &found)
{
    std::string out;
    for (const std::string_view one : found.conversions)
        out.append(out.empty() ? "" : " ").append(one);
    return out.empty() ? "nothing" : '"' + out + '"';
}

} // namespace zel::lint
