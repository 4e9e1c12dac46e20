#include "lint/conversions.h"
#include "lint/name-set.h"
#include "lint/plural.h"
#include "lint/rule-list.h"

#include <algorithm>

namespace zel::lint {

namespace {

// What the application hands over: the conversions of the reference, or, when that has none, those
// that the item's description names.
percents expected_by(const text_case &at)
{
    percents reference = read_percents(at.reference.bytes);
    if (reference.conversions.empty())
        return described(at.item == nullptr ? nullptr : at.item->description);
    return reference;
}

// The first name that the others lack; empty when there is none.
std::string_view first_other(const std::vector<std::string_view> &names,
                             const std::vector<std::string_view> &others)
{
    const name_set known(others);
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](std::string_view name) { return !known.has(name); });
    return found == names.end() ? std::string_view() : *found;
}

// The words of a text that have no percent sign beside them.
name_set plain_words(std::string_view text)
{
    std::vector<std::string_view> out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        while (at < text.size() && is_word_byte(text[at]))
            ++at;
        if (at == start)
            ++at;
        else if ((start == 0 || text[start - 1] != '%') && (at == text.size() || text[at] != '%'))
            out.push_back(text.substr(start, at - start));
    }
    return name_set(std::move(out));
}

// A name that stands in the text without its signs, too, is a word that is explained, as in
// "/REGEXP/ copies up to it, %REGEXP% skips to it".
void drop_words(percents &found, std::string_view text)
{
    if (found.symbols.empty())
        return;
    const name_set words = plain_words(text);
    std::erase_if(found.symbols, [&](std::string_view name) { return words.has(name); });
}

// "%d hour" of a pair of items for one and for more: languages that write the number out need no
// conversion for it. What the others take must stay in its place, so it is the last one.
bool is_written_out(const percents &own, const percents &expected, std::string_view reference)
{
    if (expected.arguments.empty() || expected.arguments.back().kind != argument::whole ||
        own.arguments.size() + 1 != expected.arguments.size() || own.mixed || own.writes ||
        own.stray ||
        !std::equal(own.arguments.begin(), own.arguments.end(), expected.arguments.begin()))
        return false;
    const std::string_view last = expected.conversions.back();
    const std::size_t found = reference.rfind(last) + last.size();
    std::size_t start = found;
    while (start < reference.size() && reference[start] == ' ')
        ++start;
    std::size_t end = start;
    while (end < reference.size() && is_ascii_letter(reference[end]))
        ++end;
    constexpr std::size_t shortest = 3; // of a word for things
    return start > found && end - start >= shortest && reference[end - 1] != 's';
}

// The gravest fault is told, and only that: the others often follow from it.
bool judge_conversions(const percents &own, const percents &expected, std::string &message)
{
    if (own.writes) {
        message = "the text has \"%n\", with which printf overwrites memory";
    } else if (own.mixed) {
        message = "some conversions have a position and some have none: " + shown(own);
    } else if (own.arguments != expected.arguments) {
        message = "the item asks for " + shown(expected) + ", the text for " + shown(own);
    } else if (reads_more(own, expected)) {
        message = "the item reads a part of a string, " + shown(expected) +
                  ", the text more of it, " + shown(own);
    } else if (own.stray) {
        message = "a percent sign begins no conversion; write \"%%\" for the sign itself";
    }
    return !message.empty();
}

// Whether a form takes all arguments but a whole number, or none, and printf finds nothing wrong.
bool lacks_its_number(const percents &form, const percents &expected)
{
    if (form.stray || form.writes || form.mixed)
        return false;
    if (form.arguments.empty())
        return true;
    return !expected.arguments.empty() && expected.arguments.back().kind == argument::whole &&
           form.arguments.size() + 1 == expected.arguments.size() &&
           std::equal(form.arguments.begin(), form.arguments.end(), expected.arguments.begin());
}

// Each form of a text with plural forms has the conversions of one of the reference's: "one note"
// may stand beside "%d notes". A form for one number may write that out.
bool judge_forms(const text_case &at, std::string &message)
{
    std::vector<percents> reference;
    for (const std::string_view one : read_forms(at.reference.bytes))
        reference.push_back(read_percents(one));
    // The last form has every argument.
    const percents &last = reference.back();
    if (!last.is_format())
        return false;
    const std::vector<std::string_view> forms = read_forms(at.own.bytes);
    for (std::size_t i = 0; i < forms.size(); ++i) {
        const percents form = read_percents(forms[i], &last);
        const bool is_known =
            std::any_of(reference.begin(), reference.end(), [&](const percents &one) {
                std::string ignored;
                return one.arguments != last.arguments && !judge_conversions(form, one, ignored);
            });
        if (is_known ||
            (lacks_its_number(form, last) && is_of_one_number(at.plural_rule, forms.size(), i)))
            continue;
        if (judge_conversions(form, last, message))
            return true;
    }
    return false;
}

} // namespace

bool judge_format(const text_case &at, std::string &message)
{
    if (at.own.is_blank() || (!at.own.has(has_percent) && !at.reference.has(has_percent)))
        return false;
    if (at.reference.has(has_forms))
        return judge_forms(at, message);
    const percents expected = expected_by(at);
    // "100 % sure" is no format: nobody gives such a text to printf.
    if (!expected.is_format())
        return false;
    const percents own = read_percents(at.own.bytes, &expected);
    return !is_written_out(own, expected, at.reference.bytes) &&
           judge_conversions(own, expected, message);
}

bool judge_symbol(const text_case &at, std::string &message)
{
    if (!may_have_symbol(at.own.bytes) && !may_have_symbol(at.reference.bytes))
        return false;
    if (at.own.is_blank() || at.reference.is_blank())
        return false;
    percents expected = read_percents(at.reference.bytes);
    percents own = read_percents(at.own.bytes, &expected);
    drop_words(own, at.own.bytes);
    drop_words(expected, at.reference.bytes);
    const std::string_view added = first_other(own.symbols, expected.symbols);
    const std::string_view gone = first_other(expected.symbols, own.symbols);
    // A symbol that the application does not set is shown with its signs, so it is told first.
    if (!added.empty())
        message.append("the item has no symbol \"%").append(added).append("%\"");
    else if (!gone.empty())
        message.append("the symbol \"%").append(gone).append("%\" of the item is missing");
    return !message.empty();
}

} // namespace zel::lint
