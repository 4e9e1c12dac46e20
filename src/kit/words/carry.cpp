#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/predecessors.h"
#include "kit/support/remark.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "lint/carried.h"
#include "lint/lint.h"
#include "source/entry.h"

#include <cstdio>
#include <set>
#include <unordered_map>
#include <vector>

namespace zel::kit {

namespace {

std::string shown_old(const predecessor &one)
{
    return shown_key(one.group, one.item) + " (" + std::to_string(one.likeness) +
           (one.by_place ? " %, same neighbours)" : " %)");
}

// The entries of a list by language, for adding to it.
class entries_by_language {
public:
    explicit entries_by_language(GList *&list) : tail_(list)
    {
        for (lang_entry_t *entry : each<lang_entry_t>(list))
            known_.try_emplace(or_empty(entry->lang), entry);
    }
    lang_entry_t *find(std::string_view language) const
    {
        const auto found = known_.find(std::string(language));
        return found == known_.end() ? nullptr : found->second;
    }
    lang_entry_t *get(const char *language)
    {
        if (lang_entry_t *found = find(or_empty(language)))
            return found;
        lang_entry_t *added = alloc_lang_entry(language);
        tail_.append(added);
        return known_[or_empty(language)] = added;
    }

private:
    list_tail tail_;
    std::unordered_map<std::string, lang_entry_t *> known_;
};

// Gives an item what its predecessor has.
class carrier {
public:
    carrier(const LangSource *source, item_t *to, const item_t *from, bool is_looked_at)
        : to_(to), from_(from), is_looked_at_(is_looked_at),
          reference_(view_of(source->default_lang)), texts_(to->langs), comments_(to->comments)
    {
    }

    // Returns the languages.
    std::vector<const char *> carry()
    {
        for (const lang_entry_t *comment : each<lang_entry_t>(from_->comments))
            copy_comment(comment);
        for (const lang_entry_t *entry : each<lang_entry_t>(from_->langs))
            copy_text(entry);
        to_->changed = 1;
        to_->ready = is_looked_at_ ? from_->ready : 0;
        return languages_;
    }

private:
    void copy_comment(const lang_entry_t *comment)
    {
        const std::string text = lint::without_carried(text_of(comment));
        if (!without_end(text).empty())
            add_remark(comments_.get(comment->lang), text);
    }

    void copy_text(const lang_entry_t *entry)
    {
        const std::string text = text_of(entry);
        if (without_end(text).empty() ||
            (view_of(entry->lang) == reference_ && !wants_reference(text)))
            return;
        set_text(texts_.get(entry->lang), text);
        if (!is_looked_at_)
            add_remark(comments_.get(entry->lang),
                       lint::carried_mark(shown(view_of(from_->name)), text));
        languages_.push_back(or_empty(entry->lang));
    }

    // In the default language a text that is the name says nothing: the new item has its own. Where
    // names are keys, what people read is copied.
    bool wants_reference(const std::string &text) const
    {
        const std::string own = text_of(texts_.find(reference_));
        const std::string_view name = view_of(to_->name);
        return text != view_of(from_->name) && (without_end(own).empty() || own == name);
    }

    item_t *to_;
    const item_t *from_;
    bool is_looked_at_;
    std::string_view reference_;
    entries_by_language texts_;
    entries_by_language comments_;
    std::vector<const char *> languages_;
};

// Takes out marks of earlier runs that mean nothing any more. Returns how many comments had some.
std::size_t drop_old_marks(item_t *item)
{
    std::size_t dropped = 0;
    for (GList *node = item->comments; node != nullptr;) {
        auto *comment = static_cast<lang_entry_t *>(node->data);
        GList *here = node;
        node = node->next;
        const std::string text = text_of(comment);
        const std::string rest = lint::without_carried(text);
        if (rest == text ||
            (item->ready == 0 &&
             !lint::find_carried(text, text_of(find_entry(item->langs, comment->lang))).empty()))
            continue;
        ++dropped;
        set_text(comment, without_end(rest));
        if (comment->texts != nullptr)
            continue;
        item->comments = g_list_remove_link(item->comments, here);
        free_lang_entry_list(here);
    }
    return dropped;
}

std::size_t drop_old_marks(const LangSource *source)
{
    std::size_t dropped = 0;
    for (const edit_t *group : each<edit_t>(source->groups))
        for (item_t *item : each<item_t>(group->items))
            dropped += drop_old_marks(item);
    return dropped;
}

struct carry_options {
    unsigned at_least = 60;
    bool keep_trivial = false;
    bool dry_run = false;
};

struct carry_count {
    std::size_t carried = 0;
    std::size_t undecided = 0;
};

// The languages with commas, and of which the text's conversions do not fit the item it has come
// to.
std::string shown_languages(lint::linter &by, const succession &to,
                            const std::vector<const char *> &languages)
{
    std::set<std::string_view> unfit;
    by.check_item(to.group, to.item,
                  [&](const lint::finding &one) { unfit.insert(view_of(one.language)); });
    std::string out;
    for (const char *language : languages) {
        (out += out.empty() ? "" : ", ") += language;
        out += unfit.contains(language) ? " (its conversions do not fit)" : "";
    }
    return out;
}

carry_count carry_all(const LangSource *source, const carry_options &options)
{
    carry_count count;
    lint::choice wanted;
    wanted.rules = lint::rule_set().with(lint::rule_id::format);
    lint::linter formats(source, wanted);
    for (const succession &one : find_predecessors(source, options.at_least)) {
        const std::string key = shown_key(one.group, one.item);
        const predecessor &best = one.candidates.front();
        if (one.candidates.size() > 1) {
            std::string line = key + ": not carried, two are as likely: " + shown_old(best);
            line += ", " + shown_old(one.candidates[1]) + "\n";
            std::fputs(line.c_str(), stderr);
            ++count.undecided;
            continue;
        }
        const bool keeps = options.keep_trivial && best.nearly && best.item->ready != 0;
        const std::vector<const char *> languages =
            carrier(source, one.item, best.item, keeps).carry();
        std::printf("%s <- %s: %s\n", key.c_str(), shown_old(best).c_str(),
                    shown_languages(formats, one, languages).c_str());
        ++count.carried;
    }
    return count;
}

int carry_in(const std::string &path, const carry_options &options)
{
    source_file file = read_whole(path);
    if (!file)
        return status_fault;
    const std::size_t dropped = drop_old_marks(file.source.get());
    const carry_count count = carry_all(file.source.get(), options);
    if (dropped != 0)
        std::fprintf(stderr, "%s: took out %s, whose texts somebody has looked at\n", path.c_str(),
                     counted(dropped, "old mark").c_str());
    // A source that has not changed is not written: no backup, no new time.
    const bool written =
        (count.carried == 0 && dropped == 0) || write({path, options.dry_run}, file);
    keep_to_the_end(std::move(file.source));
    return !written ? status_fault : count.undecided != 0 ? status_found : status_fine;
}

} // namespace

int run_carry(const word &self, int argc, char **argv)
{
    carry_options options;
    std::string at_least = "60";
    const parsed line = parse(
        self, argc, argv,
        {{.name = "at-least",
          .argument = "PERCENT",
          .help = "how like the old text must be, 1 to 100 (60)",
          .text = &at_least},
         {.name = "keep-trivial",
          .help = "keep the ready mark where only case, blanks, the sign at the end or a "
                  "mnemonic differ",
          .on = &options.keep_trivial},
         {.name = "dry-run", .help = "only say what would be carried", .on = &options.dry_run}},
        1, 1);
    if (line.ends)
        return line.status;
    if (!take_percent(self, "at-least", at_least, options.at_least))
        return status_fault;
    return carry_in(line.files.front(), options);
}

} // namespace zel::kit
