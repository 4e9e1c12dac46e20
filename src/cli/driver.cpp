#include "cli/driver.h"

#include "app/argv.h"
#include "app/global.h"
#include "checker/check.h"
#include "cli/editor-module.h"
#include "compiler/excel.h"
#include "compiler/split.h"
#include "source/lang-read.h"
#include "source/lang-write.h"
#include "support/file-call.h"
#include "support/log-print.h"
#include "support/log.h"
#include "support/string-copy.h"
#include "support/string.h"
#include "support/text.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

// Ids of the words; 0 is the id of a word that no row has.
enum word {
    word_none = 0,
    word_oformat = 1,
    word_check = 2,
    word_compile = 3,
    word_edit = 4,
    word_help = 5,
    word_excel = 6,
    word_unicode = 7,
    word_zel = 8,
    word_zel2 = 9,
    word_output_lang_1 = 10,
    word_output_lang_2 = 11,
    word_log = 12,
    word_convert = 13,
    word_only_used = 14
};

constexpr argv_tab_t opt_list[] = {
    {"-?", word_help},    {"/?", word_help},   {"/help", word_help},
    {"-help", word_help}, {"help", word_help}, {nullptr, word_none},
};

constexpr argv_tab_t arg_list[] = {
    {"oformat", word_oformat},
    {"check", word_check},
    {"split", word_compile},
    {"compile", word_compile},
    {"edit", word_edit},
    {"excel", word_excel},
    {"unicode", word_unicode},
    {"-zel", word_zel},
    {"zel", word_zel},
    {"-zel2", word_zel2},
    {"zel2", word_zel2},
    {"-log", word_log},
    {"log", word_log},
    {"-output-lang-1", word_output_lang_1},
    {"-output-lang-2", word_output_lang_2},
    {"-only-used", word_only_used},
    {"convert", word_convert},
    {nullptr, word_none},
};

constexpr argv_tab_t oformat_list[] = {{"gtk", 1}, {"lang", 2}, {nullptr, 0}};

enum { compile_none = 0, compile_help = 1, compile_dst_dir = 2 };

constexpr argv_tab_t compile_list[] = {
    {"-h", compile_help},          {"-?", compile_help},    {"-help", compile_help},
    {"-dst-dir", compile_dst_dir}, {nullptr, compile_none},
};

#define DASHES_63 "---------------------------------------------------------------"
#define DASHES_43 "-------------------------------------------"

// The words that are left to read: the cursor that every operation of app/argv.h moves.
struct words {
    int count;
    char **position;

    int match(const argv_tab_t *table) { return check_argv_str_to_num(&count, &position, table); }

    // The next word as a new string, replacing what out holds. False when there is none.
    bool take(char *&out) { return argv_free_get_str(&count, &position, &out) == ARGV_OK; }

    // Takes back the word that was used up last.
    void step_back()
    {
        ++count;
        --position;
    }
};

// Whether the walk over the command line goes on behind a word.
enum class walk { goes_on, ends };

walk show_usage()
{
    usage();
    return walk::ends;
}

walk start_editor(const char *file)
{
    zel::run_editor(file);
    return walk::ends;
}

walk start_editor_in_mode(std::uint32_t mode)
{
    lang_global.editor_mode = mode;
    return start_editor(nullptr);
}

walk run_check(words &left)
{
    // The checker's vector begins with the command's own word, as main's begins with the program.
    left.step_back();
    LogPrint(1, "lang_edit: check\n");
    check(left.count, left.position);
    return walk::ends;
}

walk run_compile(words &left)
{
    if (left.count < 1)
        return show_usage();
    compile_lang_file(left.count, left.position);
    return walk::ends;
}

walk run_edit(words &left)
{
    char *def_file = nullptr;
    // Without a file the usage is printed and the editor starts all the same.
    if (!left.take(def_file))
        usage();
    const zel::string_guard file(def_file);
    char *dir = nullptr;
    char *name = nullptr;
    zel_split_path_file(def_file, &dir, &name);
    std::free(name);
    zel::replace_string(lang_global.start_dir, dir);
    return start_editor(def_file);
}

// The next word, or the fallback where none is left.
zel::string_guard take_or(words &left, const char *fallback)
{
    char *text = nullptr;
    left.take(text);
    return zel::string_guard(text != nullptr ? text : zel_strdup(fallback));
}

walk run_excel(words &left)
{
    if (left.match(arg_list) != word_unicode) {
        usage();
        LogClose();
        return walk::ends;
    }
    const zel::string_guard def_file = take_or(left, "unknown.lang-src");
    const zel::string_guard def_out = take_or(left, "unknown.slk");
    const zel::string_guard def_lang = take_or(left, "english");
    const zel::string_guard def_comment_lang = take_or(left, "english");
    source_guard def_group(lang_read_file(def_file.get()));
    if (!def_group)
        return show_usage();
    to_excel_unicode_text(def_group.get(), def_out.get(), def_lang.get(), def_comment_lang.get());
    return walk::ends;
}

walk say_missing(const char *message)
{
    std::puts(message);
    return show_usage();
}

// Converts the source. When it is written over itself and another program changes it meanwhile, the
// new text is read and converted in its place, three times at the most.
void convert(const char *from, const char *to, std::uint32_t only_used)
{
    constexpr int most_rounds = 3;
    zel::write_answer written{-1, {}};
    for (int round = 1; round <= most_rounds; ++round) {
        const zel::file_stamp before = zel::stamp_of(zel::or_empty(from));
        // A source that is written over itself must not lose what the reader cannot take in: the
        // reader has to know beforehand.
        const bool in_place = zel::stamp_of(zel::or_empty(to)) == before;
        const source_guard def_group = zel::read_for_command(from, in_place);
        if (!def_group) {
            std::printf("ERROR: read %s\n", zel::or_empty(from));
            return;
        }
        def_group->only_used = only_used;
        zel::write_how how;
        // The time of the write, not of the start: reading a large source takes a while.
        how.now = std::time(nullptr);
        if (in_place)
            how.may_replace = [&] { return !zel::has_changed(to, before); };
        if (to != nullptr)
            written = zel::write_source(to, def_group.get(), how);
        if (written.code != zel::write_not_allowed)
            break;
        std::fprintf(stderr, "convert: %s was changed by another program meanwhile\n", to);
    }
    if (written.code != 0)
        std::printf("ERROR: write %s\n", zel::or_empty(to));
}

walk run_convert(words &left)
{
    std::uint32_t only_used = 0;
    for (int id = left.match(arg_list); id != word_none; id = left.match(arg_list))
        if (id == word_only_used)
            only_used = 1;
    char *text = nullptr;
    if (!left.take(text))
        return say_missing("ERROR: missing src file");
    const zel::string_guard from(text);
    text = nullptr;
    if (!left.take(text))
        return say_missing("ERROR: missing dst file");
    const zel::string_guard to(text);
    convert(from.get(), to.get(), only_used);
    return walk::ends;
}

walk set_output_language(words &left, char *&language)
{
    return left.take(language) ? walk::goes_on : show_usage();
}

// The log has been open since the start, so this only leaves a line in it.
walk open_second_log(words &left)
{
    LogOpen("lang.log", LOG_OPEN_NEW | LOG_OPEN_STDOUT, "Tarvik language editor version 1.4");
    return left.count > 0 ? walk::goes_on : start_editor(nullptr);
}

walk take_format(words &left)
{
    return left.match(oformat_list) != 0 ? walk::goes_on : show_usage();
}

walk set_output_lang_1(words &left) { return set_output_language(left, lang_global.output_lang_1); }
walk set_output_lang_2(words &left) { return set_output_language(left, lang_global.output_lang_2); }
walk start_zel(words &) { return start_editor_in_mode(1); }
walk start_zel2(words &) { return start_editor_in_mode(2); }

// What to do for a word by its id. A word without a row belongs to some command and does nothing by
// itself.
struct command {
    int id;
    walk (*run)(words &left);
};
constexpr command commands[] = {
    // An unknown word has id 0, which makes it a row like any other.
    {word_none, [](words &) { return show_usage(); }},
    {word_oformat, take_format},
    {word_check, run_check},
    {word_compile, run_compile},
    {word_edit, run_edit},
    {word_excel, run_excel},
    {word_zel, start_zel},
    {word_zel2, start_zel2},
    {word_output_lang_1, set_output_lang_1},
    {word_output_lang_2, set_output_lang_2},
    {word_log, open_second_log},
    {word_convert, run_convert},
};

walk run_word(words &left, int id)
{
    for (const command &row : commands)
        if (row.id == id)
            return row.run(left);
    return walk::goes_on;
}

int compile_fault()
{
    compile_usage();
    return -1;
}

// Reads the options before the last word, and sets the destination directory. Anything but 0 ends
// the command.
int read_compile_options(words &left, char *&destination)
{
    // The last word is the file, even where it looks like an option.
    while (left.count >= 2) {
        switch (left.match(compile_list)) {
        case compile_dst_dir:
            if (!left.take(destination))
                return compile_fault();
            break;
        case compile_help:
            compile_usage();
            lang_exit(0);
        default:
            return compile_fault();
        }
    }
    return left.count == 1 ? 0 : compile_fault();
}

} // namespace

void usage()
{
    std::puts("\n"
              "usage :\n" DASHES_63 "\n"
              "lang [options] [commands]\n"
              "\n"
              "options:\n" DASHES_63 "\n"
              "--help   - Display this help\n"
              "\n"
              "commands:\n" DASHES_63 "\n"
              "compile         - Compile lang src file to language file/s (default)\n"
              "check           - Check language file\n"
              "edit langsrc    - Gui\n"
              "convert [options] src.lang-src dst.lang-src\n"
              "options:\n" DASHES_43 "\n"
              "-used-only  - Write only used items");
}

void compile_usage()
{
    std::puts("\n"
              "usage :\n" DASHES_63 "\n"
              "lang compile [options] lang_src_file\n"
              "\n"
              "options:\n" DASHES_63 "\n"
              "-?\t\t-\tDisplay this help\n"
              "-h\t\t-\tDisplay this help\n"
              "-help\t\t-\tDisplay this help\n"
              "-dst-dir\t-\tDestination directory");
}

int compile_lang_file(int argc, char **argv)
{
    words left{argc, argv};
    char *text = nullptr;
    const int fault = read_compile_options(left, text);
    const zel::string_guard destination(text);
    if (fault != 0)
        return fault;
    const zel::string_guard file = take_or(left, nullptr);
    source_guard source(lang_read_file(file.get()));
    if (!source)
        return -1;
    split_file(source.get(), destination.get());
    return 0;
}

int lang_edit(int argc, char **argv)
{
    lang_global_init();
    // Before the words are read: the toolkit's options may stand anywhere between them.
    zel::take_toolkit_args(&argc, &argv);
    LogPrint(1, "lang_edit: entry\n");
    words left{argc, argv};
    argv_prep(&left.count, &left.position);
    if (left.match(opt_list) == word_help) {
        usage();
        LogClose();
        return 0;
    }
    if (left.count < 1) {
        start_editor(nullptr);
        return 0;
    }
    while (left.count > 0)
        if (run_word(left, left.match(arg_list)) == walk::ends)
            return 0;
    LogPrint(1, "lang_edit: exit\n");
    LogClose();
    return 0;
}
