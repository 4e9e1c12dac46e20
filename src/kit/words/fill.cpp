#include "exchange/import.h"
#include "kit/support/donor.h"
#include "kit/support/entry-index.h"
#include "kit/support/glossary-file.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/remark.h"
#include "kit/support/sources.h"
#include "kit/support/text-command.h"
#include "kit/support/text-judge.h"
#include "kit/words/word-list.h"
#include "lint/carried.h"
#include "lint/text.h"
#include "source/entry.h"
#include "source/misc.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

namespace zel::kit {

namespace {

struct fill_count {
    std::size_t by_key = 0;
    std::size_t by_reference = 0;
    std::size_t by_likeness = 0;
    std::size_t by_command = 0;
    std::size_t still_missing = 0;

    std::size_t filled() const { return by_key + by_reference + by_likeness + by_command; }
};

struct fill_options {
    std::vector<std::string> from;
    std::string language;
    std::string output;
    unsigned at_least = 0; // percent; 0: nothing that is only like a text
    std::string command;
    bool dry_run = false;
};

// Makes the text the item's, which nobody has looked at.
void put_text_in(entry_index &entries, item_t *item, const char *language, std::string_view text)
{
    // An empty entry is filled: a second one in its language would never be read.
    lang_entry_t *entry = entries.find(item, language);
    set_text(entry == nullptr ? entries.append(item, language) : entry, text);
    item->changed = 1;
    item->ready = 0;
}

// Whether a language lacks a text. In the default language an empty one is deliberate: it keeps the
// item out.
bool is_missing(lang_entry_t *entry, bool is_default)
{
    return entry == nullptr || (!is_default && misc_search_empty_in_lang_entry(entry) != 0);
}

// Fills one language of the source.
class language_filler {
public:
    language_filler(LangSource *source, entry_index &entries, entry_index &remarks,
                    const char *language, std::deque<donor> &donors, unsigned at_least)
        : source_(source), entries_(entries), remarks_(remarks), language_(language),
          donors_(donors), at_least_(at_least), judge_(source, entries, remarks, language),
          is_default_(view_of(source->default_lang) == language)
    {
        for (donor &one : donors_)
            one.choose(language);
    }

    // Adds the texts that are still missing, but not those of the default language: they are what
    // others are made from.
    fill_count fill(std::vector<wanted_text> &missing)
    {
        for (const edit_t *group : each<edit_t>(source_->groups))
            for (item_t *item : each<item_t>(group->items))
                if (is_missing(entries_.find(item, language_), is_default_) &&
                    !fill_item(group, item)) {
                    ++count_.still_missing;
                    if (!is_default_)
                        missing.push_back({group, item, language_});
                }
        return count_;
    }

private:
    bool fill_item(const edit_t *group, item_t *item)
    {
        const std::string_view by_key = first([&](const donor &one) {
            return one.by_key(view_of(group->name), view_of(item->name));
        });
        if (!by_key.empty())
            return put(item, by_key, count_.by_key);
        // The default language's text is the reference itself.
        if (is_default_)
            return false;
        const std::string reference = reference_text(*source_, item);
        const std::string_view by_reference =
            first([&](const donor &one) { return one.by_reference(reference); });
        return by_reference.empty() ? at_least_ != 0 && fill_alike(group, item, reference)
                                    : put(item, by_reference, count_.by_reference);
    }

    // Takes the text whose reference is most like the item's, unless it would break something.
    bool fill_alike(const edit_t *group, item_t *item, const std::string &reference)
    {
        const compared_text wanted(reference);
        donor::near_text best;
        for (donor &one : donors_)
            if (const donor::near_text found =
                    one.by_likeness(wanted, std::max(at_least_, best.likeness + 1));
                found.likeness > best.likeness)
                best = found;
        if (best.likeness == 0 || !judge_.fault_of(group, item, std::string(best.text)).empty())
            return false;
        std::printf("%s %s <- %s (%u %%)\n", shown_key(group, item).c_str(), language_,
                    shown(best.reference).c_str(), best.likeness);
        add_remark(remarks_, item, language_, lint::carried_mark(shown(best.reference), best.text));
        return put(item, best.text, count_.by_likeness);
    }

    template <class Ask>
    std::string_view first(Ask ask) const
    {
        for (const donor &one : donors_)
            if (const std::string_view text = ask(one); !text.empty())
                return text;
        return {};
    }

    bool put(item_t *item, std::string_view text, std::size_t &count)
    {
        put_text_in(entries_, item, language_, text);
        ++count;
        return true;
    }

    LangSource *source_;
    entry_index &entries_;
    entry_index &remarks_;
    const char *language_;
    std::deque<donor> &donors_;
    unsigned at_least_;
    text_judge judge_;
    bool is_default_;
    fill_count count_;
};

// A source on its way to fewer gaps.
class source_filler {
public:
    // The list of terms may be null.
    source_filler(LangSource *source, const fill_options &how, const lint::glossary *terms)
        : source_(source), how_(how), terms_(terms), entries_(source),
          remarks_(source, &item_t::comments)
    {
    }

    // Fills all languages and prints how much of each. False, after a line on standard error, when
    // the command could not tell.
    bool fill(std::deque<donor> &donors)
    {
        std::vector<wanted_text> missing;
        for (const lang_t *lang : each<lang_t>(source_->langs))
            if (lang->name != nullptr)
                counts_.emplace_back(lang->name, language_filler(source_, entries_, remarks_,
                                                                 lang->name, donors, how_.at_least)
                                                     .fill(missing));
        if (!how_.command.empty() && !ask(missing))
            return false;
        for (const auto &[language, count] : counts_)
            print(language, count);
        return true;
    }

    std::size_t filled() const { return filled_; }

private:
    bool ask(const std::vector<wanted_text> &missing)
    {
        const auto texts = ask_command(how_.command, source_, entries_, terms_, missing);
        if (!texts)
            return false;
        std::optional<text_judge> judge;
        std::size_t language = 0;
        for (std::size_t at = 0; at < missing.size(); ++at) {
            // The languages follow each other in the order of the counts.
            while (counts_[language].first != missing[at].language)
                ++language;
            if (!judge || judge->language() != missing[at].language)
                judge.emplace(source_, entries_, remarks_, missing[at].language);
            take(missing[at], (*texts)[at], *judge, counts_[language].second);
        }
        return true;
    }

    void take(const wanted_text &wanted, const std::string &text, text_judge &judge,
              fill_count &count)
    {
        if (lint::look_at(text).is_blank())
            return;
        const std::string fault = judge.fault_of(wanted.group, wanted.item, text);
        if (!fault.empty()) {
            std::fprintf(stderr, "%s %s: not taken, %s: %s\n",
                         shown_key(wanted.group, wanted.item).c_str(), wanted.language,
                         shown(text).c_str(), fault.c_str());
            return;
        }
        put_text_in(entries_, wanted.item, wanted.language, text);
        add_remark(remarks_, wanted.item, wanted.language,
                   lint::carried_mark(shown(how_.command), text));
        ++count.by_command;
        --count.still_missing;
    }

    void print(const char *language, const fill_count &count)
    {
        std::printf("%s: %zu by key, %zu by reference text", language, count.by_key,
                    count.by_reference);
        if (how_.at_least != 0)
            std::printf(", %zu by likeness", count.by_likeness);
        if (!how_.command.empty())
            std::printf(", %zu by the command", count.by_command);
        std::printf(", %zu still missing\n", count.still_missing);
        filled_ += count.filled();
    }

    LangSource *source_;
    const fill_options &how_;
    const lint::glossary *terms_;
    entry_index entries_;
    entry_index remarks_;
    std::vector<std::pair<const char *, fill_count>> counts_;
    std::size_t filled_ = 0;
};

int fill_source(const std::string &path, const fill_options &how)
{
    source_file file = read_whole(path);
    if (!file)
        return status_fault;
    if (!how.command.empty() && exchange::encoding_of(*file.source) != exchange::encoding::utf8) {
        std::fprintf(stderr, "lang-kit: %s: --with is for sources in UTF-8\n", path.c_str());
        return status_fault;
    }
    std::deque<donor> donors;
    for (const std::string &from : how.from)
        if (!donors.emplace_back().read(from, *file.source, how.language))
            return status_fault;
    bool known = true;
    for (const donor &one : donors)
        // Every donor is asked, since each prints its own line.
        known = one.knows_language() && known;
    glossary_files glossaries;
    std::shared_ptr<const lint::glossary> terms;
    if (!how.command.empty() && !glossaries.find(path, file.source.get(), terms))
        return status_fault;
    source_filler filler(file.source.get(), how, terms.get());
    if (!filler.fill(donors))
        return status_fault;
    for (std::size_t at = 0; at < donors.size(); ++at)
        if (donors[at].foreign() != 0)
            std::fprintf(stderr, "%s: left out %s in another encoding\n", how.from[at].c_str(),
                         counted(donors[at].foreign(), "text").c_str());
    // A source that has not changed is not written: no backup, no new time.
    const bool written = (filler.filled() == 0 && how.output.empty()) ||
                         write({how.output.empty() ? path : how.output, how.dry_run}, file);
    keep_to_the_end(std::move(file.source));
    return !written ? status_fault : known ? status_fine : status_found;
}

} // namespace

int run_fill(const word &self, int argc, char **argv)
{
    fill_options how;
    std::string at_least;
    const parsed line =
        parse(self, argc, argv,
              {{.name = "from",
                .argument = "FILE",
                .help = "a source, or a file of another format; may be given again",
                .list = &how.from},
               {.name = "language",
                .argument = "NAME",
                .help = "the language of the files, whatever they say; not of sources",
                .text = &how.language},
               {.name = "at-least",
                .argument = "PERCENT",
                .help = "texts of similar references too; how like these must be, 1 to 100",
                .text = &at_least},
               {.name = "with",
                .argument = "COMMAND",
                .help = "ask this command for what is missing, with JSON lines",
                .text = &how.command},
               {.name = "dry-run", .help = "only say what would be filled", .on = &how.dry_run},
               {.name = "output",
                .argument = "FILE",
                .help = "write the source there",
                .text = &how.output,
                .letter = 'o'}},
              1, 1);
    if (line.ends)
        return line.status;
    if (how.from.empty() && how.command.empty())
        return wrong_use(self, "--from is missing: where are the texts?");
    if (!at_least.empty() && !take_percent(self, "at-least", at_least, how.at_least))
        return status_fault;
    return fill_source(line.files.front(), how);
}

} // namespace zel::kit
