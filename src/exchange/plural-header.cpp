#include "exchange/plural-header.h"

#include "exchange/input.h"
#include "exchange/language-code.h"
#include "langlib/languages.h"
#include "langlib/plural-rule.h"
#include "support/cut.h"
#include "support/text.h"

#include <algorithm>

namespace zel::exchange {

namespace {

constexpr std::string_view slavic = "nplurals=3; plural=(n%10==1 && n%100!=11 ? 0 : n%10>=2 && "
                                    "n%10<=4 && (n%100<10 || n%100>=20) ? 1 : 2);";
constexpr std::string_view arabic = "nplurals=6; plural=(n==0 ? 0 : n==1 ? 1 : n==2 ? 2 : "
                                    "n%100>=3 && n%100<=10 ? 3 : n%100>=11 ? 4 : 5);";

// What catalogs have had for long, for languages that count so.
constexpr std::string_view usual_headers[] = {
    "nplurals=1; plural=0;",
    "nplurals=2; plural=(n != 1);",
    "nplurals=2; plural=(n > 1);",
    slavic,
    "nplurals=3; plural=(n==1 ? 0 : n%10>=2 && n%10<=4 && (n%100<10 || n%100>=20) ? 1 : 2);",
    "nplurals=3; plural=(n==1) ? 0 : (n>=2 && n<=4) ? 1 : 2;",
    "nplurals=3; plural=(n%10==1 && n%100!=11 ? 0 : n%10>=2 && (n%100<10 || n%100>=20) ? 1 : 2);",
    "nplurals=4; plural=(n%100==1 ? 0 : n%100==2 ? 1 : n%100==3 || n%100==4 ? 2 : 3);",
    arabic,
};

std::string_view without_blanks(std::string_view text)
{
    while (!text.empty() && is_space(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_space(text.back()))
        text.remove_suffix(1);
    return text;
}

// The value behind "NAME=", up to a semicolon; the text is taken up to there.
std::string_view take_value(std::string_view &text, std::string_view name)
{
    const std::size_t at = text.find(name);
    text.remove_prefix(at == text.npos ? text.size() : at + name.size());
    text = without_blanks(text);
    if (!text.starts_with('='))
        return {};
    text.remove_prefix(1);
    return without_blanks(cut_at(text, ';'));
}

// "n%10=2..4,9" of a rule, as C.
std::string c_of_relation(std::string_view relation)
{
    const std::size_t sign = relation.find_first_of("!=");
    const std::string number(relation.substr(0, sign));
    const bool is_not = relation.substr(sign).starts_with('!');
    std::string out;
    int parts = 0;
    for (std::string_view rest = relation.substr(sign + (is_not ? 2 : 1)); !rest.empty(); ++parts) {
        std::string_view ends = cut_at(rest, ',');
        const std::string first(ends.substr(0, ends.find('.')));
        const std::string last(ends.substr(ends.rfind('.') + 1));
        out += parts == 0 ? "" : is_not ? " && " : " || ";
        if (first == last)
            out.append(number).append(is_not ? "!=" : "==").append(first);
        else if (first == "0")
            out.append(number).append(is_not ? ">" : "<=").append(last);
        else
            out.append("(")
                .append(number)
                .append(is_not ? "<" : ">=")
                .append(first)
                .append(is_not ? " || " : " && ")
                .append(number)
                .append(is_not ? ">" : "<=")
                .append(last)
                .append(")");
    }
    return parts > 1 && !is_not ? "(" + out + ")" : out;
}

// "n%10=1&n%100!=11|n=0" of a rule, as C.
std::string c_of_condition(std::string_view condition)
{
    std::string out;
    while (!condition.empty()) {
        out += out.empty() ? "" : " || ";
        std::string all;
        for (std::string_view part = cut_at(condition, '|'); !part.empty();)
            all.append(all.empty() ? "" : " && ").append(c_of_relation(cut_at(part, '&')));
        out += all;
    }
    return out;
}

// As counts_alike, of rules and headers that are known to look at the last two digits alone of a
// number with three.
bool begin_alike(const plural_header &header, std::string_view rule)
{
    constexpr std::uint64_t repeated_from = 200; // the numbers before have all last two digits
    constexpr std::uint64_t last_repeated = 1000;
    const auto samples = plural_samples();
    return std::all_of(samples.begin(), samples.end(), [&](std::uint64_t n) {
        return (n >= repeated_from && n < last_repeated) ||
               header.form(n) == plural_form(rule, header.count, n);
    });
}

// All editions of a language's rule, as liblang finds them.
std::string_view rules_of(std::string_view language)
{
    language_tag tag;
    language_row row;
    return read_language(language, tag, row) ? row.plural : std::string_view();
}

} // namespace

std::uint32_t plural_line(std::string_view bytes)
{
    const std::size_t at = bytes.find(plural_field);
    return at == bytes.npos ? 1 : line_at(bytes, at);
}

std::array<std::uint64_t, 1013> plural_samples()
{
    constexpr std::uint64_t larger[] = {1001,    1011,    1021,    1100,    10'000,  100'000,
                                        1000000, 1000001, 1000002, 2000000, 3000000, 10'000'000};
    std::array<std::uint64_t, 1013> samples{};
    std::size_t at = 0;
    for (; at <= 1000; ++at)
        samples[at] = at;
    std::copy(std::begin(larger), std::end(larger), samples.begin() + 1001);
    return samples;
}

std::string plural_header::read(std::string_view value)
{
    count = 0;
    known.clear();
    const std::string_view number = take_value(value, "nplurals");
    std::string_view text = take_value(value, "plural");
    // Some tool writes the escape of a line end twice.
    while (text.ends_with("\\n"))
        text = without_blanks(text.substr(0, text.size() - 2));
    if (number.empty() || number == "INTEGER" || text == "EXPRESSION")
        return {};
    std::size_t forms = 0;
    for (const char digit : number.substr(0, 4))
        forms = is_digit(digit) ? forms * 10 + static_cast<std::size_t>(digit - '0') : 1000;
    if (forms == 0 || forms > most_plural_forms)
        return "nplurals is no number from 1 to 64";
    if (std::string wrong = expression.read(text); !wrong.empty())
        return wrong;
    for (const std::uint64_t n : plural_samples()) {
        const auto form = expression.form(n);
        if (!form)
            return "the expression divides by zero for " + std::to_string(n);
        if (*form >= forms)
            return "the expression gives form " + std::to_string(*form) + " for " +
                   std::to_string(n) + ", and nplurals is " + std::to_string(forms);
        if (n == known.size())
            known.push_back(static_cast<std::uint8_t>(*form));
    }
    count = forms;
    return {};
}

std::size_t plural_header::form(std::uint64_t n) const
{
    if (n < known.size())
        return known[n];
    return std::min<std::size_t>(expression.form(n).value_or(0), count - 1);
}

bool has_plural_rule(std::string_view language) { return !rules_of(language).empty(); }

std::string_view plural_rule_of(std::string_view language)
{
    std::string_view rules = rules_of(language);
    // Sources may name a language in words that the library does not know.
    if (rules.empty())
        rules = rules_of(code_of(language));
    return rules.empty() ? rule_of_two : cut_at(rules, '/');
}

bool is_rare_form(std::string_view rule, std::size_t form)
{
    for (; form > 0; --form)
        cut_at(rule, ';');
    std::string_view condition = cut_at(rule, ';');
    return cut_at(condition, ':').ends_with('~');
}

std::vector<std::uint64_t> plural_numbers(const plural_header &header)
{
    std::vector<std::uint64_t> numbers(header.count);
    for (const std::uint64_t n : plural_samples())
        if (std::uint64_t &kept = numbers[header.form(n)]; kept == 0)
            kept = n;
    return numbers;
}

bool counts_alike(const plural_header &header, std::string_view rule)
{
    const auto samples = plural_samples();
    return std::all_of(samples.begin(), samples.end(), [&](std::uint64_t n) {
        return header.form(n) == plural_form(rule, header.count, n);
    });
}

std::string header_of_rule(std::string_view rule, bool with_rare_forms)
{
    const plural_forms forms = count_plural_forms(rule);
    const std::size_t count = with_rare_forms ? forms.all : forms.everyday;
    for (const std::string_view usual : usual_headers) {
        if (usual[9] != static_cast<char>('0' + count))
            continue;
        // They are known to be good, so that only their expressions need be read.
        plural_header header;
        std::string_view text = usual;
        take_value(text, "nplurals");
        header.expression.read(take_value(text, "plural"));
        header.count = count;
        if (begin_alike(header, rule))
            return std::string(usual);
    }
    std::string expression;
    for (std::size_t form = 0; form + 1 < count;) {
        std::string_view condition = cut_at(rule, ';');
        if (!cut_at(condition, ':').ends_with('~') || with_rare_forms)
            expression += c_of_condition(condition) + " ? " + std::to_string(form++) + " : ";
    }
    return "nplurals=" + std::to_string(count) + "; plural=(" + expression +
           std::to_string(count - 1) + ");";
}

} // namespace zel::exchange
