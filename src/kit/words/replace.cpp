#include "assist/word-finder.h"
#include "kit/support/options.h"
#include "kit/support/output.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "source/entry.h"

#include <cstdio>

namespace zel::kit {

namespace {

bool has_language(const LangSource *source, const std::string &language)
{
    for (const lang_t *lang : each<lang_t>(source->langs))
        if (view_of(lang->name) == language)
            return true;
    return false;
}

struct replace_count {
    std::size_t changed = 0;
    std::size_t foreign = 0; // texts in another encoding than UTF-8, which stay
};

// Replaces in the texts of a language, and prints each before and after.
replace_count replace_in(const std::string &path, const LangSource *source, const char *language,
                         const assist::word_replacer &replacer)
{
    replace_count count;
    for (const edit_t *group : each<edit_t>(source->groups))
        for (item_t *item : each<item_t>(group->items)) {
            lang_entry_t *entry = find_entry(item->langs, language);
            const std::string text = text_of(entry);
            const assist::word_replacer::replaced after = replacer.in(text);
            if (!after.any() && replacer.finder().are_in(text))
                ++count.foreign;
            if (!after.any() || after.text == text)
                continue;
            std::string line;
            append_line(line, path);
            line += ": ";
            append_line(line, view_of(group->name));
            line += ":";
            append_line(line, view_of(item->name));
            std::printf("%s: %s -> %s\n", line.c_str(), kit::quoted(text).c_str(),
                        kit::quoted(after.text).c_str());
            set_text(entry, after.text);
            item->changed = 1;
            ++count.changed;
        }
    return count;
}

} // namespace

int run_replace(const word &self, int argc, char **argv)
{
    std::string language;
    bool dry_run = false;
    const parsed line =
        parse(self, argc, argv,
              {{.name = "language",
                .argument = "NAME",
                .help = "the language whose texts are changed",
                .text = &language},
               {.name = "dry-run", .help = "only say what would be replaced", .on = &dry_run}},
              3, static_cast<std::size_t>(-1));
    if (line.ends)
        return line.status;
    if (language.empty())
        return wrong_use(self, "--language is missing: whose texts are changed?");
    const assist::word_replacer replacer(line.files[0], line.files[1]);
    for (const std::string &words : {line.files[0], line.files[1]})
        if (g_utf8_validate(words.c_str(), static_cast<gssize>(words.size()), nullptr) == 0)
            return wrong_use(self, "the words are no UTF-8");
    if (replacer.finder().empty())
        return wrong_use(self, "the words to replace are empty");
    if (replacer.removes())
        return wrong_use(self, "the words to put in their place are empty");
    std::vector<std::string> paths(line.files.begin() + 2, line.files.end());
    keep_each_once(paths);
    // All sources are read before one is written: a wrong name must not leave half of them changed.
    std::vector<source_file> files;
    for (const std::string &path : paths) {
        source_file &file = files.emplace_back(read_whole(path));
        if (!file)
            return status_fault;
        if (!has_language(file.source.get(), language)) {
            std::fprintf(stderr, "%s: there is no language %s\n", path.c_str(),
                         kit::quoted(language).c_str());
            return status_fault;
        }
    }
    bool written = true;
    std::size_t changed = 0;
    for (std::size_t at = 0; at < files.size(); ++at) {
        const std::string &path = paths[at];
        const replace_count count =
            replace_in(path, files[at].source.get(), language.c_str(), replacer);
        if (count.foreign != 0)
            std::fprintf(stderr, "%s: left out %s in another encoding\n", path.c_str(),
                         counted(count.foreign, "text").c_str());
        // A source that has not changed is not written: no backup, no new time.
        written = (count.changed == 0 || write({path, dry_run}, files[at])) && written;
        changed += count.changed;
        keep_to_the_end(std::move(files[at].source));
    }
    std::printf("%s: %s\n", language.c_str(), counted(changed, "changed text").c_str());
    return written ? status_fine : status_fault;
}

} // namespace zel::kit
