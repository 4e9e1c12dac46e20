#include "checker/check.h"

#include "app/argv.h"
#include "app/global.h"
#include "checker/c-scan.h"
#include "checker/scan-tree.h"
#include "source/group.h"
#include "source/item-index.h"
#include "source/lang-read.h"
#include "source/lang-write.h"
#include "support/file-call.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/time.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

namespace {

using namespace zel;

enum { OPTION_HELP = 1, OPTION_VERBOSE, OPTION_RECURSIVE };

// Written with two dashes before the word. Only the help has an effect.
constexpr argv_tab_t check_options[] = {
    {"-v", OPTION_VERBOSE},   {"verbose", OPTION_VERBOSE}, {"recursive", OPTION_RECURSIVE},
    {"-r", OPTION_RECURSIVE}, {"help", OPTION_HELP},       {nullptr, 0},
};

void say_not_opened(const char *directory)
{
    const int error = errno;
    std::printf("_check_rec: ERROR(1) open >%s<\n", directory);
    std::fprintf(stderr, "check: %s cannot be read: %s\n", directory, std::strerror(error));
}

void say_not_seen(const char *path)
{
    std::fprintf(stderr, "check: %s cannot be looked at: %s\n", path, std::strerror(errno));
}

int check_path(zel::item_index &index, const char *path, std::int64_t now)
{
    LogPrint(1, "check: check directory >%s<\n", path);
    std::printf("check: check directory >%s<\n", path);
    const auto scan = [&](const char *file) {
        return check_file(index, file, {now, stdout, nullptr, nullptr});
    };
    const int result = scan_path(path, {scan, say_not_opened, say_not_seen});
    LogPrint(1, "check: free\n");
    return result;
}

// Reads the source at the path, or begins an empty one if there is none or its text is malformed. A
// source that exists but cannot be read to its end is left alone: what it holds would be lost.
check_result read_or_begin(const char *path, std::int64_t now, source_guard &source, bool &begun)
{
    LogPrint(1, "check: read file >%s<\n", path);
    std::printf("check: read file >%s<\n", path);
    note_source_directory(path);
    read_answer answer = read_source(path, {now, print_read_message, nullptr, {}, true});
    source = std::move(answer.source);
    if (answer.result == read_result::good)
        return check_result::done;
    if (answer.result == read_result::stopped) {
        say_stopped();
        return check_result::ended;
    }
    say_no_memory(path, answer);
    if (answer.cause == read_cause::unreadable || answer.cause == read_cause::memory)
        return check_result::failed;
    begun = answer.cause == read_cause::syntax;
    source.reset(lang_alloc_group());
    std::puts("check: WARNING no group");
    LogPrint(1, "check: WARNING no group\n");
    return source == nullptr ? check_result::failed : check_result::done;
}

// Tells of a new source in place of a malformed one: the old text, with all its translations, is in
// the backup, and whoever reads this can mend it.
void say_begun(const char *path, const write_answer &written)
{
    if (written.code == 0)
        std::fprintf(
            stderr,
            "check: %s could not be read and a new source was begun; the old text is in %s\n", path,
            written.backup.c_str());
    else
        std::fprintf(stderr, "check: %s could not be read; it is as it was\n", path);
}

// Scans every path for requests. False when the run is to end.
bool scan_paths(LangSource *source, int count, char **paths, std::int64_t now)
{
    LogPrint(1, "check: check directorys start\n");
    zel::item_index index(source);
    for (int i = 0; i < count; ++i)
        if (check_path(index, paths[i], now) != 0)
            return false;
    LogPrint(1, "check: check directorys end\n");
    return true;
}

// Reads the source, checks it and writes it, unless another program has changed it meanwhile.
check_result check_once(const char *path, int count, char **words, std::int64_t now,
                        bool &is_changed)
{
    const unsigned failed_before = failed_copies();
    const file_stamp stamp_before = stamp_of(path);
    source_guard source;
    bool begun = false;
    const check_result result = read_or_begin(path, now, source, begun);
    if (result != check_result::done)
        return result;
    // An item that no scan finds again counts as unused from now on.
    forget_uses(source.get());
    if (!scan_paths(source.get(), count, words, now))
        return check_result::ended;
    // Requests may be lost: their items would be written as unused.
    if (failed_copies() != failed_before) {
        std::fprintf(stderr, "check: not enough memory, %s is as it was\n", path);
        return check_result::failed;
    }
    LogPrint(1, "check: write file\n");
    write_how how;
    how.now = std::time(nullptr);
    how.may_replace = [&] { return !(is_changed = has_changed(path, stamp_before)); };
    const write_answer written = write_source(path, source.get(), how);
    if (begun && !is_changed)
        say_begun(path, written);
    LogPrint(1, "check: free group\n");
    source.reset();
    LogPrint(1, "check: exit\n");
    return check_result::done;
}

} // namespace

void check_usage()
{
    static constexpr const char *lines[] = {
        "",
        "usage :",
        "---------------------------------------------------------------",
        "lang check [options] lang_file c_file",
        "",
        "options:",
        "---------------------------------------------------------------",
        "help\t\t-\tDisplay this help",
        "verbose \t-\tVerbose\n",
        "",
    };
    for (const char *line : lines)
        std::puts(line);
}

int _check_rec(LangSource *root, const char *directory)
{
    zel::item_index index(root);
    const auto check = [&](const char *file) {
        return zel::check_file(index, file, {lang_global.start_time, stdout, nullptr, nullptr});
    };
    if (zel::scan_directory(directory, {check, say_not_opened, say_not_seen}) != 0)
        lang_exit(0);
    return 0;
}

namespace zel {

void forget_uses(LangSource *source)
{
    source->ctime = std::time(nullptr);
    const std::string date = date_text("%Y-%m-%d %H:%M:%S", source->ctime);
    replace_string(source->create_date, zel_strdup(date.c_str()));
    clear_all_file_list(source);
    clear_all_used(source);
}

check_result run_check(int count, char **words, std::int64_t now)
{
    // Another program may save again and again; after these rounds it has its way.
    constexpr int most_rounds = 3;
    LogPrint(1, "check: entry\n");
    argv_prep(&count, &words);
    const bool help = check_argv(&count, &words, check_options) == OPTION_HELP;
    char *name = nullptr;
    if (!help)
        argv_get_str(&count, &words, &name);
    const string_guard path(name);
    if (path == nullptr || count < 1) {
        check_usage();
        return check_result::ended;
    }
    for (int round = 1; round <= most_rounds; ++round) {
        bool is_changed = false;
        const check_result result = check_once(path.get(), count, words, now, is_changed);
        if (!is_changed)
            return result;
        std::fprintf(stderr, "check: %s was changed by another program meanwhile; %s\n", path.get(),
                     round < most_rounds ? "it is checked again" : "it stays as that left it");
    }
    return check_result::failed;
}

} // namespace zel

int check(int count, char **words)
{
    const zel::check_result result = zel::run_check(count, words, lang_global.start_time);
    if (result == zel::check_result::ended)
        lang_exit(0);
    return result == zel::check_result::done ? 0 : 1;
}
