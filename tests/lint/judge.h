#pragma once

// Sources made for a rule, and what the rules say about them in one line each.

#include <string>
#include <utility>
#include <vector>

#include "lint/lint.h"
#include "lint/rules.h"
#include "source/group.h"
#include "source/model.h"
#include "support/string-copy.h"

namespace zel_test {

// A source in UTF-8 with english, the default, and german; more languages may follow.
class made_source {
public:
    explicit made_source(const std::vector<std::string> &more = {}) : source_(lang_alloc_group())
    {
        source_->format = LANG_SOURCE_UTF8;
        add_language("english");
        add_language("german");
        for (const std::string &name : more)
            add_language(name);
    }

    lang_t *add_language(const std::string &name)
    {
        lang_t *lang = alloc_lang();
        lang->name = zel_strdup(name.c_str());
        lang->file = zel_strdup((name + ".lang").c_str());
        source_->langs = g_list_append(source_->langs, lang);
        return lang;
    }

    // A used and ready item of the group with a text per language.
    using texts = std::vector<std::pair<std::string, std::string>>;
    item_t *add(const std::string &group, const std::string &name, const texts &of)
    {
        edit_t *in = get_edit_ptr(source_->groups, group.c_str());
        if (in == nullptr) {
            in = lang_alloc_edit();
            in->name = zel_strdup(group.c_str());
            source_->groups = g_list_append(source_->groups, in);
        }
        item_t *item = alloc_item();
        item->name = zel_strdup(name.c_str());
        item->used = 1;
        item->ready = 1;
        item->source = source_.get();
        for (const auto &[language, text] : of)
            item->langs = g_list_append(item->langs, entry(language, text));
        in->items = g_list_append(in->items, item);
        return item;
    }

    static lang_entry_t *entry(const std::string &language, const std::string &text)
    {
        lang_entry_t *made = alloc_lang_entry(language.c_str());
        made->texts = g_list_append(nullptr, zel_strdup2(text.c_str()));
        return made;
    }

    LangSource *get() const { return source_.get(); }

    // "rule: language: message" of each finding; without what every small source has too much of.
    std::vector<std::string> findings(zel::lint::choice wanted = {}) const
    {
        std::vector<std::string> out;
        zel::lint::linter(source_.get(), std::move(wanted)).check([&](const auto &found) {
            out.push_back(std::string(zel::lint::rule_of(found.rule).name) + ": " +
                          (found.language == nullptr ? "" : std::string(found.language) + ": ") +
                          std::string(found.message));
        });
        return out;
    }

private:
    source_guard source_;
};

inline zel::lint::choice only(const std::string &rule)
{
    zel::lint::choice wanted;
    wanted.rules = zel::lint::rule_set().with(zel::lint::find_rule(rule)->id);
    return wanted;
}

// What a rule says about a german text and its english reference, which is the item too and may
// have a remark; empty when it says nothing.
inline std::string judge(const std::string &rule, const std::string &reference,
                         const std::string &text, const std::string &remark = "")
{
    made_source source;
    item_t *item = source.add("main", reference, {{"english", reference}, {"german", text}});
    if (!remark.empty())
        item->comments = g_list_append(nullptr, made_source::entry("english", remark));
    const auto all = source.findings(only(rule));
    std::string out;
    for (const std::string &one : all)
        out += one.substr(rule.size() + 2) + "\n";
    return out.empty() ? out : out.substr(0, out.size() - 1);
}

} // namespace zel_test
