#include "kit/support/text-judge.h"

#include "lint/rules.h"
#include "source/entry.h"

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

// A list of both, without those that are null.
GList *text_judge::list_of(pair &nodes, void *first, void *second)
{
    nodes = {};
    std::size_t count = 0;
    for (void *data : {first, second})
        if (data != nullptr)
            nodes[count++].data = data;
    if (count == nodes.size()) {
        nodes[0].next = &nodes[1];
        nodes[1].prev = &nodes[0];
    }
    return count == 0 ? nullptr : nodes.data();
}

text_judge::text_judge(const LangSource *source, const entry_index &texts,
                       const entry_index &remarks, const char *language)
    : texts_(texts), remarks_(remarks), language_(language), two_(*source)
{
    const auto definition = [&](std::string_view name) -> void * {
        for (lang_t *lang : each<lang_t>(source->langs))
            if (view_of(lang->name) == name)
                return lang;
        return nullptr;
    };
    two_.langs = list_of(languages_, definition(view_of(source->default_lang)),
                         definition(view_of(language)));
    two_.groups = nullptr;
    linter_.emplace(&two_, rules_that_must_pass());
}

std::string text_judge::fault_of(const edit_t *group, const item_t *item, const std::string &text)
{
    const char *reference = two_.default_lang;
    GList whole{const_cast<char *>(text.c_str()), nullptr, nullptr};
    lang_entry_t entry{const_cast<char *>(language_), &whole};
    pair texts;
    pair remarks;
    item_t judged = *item;
    judged.used = 1; // only items in use are judged
    judged.langs = list_of(texts, texts_.find(item, reference), &entry);
    judged.comments =
        list_of(remarks, remarks_.find(item, reference), remarks_.find(item, language_));
    std::string fault;
    linter_->check_item(group, &judged, [&](const lint::finding &one) {
        if (fault.empty() && view_of(one.language) == language_)
            fault = std::string(one.message) + " [" + lint::rule_of(one.rule).name + "]";
    });
    return fault;
}

} // namespace zel::kit
