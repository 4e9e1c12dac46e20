#include "exchange/export.h"

#include "exchange/po-remarks.h"
#include "source/entry.h"
#include "support/hash-index.h"

#include <algorithm>
#include <cstring>

namespace zel::exchange {

namespace {

bool same_name(const char *a, const char *b)
{
    return a != nullptr && b != nullptr && std::strcmp(a, b) == 0;
}

bool is_wanted(const export_request &request, const char *name)
{
    return request.languages.empty() ||
           std::find(request.languages.begin(), request.languages.end(), name) !=
               request.languages.end();
}

// Remembers which groups and items have been seen, by name.
class seen_names {
public:
    explicit seen_names(std::size_t count)
    {
        rows_.reserve(count);
        index_.reserve(count);
    }

    // Whether the item of that group is met for the first time.
    bool is_first(std::string_view group, std::string_view item)
    {
        const std::uint32_t hash = hash_of(group) * 31 + hash_of(item);
        const auto same = [&](std::uint32_t at) {
            return rows_[at].item == item && rows_[at].group == group;
        };
        if (index_.find(hash, same) != hash_index::none)
            return false;
        index_.add(hash, static_cast<std::uint32_t>(rows_.size()));
        rows_.push_back({group, item});
        return true;
    }

private:
    struct row {
        std::string_view group, item;
    };
    std::vector<row> rows_;
    hash_index index_;
};

} // namespace

void outgoing_file::flush()
{
    keep(text);
    text.clear();
}

void outgoing_file::flush_large()
{
    constexpr std::size_t large = std::size_t{64} * 1024;
    if (text.size() >= large)
        flush();
}

exporter::exporter(const export_request &request) : request_(request)
{
    for (const lang_t *lang : each<lang_t>(request.source->langs)) {
        const auto count = static_cast<std::uint32_t>(languages_.size());
        // A language that is defined twice is exported once.
        if (lang->name == nullptr || !is_wanted(request, lang->name) ||
            language_at(lang->name, count) != count)
            continue;
        names_.add(hash_of(lang->name), count);
        languages_.push_back(lang);
    }
    // Most likely a slip: nobody asks for a language in order to get nothing.
    for (const std::string &name : request.languages)
        if (language_at(name.c_str(), 0) == languages_.size())
            wrong_ = {0, "no language \"" + name + "\" is defined"};
    if (languages_.empty() && !wrong_)
        wrong_ = {0, "no language is defined"};
}

// The position of a language, or their number for one that is not exported. Entries mostly stand in
// the order of the definitions, so the guess is tried first.
std::uint32_t exporter::language_at(const char *name, std::uint32_t guess) const
{
    if (guess < languages_.size() && same_name(languages_[guess]->name, name))
        return guess;
    const std::uint32_t at = names_.find(hash_of(view_of(name)), [&](std::uint32_t i) {
        return same_name(languages_[i]->name, name);
    });
    return at == hash_index::none ? static_cast<std::uint32_t>(languages_.size()) : at;
}

void exporter::fill(outgoing_item &out, const edit_t *group, item_t *item) const
{
    out.item = item;
    out.group = view_of(group->name);
    out.name = view_of(item->name);
    out.reference.clear();
    out.default_comment.clear();
    for (outgoing_item::translation &one : out.texts) {
        one.there = false;
        one.text.clear();
        one.comment.clear();
    }
    // Of two entries in one language, the first one is the text.
    bool has_reference = false;
    std::uint32_t guess = 0;
    for (const lang_entry_t *entry : each<lang_entry_t>(item->langs)) {
        const std::uint32_t at = language_at(entry->lang, guess);
        if (at < languages_.size() && !out.texts[at].there) {
            out.texts[at].there = true;
            append_texts(out.texts[at].text, entry->texts);
        }
        guess = at + 1;
        if (!has_reference && same_name(entry->lang, source().default_lang)) {
            has_reference = true;
            append_texts(out.reference, entry->texts);
        }
    }
    // As in reference_text, the name stands for a reference that is missing.
    if (without_end(out.reference).empty())
        out.reference = out.name;
    for (const lang_entry_t *entry : each<lang_entry_t>(item->comments)) {
        const std::uint32_t at = language_at(entry->lang, 0);
        if (at < languages_.size() && out.texts[at].comment.empty())
            append_texts(out.texts[at].comment, entry->texts);
        if (out.default_comment.empty() && same_name(entry->lang, source().default_lang))
            append_texts(out.default_comment, entry->texts);
    }
}

bool exporter::is_pair(const outgoing_item &item, std::size_t language) const
{
    po_id previous;
    const outgoing_item::translation &one = item.texts[language];
    return !without_end(one.text).empty() &&
           view_of(source().default_lang) != view_of(languages_[language]->name) &&
           (!request_.fuzzy || item.item->ready != 0) &&
           (one.comment.empty() || !read_fuzzy(one.comment, previous));
}

void exporter::each_item(const std::function<void(const outgoing_item &)> &write)
{
    outgoing_item out{};
    out.texts.resize(languages_.size());
    std::size_t count = 0;
    for (const edit_t *group : each<edit_t>(request_.source->groups))
        count += g_list_length(group->items);
    seen_names groups(g_list_length(request_.source->groups));
    seen_names items(count);
    repeated_ = 0;
    for (const edit_t *group : each<edit_t>(request_.source->groups)) {
        // As everywhere, only the first group of a name is looked into, and there the first item.
        const bool first_group = groups.is_first(view_of(group->name), {});
        for (item_t *item : each<item_t>(group->items)) {
            // Asked before items are left out: an unused item, too, hides a later one of its name.
            const bool first =
                first_group && items.is_first(view_of(group->name), view_of(item->name));
            if (item->used == 0 && !request_.unused)
                continue;
            if (!first) {
                ++repeated_;
                continue;
            }
            fill(out, group, item);
            write(out);
        }
    }
}

} // namespace zel::exchange
