#include "langlib/plural-rule.h"

#include "support/cut.h"

#include <algorithm>

namespace zel {

namespace {

std::uint64_t take_number(std::string_view &rest)
{
    std::uint64_t number = 0;
    for (; !rest.empty() && rest[0] >= '0' && rest[0] <= '9'; rest.remove_prefix(1))
        number = number * 10 + static_cast<std::uint64_t>(rest[0] - '0');
    return number;
}

// Whether the number is one of the list, as in "2..4,9".
bool is_among(std::string_view numbers, std::uint64_t n)
{
    while (!numbers.empty()) {
        std::string_view ends = cut_at(numbers, ',');
        const std::uint64_t first = take_number(ends);
        // Two dots, or nothing, stand behind the first number.
        ends.remove_prefix(std::min<std::size_t>(ends.size(), 2));
        const std::uint64_t last = ends.empty() ? first : take_number(ends);
        if (first <= n && n <= last)
            return true;
    }
    return false;
}

// Whether the relation, such as "n%10!=2..4,9", holds for the number.
bool relation_holds(std::string_view relation, std::uint64_t n)
{
    // Passes over the letter n, which is all that a relation may begin with.
    relation.remove_prefix(std::min<std::size_t>(relation.size(), 1));
    if (relation.starts_with('%')) {
        relation.remove_prefix(1);
        const std::uint64_t divisor = take_number(relation);
        n = divisor == 0 ? n : n % divisor;
    }
    const bool negated = relation.starts_with('!');
    relation.remove_prefix(std::min<std::size_t>(relation.size(), negated ? 2 : 1));
    return is_among(relation, n) != negated;
}

// Whether the condition, such as "n%10=1&n%100!=11|n=0", holds. "&" is and, "|" is or, and "&"
// binds closer. An empty one holds.
bool condition_holds(std::string_view condition, std::uint64_t n)
{
    bool holds = condition.empty();
    while (!holds && !condition.empty()) {
        std::string_view all = cut_at(condition, '|');
        holds = true;
        while (holds && !all.empty())
            holds = relation_holds(cut_at(all, '&'), n);
    }
    return holds;
}

// Most texts and rules are short, so that looking for the next sign is quicker than at each byte.
std::size_t count_signs(std::string_view text, char sign)
{
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(sign, at)) != text.npos; ++at)
        ++count;
    return count;
}

constexpr char rare_sign = '~';

struct form {
    std::string_view name;
    std::string_view condition;
    bool is_rare; // begins at a million
};

form take_form(std::string_view &rule)
{
    form taken{{}, cut_at(rule, ';'), false};
    taken.name = cut_at(taken.condition, ':');
    taken.is_rare = taken.name.ends_with(rare_sign);
    taken.name.remove_suffix(taken.is_rare ? 1 : 0);
    return taken;
}

plural_forms count_forms(std::string_view edition)
{
    if (edition.empty())
        return {};
    const std::size_t all = 1 + count_signs(edition, ';');
    return {all, all - count_signs(edition, rare_sign)};
}

constexpr char edition_sign = '/';

struct edition {
    std::string_view rule;
    plural_forms forms;
};

// Returns the first edition that has so many forms; one without a rule when there is none.
edition edition_with(std::string_view rule, std::size_t count)
{
    while (!rule.empty()) {
        const std::string_view first = cut_at(rule, edition_sign);
        const plural_forms forms = count_forms(first);
        if (count == forms.all || count == forms.everyday)
            return {first, forms};
    }
    return {};
}

} // namespace

plural_forms count_plural_forms(std::string_view rule)
{
    return count_forms(cut_at(rule, edition_sign));
}

bool has_edition_with(std::string_view rule, std::size_t count)
{
    return !edition_with(rule, count).rule.empty();
}

std::string_view plural_form_name(std::string_view rule, std::size_t form)
{
    for (rule = cut_at(rule, edition_sign); form > 0 && !rule.empty(); --form)
        take_form(rule);
    return rule.empty() ? rule : take_form(rule).name;
}

std::size_t plural_form(std::string_view rule, std::size_t count, std::uint64_t number)
{
    edition used = edition_with(rule, count);
    // Where no edition has two forms, they are those of English: one and all others.
    if (used.rule.empty() && count == 2)
        used = {rule_of_two, {2, 2}};
    if (used.rule.empty())
        return count == 0 ? 0 : count - 1;
    std::size_t position = 0;
    while (!used.rule.empty()) {
        const form one = take_form(used.rule);
        // A text without the rare forms gives their numbers to a later one.
        if (one.is_rare && count != used.forms.all)
            continue;
        if (condition_holds(one.condition, number))
            break;
        ++position;
    }
    // A number that meets no condition takes the last form.
    return std::min(position, count - 1);
}

std::size_t count_text_forms(std::string_view text) { return 1 + count_signs(text, plural_sign); }

std::string_view text_form(std::string_view text, std::size_t form)
{
    for (std::size_t sign; form > 0 && (sign = text.find(plural_sign)) != text.npos; --form)
        text.remove_prefix(sign + 1);
    return text.substr(0, text.find(plural_sign));
}

} // namespace zel
