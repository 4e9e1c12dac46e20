#include "assist/plural-line.h"

#include "assist/pieces.h"
#include "langlib/plural-rule.h"

#include <algorithm>

namespace zel::assist {

namespace {

// Rules repeat themselves after a hundred; what begins at a million is looked for there.
constexpr std::uint64_t looked_at = 200;
constexpr std::uint64_t million = 1'000'000;
constexpr std::size_t most_samples = 3;

std::string_view rule_or_two(std::string_view rule) { return rule.empty() ? rule_of_two : rule; }

// The numbers of each of so many forms, in order.
std::vector<std::vector<std::uint64_t>> numbers_of_forms(std::string_view rule, std::size_t count)
{
    std::vector<std::vector<std::uint64_t>> out(count);
    for (std::uint64_t number = 0; number < looked_at; ++number)
        out[plural_form(rule, count, number)].push_back(number);
    std::vector<std::uint64_t> &rare = out[plural_form(rule, count, million)];
    if (rare.empty())
        rare.push_back(million);
    return out;
}

// "1, 21, 31", "2-4, 22" or "0, 5-20": as much as three numbers take, a range being two of them. A
// range that goes on beyond what was looked at is not known to its end: "2, 3, 4".
std::string shown_numbers(const std::vector<std::uint64_t> &numbers)
{
    std::string out;
    std::size_t room = most_samples;
    for (std::size_t i = 0; i < numbers.size() && room > 0;) {
        std::size_t end = i + 1;
        while (end < numbers.size() && numbers[end] == numbers[end - 1] + 1)
            ++end;
        const bool as_range = end - i > 2 && room > 1 && numbers[end - 1] + 1 < looked_at;
        out += (out.empty() ? "" : ", ") + std::to_string(numbers[i]);
        if (as_range)
            out += "-" + std::to_string(numbers[end - 1]);
        room -= as_range ? 2 : 1;
        // A short run, or an endless one, goes on with its next number.
        i = as_range || (end - i > 2 && numbers[end - 1] + 1 < looked_at) ? end : i + 1;
    }
    return out;
}

} // namespace

std::vector<number_form> number_forms(std::string_view rule, std::string_view text)
{
    rule = rule_or_two(rule);
    const std::size_t needed = count_plural_forms(rule).everyday;
    const std::size_t there = text.empty() ? 0 : count_text_forms(text);
    const bool is_whole = has_edition_with(rule, there);
    const std::vector<std::vector<std::uint64_t>> numbers =
        numbers_of_forms(rule, is_whole ? there : needed);
    std::vector<number_form> out(std::max(numbers.size(), there));
    for (std::size_t i = 0; i < out.size(); ++i) {
        out[i].is_missing =
            i >= there || text_form(text, i).find_first_not_of(" \t\n") == std::string_view::npos;
        if (i >= numbers.size())
            continue;
        out[i].numbers = shown_numbers(numbers[i]);
        out[i].samples.assign(numbers[i].begin(),
                              numbers[i].begin() + static_cast<std::ptrdiff_t>(
                                                       std::min(most_samples, numbers[i].size())));
    }
    return out;
}

std::string with_number(std::string_view form, std::uint64_t number)
{
    std::string out(form);
    for (const piece &one : pieces_of(form)) {
        const char last = form[one.at + one.length - 1];
        if (form[one.at] == '%' && (last == 'd' || last == 'i' || last == 'u'))
            return out.replace(one.at, one.length, std::to_string(number));
    }
    return out;
}

std::string needed_forms(std::string_view rule, std::string_view other, std::string_view other_rule)
{
    rule = rule_or_two(rule);
    const std::size_t count = count_plural_forms(rule).everyday;
    const std::size_t other_count = count_text_forms(other);
    const std::vector<std::vector<std::uint64_t>> forms = numbers_of_forms(rule, count);
    std::string out;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t first = forms[i].empty() ? 0 : forms[i].front();
        out += i == 0 ? "" : "|";
        out += text_form(other, plural_form(rule_or_two(other_rule), other_count, first));
    }
    return out;
}

} // namespace zel::assist
