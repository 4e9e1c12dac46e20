#include "lint/plural.h"

#include "langlib/languages.h"
#include "langlib/plural-rule.h"
#include "lint/conversions.h"
#include "lint/item-case.h"
#include "lint/rule-list.h"

#include <algorithm>
#include <string>

namespace zel::lint {

namespace {

bool stands_alone(std::string_view text, std::size_t sign)
{
    return sign > 0 && sign + 1 < text.size() && !is_blank(text[sign - 1]) &&
           !is_blank(text[sign + 1]);
}

bool takes_a_number(const percents &form)
{
    return std::any_of(form.arguments.begin(), form.arguments.end(), [](const taken &one) {
        return one.kind == argument::whole || one.kind == argument::whole_unsigned;
    });
}

// "2 plural forms (one, other)"
std::string described_forms(std::string_view rule, const plural_forms &needed)
{
    std::string out = std::to_string(needed.all);
    if (needed.everyday != needed.all)
        out = std::to_string(needed.everyday) + " or " + out;
    out += needed.all == 1 ? " plural form (" : " plural forms (";
    for (std::size_t i = 0; i < needed.all; ++i)
        out.append(i == 0 ? "" : ", ").append(plural_form_name(rule, i));
    return out + ")";
}

} // namespace

std::string_view plural_rule_of(const lang_t &language)
{
    language_tag tag;
    language_row row;
    std::string_view file = name_of(language.file);
    file.remove_prefix(file.rfind('/') + 1);
    if (!read_language(name_of(language.name), tag, row))
        read_language(file.substr(0, file.rfind(".lang")), tag, row);
    return row.plural;
}

bool has_plural_forms(std::string_view text)
{
    std::size_t sign = text.find(plural_sign);
    if (sign == text.npos)
        return false;
    for (; sign != text.npos; sign = text.find(plural_sign, sign + 1))
        if (!stands_alone(text, sign))
            return false;
    const percents last = read_percents(text.substr(text.rfind(plural_sign) + 1));
    if (!last.is_format() || !takes_a_number(last))
        return false;
    const std::vector<std::string_view> forms = read_forms(text);
    return std::all_of(forms.begin(), forms.end(), [&](std::string_view one) {
        const percents form = read_percents(one);
        return form.arguments.empty() || form.arguments == last.arguments;
    });
}

void note_forms(text &of, bool is_plural)
{
    if (is_plural || (of.has(has_percent) && has_plural_forms(of.bytes)))
        of.holds |= has_forms;
}

bool is_of_one_number(std::string_view rule, std::size_t count, std::size_t form)
{
    constexpr std::uint64_t enough = 200; // every rule has come round twice by then
    constexpr std::uint64_t million = 1000000;
    int numbers = plural_form(rule, count, million) == form ? 1 : 0;
    for (std::uint64_t n = 0; n <= enough && numbers < 2; ++n)
        numbers += plural_form(rule, count, n) == form ? 1 : 0;
    return numbers == 1;
}

std::vector<std::string_view> read_forms(std::string_view text)
{
    std::vector<std::string_view> forms;
    for (;;) {
        const std::size_t sign = text.find(plural_sign);
        forms.push_back(text.substr(0, sign));
        if (sign == text.npos)
            return forms;
        text.remove_prefix(sign + 1);
    }
}

void judge_plural(const item_case &at)
{
    if (!at.reference.has(has_forms))
        return;
    for (std::size_t i = 0; i < at.slots.size(); ++i) {
        const slot &one = at.slots[i];
        if (one.entry == nullptr || one.own.is_blank())
            continue;
        const std::string_view rule = at.languages[i].plural_rule;
        const plural_forms needed = count_plural_forms(rule);
        const std::size_t count = count_text_forms(one.own.bytes);
        if (needed.all != 0 && count != needed.all && count != needed.everyday)
            at.found.say(rule_id::plural, at.languages[i].name, one.entry,
                         "the language has " + described_forms(rule, needed) + ", the text has " +
                             std::to_string(count));
    }
}

} // namespace zel::lint
