#include "lint/carried.h"
#include "lint/item-case.h"
#include "lint/rule-list.h"
#include "source/entry.h"
#include "support/text.h"

#include <algorithm>

namespace zel::lint {

void judge_undefined(const item_case &at)
{
    std::size_t guess = 0;
    for (const lang_entry_t *entry : each<lang_entry_t>(at.item->langs)) {
        const std::size_t found = at.languages.find(entry->lang, guess);
        guess = found + 1;
        if (found == at.languages.size())
            at.found.say(rule_id::undefined, entry->lang, entry,
                         "the language has no definition, so its text is never used");
    }
}

void judge_missing(const item_case &at)
{
    for (std::size_t i = 0; i < at.slots.size(); ++i)
        if (at.slots[i].entry == nullptr)
            at.found.say(rule_id::missing, at.languages[i].name, at.item, "there is no text");
}

void judge_empty(const item_case &at)
{
    const bool nothing_to_say = at.reference.is_blank();
    for (std::size_t i = 0; i < at.slots.size() && !nothing_to_say; ++i)
        if (at.slots[i].entry != nullptr && at.slots[i].own.is_blank())
            at.found.say(rule_id::empty, at.languages[i].name, at.slots[i].entry,
                         "the text is empty");
}

// What the program shows itself would lose its end with the first text, in whatever language.
void judge_item_end(const item_case &at)
{
    const std::string_view name = name_of(at.item->name);
    if (at.item->used != 0 && !name.empty() && is_space(name.back()) &&
        !std::all_of(name.begin(), name.end(), is_space))
        at.found.say(rule_id::item_end, nullptr, at.item,
                     "white space at the end of the item, which no text keeps: take it out of the "
                     "item and print it beside the text");
}

void judge_unused(const item_case &at)
{
    if (at.item->used == 0)
        at.found.say(rule_id::unused, nullptr, at.item, "the application does not ask for it");
}

void judge_not_ready(const item_case &at)
{
    if (at.item->used != 0 && at.item->ready == 0)
        at.found.say(rule_id::not_ready, nullptr, at.item, "not marked ready");
}

void judge_stale(const item_case &at)
{
    if (at.item->ready != 0)
        return;
    std::string buffer;
    for (const lang_entry_t *comment : each<lang_entry_t>(at.item->comments)) {
        const std::size_t i = at.languages.find(comment->lang, 0);
        if (i == at.languages.size() || at.slots[i].entry == nullptr)
            continue;
        const std::string_view from =
            find_carried(look_at_text(comment->texts, buffer), at.slots[i].own.bytes);
        if (!from.empty())
            at.found.say(rule_id::stale, at.languages[i].name, at.slots[i].entry,
                         std::string("carried from ").append(from) +
                             ", and nobody has looked at it since");
    }
}

} // namespace zel::lint
