#include "kit/support/languages.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/pseudo-text.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "lint/item-case.h"
#include "source/entry.h"

#include <charconv>
#include <cstdio>

namespace zel::kit {

namespace {

constexpr int most_growth = 1000; // percent

// Reads a whole number up to the most; -1 for anything else.
int read_percent(const std::string &text)
{
    int value = -1;
    const char *end = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && behind == end && value >= 0 && value <= most_growth ? value : -1;
}

// The default language's text, which may be empty to keep the item out; without one, the item's
// name.
std::string text_to_translate(const LangSource &source, const item_t *item)
{
    const lang_entry_t *entry = find_entry(item->langs, source.default_lang);
    return entry == nullptr ? or_empty(item->name) : text_of(entry);
}

// Gives every item its text. Returns how many of them are new or have changed.
std::size_t make_texts(LangSource *source, const char *language, const pseudo_how &how)
{
    std::size_t changed = 0;
    for (const edit_t *group : each<edit_t>(source->groups))
        for (item_t *item : each<item_t>(group->items)) {
            const std::string text = pseudo_text(text_to_translate(*source, item), item, how);
            const lang_entry_t *before = find_entry(item->langs, language);
            if (before != nullptr && text_of(before) == text)
                continue;
            put_text(item->langs, language, text);
            ++changed;
        }
    return changed;
}

} // namespace

int run_pseudo(const word &self, int argc, char **argv)
{
    std::string name = "pseudo";
    std::string growth = "40";
    std::string output;
    bool dry_run = false;
    const parsed line =
        parse(self, argc, argv,
              {{.name = "name",
                .argument = "NAME",
                .help = "the language's name (pseudo)",
                .text = &name},
               {.name = "grow",
                .argument = "PERCENT",
                .help = "how much longer the texts become (40)",
                .text = &growth},
               {.name = "dry-run", .help = "only say how many texts would be new", .on = &dry_run},
               {.name = "output",
                .argument = "FILE",
                .help = "write the source there",
                .text = &output,
                .letter = 'o'}},
              1, 1);
    if (line.ends)
        return line.status;
    pseudo_how how;
    how.grow = read_percent(growth);
    if (how.grow < 0)
        return wrong_use(self, "--grow is a number from 0 to " + std::to_string(most_growth) +
                                   ", not \"" + growth + "\"");
    if (!is_language_name(name))
        return wrong_use(self, "\"" + name + "\" is no name for a language");
    source_file file = read_whole(line.files.front());
    LangSource *source = file.source.get();
    if (source == nullptr)
        return status_fault;
    if (lint::same_language(name.c_str(), source->default_lang))
        return wrong_use(self, "\"" + name + "\" is the language that the texts are made from");
    // Accents need UTF-8.
    how.accents = source->format == LANG_SOURCE_UTF8;
    const lang_t *known = find_definition(source, name.c_str());
    const bool is_new = known == nullptr;
    if (is_new)
        known = add_definition(source, name);
    const std::size_t changed = make_texts(source, known->name, how);
    std::printf("%s: %s\n", known->name, counted(changed, "new text").c_str());
    // A source that has not changed is not written: no backup, no new time.
    const bool written = (changed == 0 && !is_new && output.empty()) ||
                         write({output.empty() ? line.files.front() : output, dry_run}, file);
    keep_to_the_end(std::move(file.source));
    return written ? status_fine : status_fault;
}

} // namespace zel::kit
