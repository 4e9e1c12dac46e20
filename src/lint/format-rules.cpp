#include "langlib/plural-rule.h"
#include "lint/conversions.h"
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

bool has_name(const std::vector<std::string_view> &names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool judge_conversions(const percents &own, const percents &expected, std::string &message)
{
    if (own.writes) {
        message = "the text has \"%n\", with which printf overwrites memory";
    } else if (own.mixed) {
        message = "some conversions have a position and some have none: " + shown(own);
    } else if (own.arguments != expected.arguments) {
        message = "the item asks for " + shown(expected) + ", the text for " + shown(own);
    } else if (own.stray) {
        message = "a percent sign begins no conversion; write \"%%\" for the sign itself";
    }
    return !message.empty();
}

// Each form of a text with plural forms has the conversions of one of the reference's: "one note"
// may stand beside "%d notes".
bool judge_forms(const text_case &at, std::string &message)
{
    const std::string_view own = at.own.bytes;
    const std::string_view reference = at.reference.bytes;
    const percents last = read_percents(text_form(reference, count_text_forms(reference) - 1));
    bool may_have_none = false;
    for (std::size_t i = count_text_forms(reference); i-- > 0;)
        may_have_none = may_have_none || read_percents(text_form(reference, i)).arguments.empty();
    for (std::size_t i = 0; i < count_text_forms(own); ++i) {
        const percents form = read_percents(text_form(own, i), &last);
        if (may_have_none && form.arguments.empty() && !form.stray && !form.writes)
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
    if (has_plural_forms(at.reference.bytes))
        return judge_forms(at, message);
    const percents expected = expected_by(at);
    if (!expected.is_format())
        return false;
    return judge_conversions(read_percents(at.own.bytes, &expected), expected, message);
}

bool judge_symbol(const text_case &at, std::string &message)
{
    if (!at.own.has(has_percent) && !at.reference.has(has_percent))
        return false;
    if (at.own.is_blank() || at.reference.is_blank())
        return false;
    const percents expected = read_percents(at.reference.bytes);
    const percents own = read_percents(at.own.bytes, &expected);
    for (const std::string_view name : own.symbols)
        if (!has_name(expected.symbols, name)) {
            message.append("the item has no symbol \"%").append(name).append("%\"");
            return true;
        }
    for (const std::string_view name : expected.symbols)
        if (!has_name(own.symbols, name)) {
            message.append("the symbol \"%").append(name).append("%\" of the item is missing");
            return true;
        }
    return false;
}

} // namespace zel::lint
