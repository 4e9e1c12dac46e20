#include "kit/support/donor.h"
#include "kit/support/entry-index.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "source/entry.h"
#include "source/misc.h"

#include <cstdio>

namespace zel::kit {

namespace {

struct fill_count {
    std::size_t by_key = 0;
    std::size_t by_reference = 0;
    std::size_t still_missing = 0;

    std::size_t filled() const { return by_key + by_reference; }
};

// Whether a language lacks a text. In the default language an empty one is deliberate: it keeps the
// item out.
bool is_missing(lang_entry_t *entry, bool is_default)
{
    return entry == nullptr || (!is_default && misc_search_empty_in_lang_entry(entry) != 0);
}

// Fills one language of the source.
class language_filler {
public:
    language_filler(LangSource *source, entry_index &entries, const char *language,
                    std::deque<donor> &donors)
        : source_(source), entries_(entries), language_(language), donors_(donors),
          is_default_(view_of(source->default_lang) == language)
    {
        for (donor &one : donors_)
            one.choose(language);
    }

    fill_count fill()
    {
        for (const edit_t *group : each<edit_t>(source_->groups))
            for (item_t *item : each<item_t>(group->items))
                if (is_missing(entries_.find(item, language_), is_default_))
                    fill_item(group, item);
        return count_;
    }

private:
    void fill_item(const edit_t *group, item_t *item)
    {
        const std::string_view by_key = first([&](const donor &one) {
            return one.by_key(view_of(group->name), view_of(item->name));
        });
        if (!by_key.empty()) {
            put(item, by_key, count_.by_key);
            return;
        }
        // The default language's text is the reference itself.
        const std::string reference = is_default_ ? "" : reference_text(item);
        const std::string_view by_reference =
            first([&](const donor &one) { return one.by_reference(reference); });
        if (by_reference.empty())
            ++count_.still_missing;
        else
            put(item, by_reference, count_.by_reference);
    }

    std::string reference_text(const item_t *item) const
    {
        const std::string text = text_of(entries_.find(item, source_->default_lang));
        return without_end(text).empty() ? or_empty(item->name) : text;
    }

    template <class Ask>
    std::string_view first(Ask ask) const
    {
        for (const donor &one : donors_)
            if (const std::string_view text = ask(one); !text.empty())
                return text;
        return {};
    }

    void put(item_t *item, std::string_view text, std::size_t &count)
    {
        // An empty entry is filled: a second one in its language would never be read.
        lang_entry_t *entry = entries_.find(item, language_);
        set_text(entry == nullptr ? entries_.append(item, language_) : entry, text);
        item->changed = 1;
        item->ready = 0;
        ++count;
    }

    LangSource *source_;
    entry_index &entries_;
    const char *language_;
    std::deque<donor> &donors_;
    bool is_default_;
    fill_count count_;
};

// Fills all languages and prints how much of each. Returns the number of texts.
std::size_t fill_source(LangSource *source, std::deque<donor> &donors)
{
    std::size_t filled = 0;
    entry_index entries(source);
    for (const lang_t *lang : each<lang_t>(source->langs)) {
        if (lang->name == nullptr)
            continue;
        const fill_count count = language_filler(source, entries, lang->name, donors).fill();
        std::printf("%s: %zu by key, %zu by reference text, %zu still missing\n", lang->name,
                    count.by_key, count.by_reference, count.still_missing);
        filled += count.filled();
    }
    return filled;
}

} // namespace

int run_fill(const word &self, int argc, char **argv)
{
    std::vector<std::string> from;
    std::string language;
    std::string output;
    bool dry_run = false;
    const parsed line =
        parse(self, argc, argv,
              {{.name = "from",
                .argument = "FILE",
                .help = "a source, or a file of another format; may be given again",
                .list = &from},
               {.name = "language",
                .argument = "NAME",
                .help = "the language of the files, whatever they say; not of sources",
                .text = &language},
               {.name = "dry-run", .help = "only say what would be filled", .on = &dry_run},
               {.name = "output",
                .argument = "FILE",
                .help = "write the source there",
                .text = &output,
                .letter = 'o'}},
              1, 1);
    if (line.ends)
        return line.status;
    if (from.empty())
        return wrong_use(self, "--from is missing: where are the texts?");
    source_file file = read_whole(line.files.front());
    if (!file)
        return status_fault;
    std::deque<donor> donors;
    for (const std::string &path : from)
        if (!donors.emplace_back().read(path, *file.source, language))
            return status_fault;
    bool known = true;
    for (const donor &one : donors)
        // Every donor is asked, since each prints its own line.
        known = one.knows_language() && known;
    const std::size_t filled = fill_source(file.source.get(), donors);
    for (std::size_t at = 0; at < donors.size(); ++at)
        if (donors[at].foreign() != 0)
            std::fprintf(stderr, "%s: left out %s in another encoding\n", from[at].c_str(),
                         counted(donors[at].foreign(), "text").c_str());
    // A source that has not changed is not written: no backup, no new time.
    const bool written = (filled == 0 && output.empty()) ||
                         write({output.empty() ? line.files.front() : output, dry_run}, file);
    keep_to_the_end(std::move(file.source));
    return !written ? status_fault : known ? status_fine : status_found;
}

} // namespace zel::kit
