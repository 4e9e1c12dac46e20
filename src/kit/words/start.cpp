#include "kit/support/languages.h"
#include "kit/support/options.h"
#include "kit/support/sources.h"
#include "kit/words/word-list.h"
#include "support/string-copy.h"

#include <algorithm>
#include <ctime>

namespace zel::kit {

namespace {

// The first two languages are the ones shown.
void add_language(LangSource *source, const std::string &name)
{
    const bool shown = source->lang_count < 2;
    add_definition(source, name)->edit = shown ? 1 : 0;
}

} // namespace

int run_start(const word &self, int argc, char **argv)
{
    std::string default_language = "english";
    std::string app;
    bool dry_run = false;
    std::vector<std::string> languages;
    const parsed line =
        parse(self, argc, argv,
              {{.name = "default",
                .argument = "NAME",
                .help = "the language of the texts in the code (english)",
                .text = &default_language},
               {.name = "language",
                .argument = "NAME",
                .help = "a language to translate into; may be given again",
                .list = &languages},
               {.name = "app", .argument = "NAME", .help = "the application's name", .text = &app},
               {.name = "dry-run", .help = "only look whether it can be begun", .on = &dry_run}},
              1, 1);
    if (line.ends)
        return line.status;
    languages.insert(languages.begin(), default_language);
    for (auto name = languages.begin(); name != languages.end(); ++name) {
        if (!is_language_name(*name))
            return wrong_use(self, "\"" + *name + "\" is no name for a language");
        if (std::find(languages.begin(), name, *name) != name)
            return wrong_use(self, "\"" + *name + "\" is there twice");
    }
    const std::string &path = line.files.front();
    // Looked at before: a file that appears between the two is not overwritten.
    source_file file{source_guard(lang_alloc_group()), {seen_file(path)}};
    if (const int status = refuse_present(self, path))
        return status;

    LangSource *source = file.source.get();
    source->format = LANG_SOURCE_UTF8;
    source->ctime = std::time(nullptr);
    replace_string(source->default_lang, zel_strdup(default_language.c_str()));
    if (!app.empty())
        replace_string(source->app, zel_strdup(app.c_str()));
    for (const std::string &name : languages)
        add_language(source, name);
    return write({path, dry_run}, file) ? status_fine : status_fault;
}

} // namespace zel::kit
