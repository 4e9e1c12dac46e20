#include "lint/mnemonics.h"
#include "exchange/key.h"
#include "kit/support/languages.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "lint/free-key.h"
#include "lint/item-case.h"
#include "source/entry.h"
#include "support/text.h"

#include <algorithm>
#include <cstdio>
#include <unordered_map>
#include <utility>

namespace zel::kit {

namespace {

struct key_count {
    std::size_t changed = 0;
    std::size_t without = 0; // no letter was free
};

// Gives keys to the texts of a source, group by group.
class key_giver {
public:
    explicit key_giver(LangSource *source) : source_(source) {}

    void give(const edit_t *group, const std::vector<std::string> &languages)
    {
        std::unordered_map<std::string, item_texts> texts = texts_of(group);
        const bool is_window = lint::may_be_window(source_, group);
        for (const std::string &language : languages)
            give(group, texts[in_small(language)], lint::group_keys(is_window));
    }
    const key_count &count() const { return count_; }

private:
    using item_texts = std::vector<std::pair<item_t *, lang_entry_t *>>;

    static std::string in_small(std::string_view name)
    {
        std::string out(name);
        std::transform(out.begin(), out.end(), out.begin(), lower);
        return out;
    }

    // The first text of each item in use, by the language in small letters: one walk for all of
    // the languages.
    static std::unordered_map<std::string, item_texts> texts_of(const edit_t *group)
    {
        std::unordered_map<std::string, item_texts> out;
        for (item_t *item : each<item_t>(group->items)) {
            if (item->used == 0)
                continue;
            for (lang_entry_t *entry : each<lang_entry_t>(item->langs))
                if (item_texts &all = out[in_small(or_empty(entry->lang))];
                    all.empty() || all.back().first != item)
                    all.emplace_back(item, entry);
        }
        return out;
    }

    void give(const edit_t *group, const item_texts &texts, lint::group_keys keys)
    {
        // What is there keeps its key: the letters are given when all of those are known.
        item_texts wanting;
        for (const auto &[item, entry] : texts) {
            const std::string text = text_of(entry);
            const std::string reference = reference_text(*source_, item);
            if (keys.wants_key(text, reference))
                wanting.emplace_back(item, entry);
            else
                keys.take(text, reference);
        }
        for (const auto &[item, entry] : wanting)
            give(group, item, entry, keys);
    }

    void give(const edit_t *group, item_t *item, lang_entry_t *entry, lint::group_keys &keys)
    {
        const std::string text = text_of(entry);
        const std::string reference = reference_text(*source_, item);
        const std::string made = keys.with_key(text, reference);
        std::string line = or_empty(entry->lang) + std::string(": ");
        exchange::append_key(line, or_empty(group->name), or_empty(item->name));
        line += ": ";
        if (made.empty()) {
            ++count_.without;
            std::fflush(stdout); // in its place, also where both go to one
            std::fprintf(stderr, "%sno letter is free for %s\n", line.c_str(), shown(text).c_str());
            return;
        }
        std::printf("%s%s -> %s\n", line.c_str(), shown(text).c_str(), shown(made).c_str());
        keys.take(made, reference);
        set_text(entry, made);
        item->changed = 1;
        item->ready = 0;
        ++count_.changed;
    }

    LangSource *source_;
    key_count count_;
};

// The names that are given, else all languages but the reference. False after a line for one that
// is not there.
bool choose_languages(const word &self, const LangSource *source,
                      const std::vector<std::string> &given, std::vector<std::string> &out)
{
    for (const std::string &name : given)
        if (find_definition(source, name.c_str()) == nullptr) {
            wrong_use(self, "the source defines no language \"" + name + "\"");
            return false;
        }
    out = given;
    if (given.empty())
        for (const lang_t *lang : each<lang_t>(source->langs))
            if (lang->name != nullptr && !lint::same_language(lang->name, source->default_lang))
                out.emplace_back(lang->name);
    return true;
}

// The group of that name, else all.
std::vector<const edit_t *> choose_groups(const LangSource *source, const std::string *name)
{
    std::vector<const edit_t *> out;
    for (const edit_t *group : each<edit_t>(source->groups))
        if (name == nullptr || or_empty(group->name) == *name)
            out.push_back(group);
    return out;
}

} // namespace

int run_mnemonics(const word &self, int argc, char **argv)
{
    std::vector<std::string> given;
    bool dry_run = false;
    const parsed line =
        parse(self, argc, argv,
              {{.name = "language",
                .argument = "NAME",
                .help = "only this language; may be given again",
                .list = &given},
               {.name = "dry-run", .help = "only say what would be changed", .on = &dry_run}},
              1, 2);
    if (line.ends)
        return line.status;
    source_file file = read_whole(line.files.front());
    if (!file)
        return status_fault;
    std::vector<std::string> languages;
    const std::string *name = line.files.size() > 1 ? &line.files[1] : nullptr;
    const std::vector<const edit_t *> groups = choose_groups(file.source.get(), name);
    if (name != nullptr && groups.empty())
        return wrong_use(self, "the source has no group \"" + *name + "\"");
    if (!choose_languages(self, file.source.get(), given, languages))
        return status_fault;
    key_giver giver(file.source.get());
    // A source of many texts without a key has no menus, and its underscores belong to names.
    if (lint::may_use_mnemonics(file.source.get()))
        for (const edit_t *group : groups)
            giver.give(group, languages);
    // A source that has not changed is not written: no backup, no new time.
    const bool written = giver.count().changed == 0 || write({line.files.front(), dry_run}, file);
    keep_to_the_end(std::move(file.source));
    return !written ? status_fault : giver.count().without != 0 ? status_found : status_fine;
}

} // namespace zel::kit
