#include "kit/support/text-judge.h"

#include "lint/rules.h"
#include "source/entry.h"

#include <cstring>
#include <utility>

namespace zel::kit {

namespace {

lint::choice rules_that_must_pass()
{
    lint::choice wanted;
    wanted.rules = lint::rule_set()
                       .with(lint::rule_id::format)
                       .with(lint::rule_id::symbol)
                       .with(lint::rule_id::markup)
                       .with(lint::rule_id::plural);
    return wanted;
}

} // namespace

text_judge::text_judge(const LangSource *source) : linter_(source, rules_that_must_pass()) {}

std::string text_judge::fault_of(const edit_t *group, item_t *item, const char *language,
                                 std::string_view text)
{
    // The first text of a language is the one that counts, and only items in use are judged.
    lang_entry_t *entry = alloc_lang_entry(language);
    set_text(entry, text);
    item->langs = g_list_prepend(item->langs, entry);
    const std::uint32_t used = std::exchange(item->used, 1U);
    std::string fault;
    linter_.check_item(group, item, [&](const lint::finding &one) {
        if (fault.empty() && one.language != nullptr && std::strcmp(one.language, language) == 0)
            fault = std::string(one.message) + " [" + lint::rule_of(one.rule).name + "]";
    });
    item->used = used;
    GList *first = item->langs;
    item->langs = g_list_remove_link(first, first);
    free_lang_entry_list(first);
    return fault;
}

} // namespace zel::kit
