#include "lint/limit.h"

#include "lint/item-case.h"
#include "lint/mnemonics.h"
#include "lint/plural.h"
#include "lint/rule-list.h"
#include "source/entry.h"

#include <algorithm>
#include <string>

namespace zel::lint {

namespace {

std::size_t length_of_form(std::string_view form, const text_width &ruler)
{
    const mnemonics marks = read_mnemonics(form);
    const bool is_marked = marks.count == 1 && marks.sure == 1;
    if (!ruler)
        return count_chars(form) - (is_marked ? 1U : 0U);
    std::string shown(form);
    if (is_marked)
        shown.erase(marks.at, 1);
    return ruler(shown);
}

length_limit limit_in(const item_t *item, const char *language)
{
    for (const lang_entry_t *comment : each<lang_entry_t>(item->comments))
        if (same_language(comment->lang, language))
            if (const length_limit found = read_limit(comment); found.most != 0)
                return found;
    return {};
}

} // namespace

length_limit limit_of(const LangSource &source, const item_t *item, const char *language)
{
    if (item->comments == nullptr)
        return {};
    const length_limit own = limit_in(item, language);
    return own.most != 0 ? own : limit_in(item, source.default_lang);
}

std::size_t shown_length(std::string_view text, const text_width &ruler)
{
    text = without_end(text);
    if (!has_plural_forms(text))
        return length_of_form(text, ruler);
    std::size_t longest = 0;
    for (const std::string_view form : read_forms(text))
        longest = std::max(longest, length_of_form(form, ruler));
    return longest;
}

void judge_max(const item_case &at)
{
    bool has_limit = false;
    for (const lang_entry_t *comment : each<lang_entry_t>(at.item->comments)) {
        const length_limit limit = read_limit(comment);
        has_limit = has_limit || limit.most != 0;
        if (limit.is_wrong)
            at.found.say(rule_id::max, comment->lang, comment,
                         "behind \"lint: max\" stands no number of characters, 20, or of pixels, "
                         "120px");
    }
    for (std::size_t i = 0; has_limit && i < at.slots.size(); ++i) {
        const length_limit limit = limit_of(*at.source, at.item, at.languages[i].name);
        if (limit.most == 0 || at.slots[i].entry == nullptr)
            continue;
        if (limit.in_pixels && !at.ruler) {
            at.found.leave_unmeasured(at.languages[i].name);
            continue;
        }
        const std::size_t length =
            shown_length(at.slots[i].own.bytes, limit.in_pixels ? at.ruler : nullptr);
        if (length > limit.most)
            at.found.say(rule_id::max, at.languages[i].name, at.slots[i].entry,
                         std::to_string(length) + (limit.in_pixels ? " pixels" : " characters") +
                             ", the comment allows " + std::to_string(limit.most));
    }
}

} // namespace zel::lint
