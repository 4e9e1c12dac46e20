#include "kit/words.h"

#include "kit/words/word-list.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace zel::kit {

namespace {

// In the order in which the help shows them.
constexpr word table[] = {
    {"start", "[--default NAME] [--language NAME]... FILE",
     "begin an empty language source with its languages", run_start},
    {"check", "[OPTION...] SOURCE [PATH...]",
     "look for texts in code, and bring the source up to date with it", run_check},
    {"lint", "[OPTION...] SOURCE...", "say what would break the application or its looks",
     run_lint},
    {"stat", "[OPTION...] SOURCE...", "tell how far each language is", run_stat},
    {"report", "[-o FILE.html] [--screenshots] SOURCE...",
     "make a web page of all texts, their progress and what lint found", run_report},
    {"shots", "FOLDER --trace FILE SOURCE",
     "give the texts of a trace the pictures of its marks, for the editor and the report",
     run_shots},
    {"export", "--format FORMAT [--language NAME]... [-o DIR] SOURCE",
     "hand the texts out in another format", run_export},
    {"import", "--format FORMAT [--comments] [--dry-run] [-o FILE] SOURCE FILE...",
     "take texts in from files of another format", run_import},
    {"adopt", "--from gettext|qt [--group NAME] [--write] SOURCE CODE...",
     "turn an application's calls for its texts into requests", run_adopt},
    {"diff", "[--format text|json] [--places] OLD NEW",
     "what differs between two sources, by meaning", run_diff},
    {"news", "[--format text|json|html] [--language NAME]... OLD NEW",
     "what is new for translators, ready to be mailed", run_news},
    {"show", "SOURCE", "print a source as a text that is good to compare", run_show},
    {"merge", "[-o FILE] [--ours|--theirs] BASE OURS THEIRS",
     "merge two sources that come from one", run_merge},
    {"git", "[--hook] [--resolve [FILE...]]", "set the current repository up for language sources",
     run_git},
    {"pseudo", "[--name NAME] [--grow PERCENT] [-o FILE] SOURCE",
     "make a language that shows what is not translated or does not fit", run_pseudo},
    {"fill", "--from FILE [--from FILE]... [--at-least PERCENT] [--with COMMAND] [-o FILE] SOURCE",
     "take missing texts from other sources and catalogs", run_fill},
    {"carry", "[--at-least PERCENT] [--keep-trivial] [--dry-run] SOURCE",
     "give changed items the texts that they had before", run_carry},
    {"questions", "[--format text|json] [--language NAME]... [--answered] SOURCE...",
     "tell what translators ask in their comments", run_questions},
    {"mnemonics", "[--language NAME]... [--dry-run] SOURCE [GROUP]",
     "give menus and buttons the keys that their translations lack", run_mnemonics},
    {"replace", "--language NAME [--dry-run] WORDS OTHERS SOURCE...",
     "put other words in the place of words, in one language's texts", run_replace},
};

void print_help()
{
    std::puts("usage: lang-kit WORD [OPTION...] FILE...\n\n"
              "The companion of lang for build servers, version control and exchange.\n");
    for (const word &row : table)
        std::printf("  %-9s  %s\n", row.name, row.summary);
    std::puts(
        "\nlang-kit WORD --help tells the options of a word. Results go to standard output,\n"
        "messages to standard error. The status is 0 when all is fine, 1 for findings,\n"
        "differences or conflicts, 2 for wrong use or a file that cannot be read or written.");
}

int run_word(int argc, char **argv)
{
    if (argc < 2) {
        std::fputs("lang-kit: a word is missing; lang-kit --help shows them\n", stderr);
        return status_fault;
    }
    const std::string_view name = argv[1];
    if (name == "--help") {
        print_help();
        return status_fine;
    }
    if (name == "--version") {
        std::puts("lang-kit " LANG_VERSION);
        return status_fine;
    }
    const word *found = std::find_if(std::begin(table), std::end(table),
                                     [&](const word &row) { return row.name == name; });
    if (found == std::end(table)) {
        std::fprintf(stderr, "lang-kit: unknown %s \"%s\"; lang-kit --help shows them\n",
                     name.starts_with("-") ? "option" : "word", argv[1]);
        return status_fault;
    }
    return found->run(*found, argc - 1, argv + 1);
}

} // namespace

std::span<const word> words() { return table; }

int run(int argc, char **argv)
{
    const int status = run_word(argc, argv);
    // A full disk may show only here, and a part of the results must not pass for all of them.
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return status;
    std::fprintf(stderr, "lang-kit: standard output: %s\n", std::strerror(errno));
    return status_fault;
}

} // namespace zel::kit
