#include "exchange/plural-text.h"

#include "exchange/c-format.h"
#include "langlib/plural-rule.h"
#include "support/text.h"

#include <algorithm>
#include <vector>

namespace zel::exchange {

namespace {

bool signs_stand_alone(std::string_view text)
{
    for (std::size_t at = text.find(plural_sign); at != text.npos;
         at = text.find(plural_sign, at + 1))
        if (at == 0 || at + 1 == text.size() || is_space(text[at - 1]) || is_space(text[at + 1]) ||
            text[at + 1] == plural_sign)
            return false;
    return true;
}

// The places that a text has for what is put in: "%n", "%Ln", "%1", "%L1", "{0}", "{count}", in
// alphabetical order.
std::vector<std::string_view> slots_of(std::string_view text)
{
    std::vector<std::string_view> slots;
    for (std::size_t at = text.find_first_of("%{"); at != text.npos;
         at = text.find_first_of("%{", at + 1)) {
        std::size_t end = at + 1;
        if (text[at] == '{') {
            end = std::min(text.find_first_of("{} \n", end), text.size());
            if (end > at + 1 && end < text.size() && text[end] == '}')
                slots.push_back(text.substr(at, end + 1 - at));
            continue;
        }
        end += end < text.size() && text[end] == 'L' ? 1 : 0;
        if (end < text.size() && text[end] == 'n')
            slots.push_back(text.substr(at, end + 1 - at));
        else if (const std::size_t digits = text.find_first_not_of("0123456789", end);
                 digits != end && end < text.size() &&
                 text.substr(digits == text.npos ? text.size() : digits, 1) != "$")
            slots.push_back(text.substr(at, std::min(digits, text.size()) - at));
    }
    std::sort(slots.begin(), slots.end());
    return slots;
}

bool holds_number(const std::vector<std::string_view> &types)
{
    return std::any_of(types.begin(), types.end(), [](std::string_view type) {
        return type.ends_with('d') || type.ends_with('u');
    });
}

} // namespace

bool is_plural_text(std::string_view text)
{
    if (text.find(plural_sign) == text.npos || !signs_stand_alone(text))
        return false;
    const std::size_t count = count_text_forms(text);
    const std::string_view last = text_form(text, count - 1);
    const auto types = c_format_arguments(last);
    const std::vector<std::string_view> slots = slots_of(last);
    const bool is_format = types && holds_number(*types);
    if (!is_format && slots.empty())
        return false;
    for (std::size_t form = 0; form + 1 < count; ++form) {
        const std::string_view one = text_form(text, form);
        const auto own = c_format_arguments(one);
        const std::vector<std::string_view> own_slots = slots_of(one);
        if (is_format ? !own || (!own->empty() && *own != *types)
                      : !own_slots.empty() && own_slots != slots)
            return false;
    }
    return true;
}

} // namespace zel::exchange
