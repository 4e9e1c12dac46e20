#include "kit/support/news.h"

#include "kit/support/predecessors.h"
#include "lint/counts.h"
#include "merge/fields.h"
#include "source/entry.h"

#include <algorithm>
#include <unordered_map>

namespace zel::kit {

namespace {

std::string key_of(const edit_t *group, const item_t *item)
{
    return std::string(or_empty(group->name)) + '\0' + or_empty(item->name);
}

// The items in use, in their order and by their keys.
struct used_items {
    std::vector<grouped_item> all;
    std::unordered_map<std::string, grouped_item> by_key;

    explicit used_items(const LangSource *source)
    {
        for (const edit_t *group : each<edit_t>(source->groups))
            for (item_t *item : each<item_t>(group->items))
                if (item->used != 0 &&
                    by_key.try_emplace(key_of(group, item), grouped_item{group, item}).second)
                    all.push_back({group, item});
    }
};

class finder {
public:
    finder(const LangSource *before, const LangSource *after,
           const std::vector<std::string> &languages)
        : before_(before), after_(after)
    {
        for (const lang_t *one : each<lang_t>(after->langs))
            if (is_wanted(one, languages))
                out_.languages.push_back({one->name});
    }

    news find()
    {
        const used_items old(before_);
        const used_items now(after_);
        std::vector<grouped_item> gone;
        for (const grouped_item &one : old.all)
            if (!now.by_key.contains(key_of(one.group, one.item)))
                gone.push_back(one);
        std::vector<grouped_item> added;
        for (const grouped_item &one : now.all) {
            const auto was = old.by_key.find(key_of(one.group, one.item));
            if (was == old.by_key.end())
                added.push_back(one);
            else
                look_at_change(one, was->second);
        }
        split_added(added, gone);
        return std::move(out_);
    }

private:
    bool is_wanted(const lang_t *one, const std::vector<std::string> &languages) const
    {
        if (one->name == nullptr)
            return false;
        if (languages.empty())
            return view_of(one->name) != view_of(after_->default_lang);
        return std::find(languages.begin(), languages.end(), one->name) != languages.end();
    }

    std::string text_in(const LangSource *source, const item_t *item) const
    {
        return std::string(without_end(reference_text(*source, item)));
    }

    void look_at_change(const grouped_item &now, const grouped_item &was)
    {
        const std::string before = text_in(before_, was.item);
        const std::string text = text_in(after_, now.item);
        if (before != text)
            add_changed(now, was, before, text);
    }

    void add_changed(const grouped_item &now, const grouped_item &was, const std::string &before,
                     const std::string &text)
    {
        news_item one{now.group, now.item, was.group, was.item, before, text, {}, {}};
        look_at_languages(one);
        out_.changed.push_back(std::move(one));
    }

    // An item that resembles one that is gone is that one, changed.
    void split_added(const std::vector<grouped_item> &added, const std::vector<grouped_item> &gone)
    {
        constexpr unsigned at_least = 60;
        std::unordered_map<const item_t *, grouped_item> was;
        std::unordered_map<const item_t *, grouped_item> left;
        for (const grouped_item &one : gone)
            left.emplace(one.item, one);
        for (const succession &one : find_predecessors(added, gone, at_least))
            if (one.candidates.size() == 1)
                if (const auto node = left.extract(one.candidates.front().item); !node.empty())
                    was.emplace(one.item, node.mapped());
        for (const grouped_item &one : added)
            if (const auto found = was.find(one.item); found != was.end())
                add_changed(one, found->second, text_in(before_, found->second.item),
                            text_in(after_, one.item));
            else
                add_new(one);
        for (const grouped_item &one : gone)
            if (left.contains(one.item))
                out_.gone.push_back({one.group,
                                     one.item,
                                     nullptr,
                                     nullptr,
                                     {},
                                     text_in(before_, one.item),
                                     {},
                                     {}});
    }

    void add_new(const grouped_item &now)
    {
        news_item one{now.group, now.item, nullptr, nullptr, {}, text_in(after_, now.item), {}, {}};
        look_at_languages(one);
        out_.added.push_back(std::move(one));
    }

    void look_at_languages(news_item &one)
    {
        const std::size_t words = lint::measure(one.text).words;
        out_.words += words;
        std::unordered_map<std::string_view, const lang_entry_t *> own;
        for (const lang_entry_t *entry : each<lang_entry_t>(one.item->langs))
            own.try_emplace(view_of(entry->lang), entry);
        for (language_news &language : out_.languages) {
            const auto found = own.find(language.name);
            const lang_entry_t *entry = found == own.end() ? nullptr : found->second;
            const bool is_missing = without_end(text_of(entry)).empty();
            if (!is_missing && !is_as_before(one, entry))
                continue;
            ++(is_missing ? language.missing : language.as_before);
            (is_missing ? one.missing : one.as_before).push_back(language.name);
            language.words += words;
        }
    }

    // Where the item is ready somebody has looked at it.
    static bool is_as_before(const news_item &one, const lang_entry_t *entry)
    {
        if (entry == nullptr || one.was == nullptr || one.item->ready != 0)
            return false;
        const lang_entry_t *old = find_entry(one.was->langs, entry->lang);
        return old != nullptr && same_written_text(old->texts, entry->texts);
    }

    const LangSource *before_;
    const LangSource *after_;
    news out_;
};

} // namespace

news find_news(const LangSource *before, const LangSource *after,
               const std::vector<std::string> &languages)
{
    return finder(before, after, languages).find();
}

} // namespace zel::kit
