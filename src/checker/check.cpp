#include "checker/check.h"

#include "app/argv.h"
#include "app/global.h"
#include "checker/c-scan.h"
#include "source/group.h"
#include "source/item-index.h"
#include "source/lang-read.h"
#include "source/lang-write.h"
#include "support/file-call.h"
#include "support/gen_path.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/time.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace zel;

enum { OPTION_HELP = 1, OPTION_VERBOSE, OPTION_RECURSIVE };

// Written with two dashes before the word. Only the help has an effect.
constexpr argv_tab_t check_options[] = {
    {"-v", OPTION_VERBOSE},   {"verbose", OPTION_VERBOSE}, {"recursive", OPTION_RECURSIVE},
    {"-r", OPTION_RECURSIVE}, {"help", OPTION_HELP},       {nullptr, 0},
};

// Which files of a tree are scanned.
constexpr std::string_view scanned_endings[] = {".c", ".h", ".scr", ".kvo-signals"};
constexpr std::string_view scanned_names[] = {"kvo-hotkeys",      "pad-hotkeys",
                                              "tool-hotkeys",     "page-index-script",
                                              "job-index-script", "modes-list"};

bool is_scanned(std::string_view name)
{
    return std::any_of(std::begin(scanned_endings), std::end(scanned_endings),
                       [&](std::string_view ending) { return name.ends_with(ending); }) ||
           std::find(std::begin(scanned_names), std::end(scanned_names), name) !=
               std::end(scanned_names);
}

// ---- Directory trees

struct file_id {
    dev_t device;
    ino_t number;
    bool operator==(const file_id &) const = default;
};

struct walk {
    zel::item_index &index;
    std::int64_t now;          // the creation time of inserted items
    std::vector<file_id> open; // the directories from the start of the walk down to this one
};

struct directory_release {
    void operator()(GDir *directory) const noexcept { g_dir_close(directory); }
};
using directory_guard = std::unique_ptr<GDir, directory_release>;

int search_directory(walk &w, const char *directory);

int step_down(walk &w, const char *path, file_id id)
{
    // A link back up the tree.
    if (std::find(w.open.begin(), w.open.end(), id) != w.open.end())
        return 0;
    LogPrint(1, "_check_rec: step down >%s<\n", path);
    w.open.push_back(id);
    const int result = search_directory(w, path);
    w.open.pop_back();
    LogPrint(1, "_check_rec: step up >%s<\n", path);
    return result;
}

int search_entry(walk &w, const char *path, const char *name)
{
    struct stat status;
    const bool known = zel_stat(path, &status) == 0;
    if (known && S_ISDIR(status.st_mode))
        return step_down(w, path, {status.st_dev, status.st_ino});
    LogPrint(1, "_check_rec: check file >%s<>%s<\n", path, name);
    // Pipes and devices are no sources, and reading one might not end. What has no status (a link
    // that leads nowhere) is left to the scan to complain about.
    if (!is_scanned(name) || (known && !S_ISREG(status.st_mode)))
        return 0;
    return zel::check_file(w.index, path, w.now);
}

int search_directory(walk &w, const char *directory)
{
    LogPrint(1, "_check_rec: entry >%s<\n", directory);
    const directory_guard entries(g_dir_open(directory, 0, nullptr));
    if (entries == nullptr) {
        LogPrint(1, "_check_rec: ERROR(1) open >%s<\n", directory);
        std::printf("_check_rec: ERROR(1) open >%s<\n", directory);
        return 0;
    }
    std::string path;
    while (const char *name = g_dir_read_name(entries.get())) { // never "." and ".."
        path.assign(std::strlen(directory) + std::strlen(name) + 4, '\0');
        gen_path(path.data(), 0, directory, name, nullptr);
        if (search_entry(w, path.c_str(), name) != 0)
            return -1;
    }
    LogPrint(1, "_check_rec: exit(2)  >%s<\n", directory);
    return 0;
}

int check_directory(zel::item_index &index, const char *directory, std::int64_t now)
{
    walk w{index, now, {}};
    struct stat status;
    if (zel_stat(directory, &status) == 0)
        w.open.push_back({status.st_dev, status.st_ino});
    return search_directory(w, directory);
}

int check_path(zel::item_index &index, const char *path, std::int64_t now)
{
    LogPrint(1, "check: check directory >%s<\n", path);
    std::printf("check: check directory >%s<\n", path);
    struct stat status;
    const bool is_file = zel_stat(path, &status) == 0 && S_ISREG(status.st_mode);
    const int result =
        is_file ? zel::check_file(index, path, now) : check_directory(index, path, now);
    LogPrint(1, "check: free\n");
    return result;
}

// ---- The command

// The source at the path, or an empty one where there is none or its text is none. A source that
// is there and cannot be read through is left alone: what it holds would be lost.
check_result read_or_begin(const char *path, std::int64_t now, source_guard &source, bool &begun)
{
    LogPrint(1, "check: read file >%s<\n", path);
    std::printf("check: read file >%s<\n", path);
    note_source_directory(path);
    read_answer answer = read_source(path, {now, print_read_message, nullptr});
    source = std::move(answer.source);
    if (answer.result == read_result::good)
        return check_result::done;
    if (answer.result == read_result::stopped) {
        say_stopped();
        return check_result::ended;
    }
    if (answer.cause == read_cause::unreadable || answer.cause == read_cause::memory)
        return check_result::failed;
    begun = answer.cause == read_cause::syntax;
    source.reset(lang_alloc_group());
    std::puts("check: WARNING no group");
    LogPrint(1, "check: WARNING no group\n");
    return source == nullptr ? check_result::failed : check_result::done;
}

// A new source in place of a malformed one: the old text, with all its translations, is in the
// backup, and whoever reads this can mend it.
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

void stamp(LangSource *source)
{
    char date[1024]; // as sprintf_date takes it
    source->ctime = std::time(nullptr);
    sprintf_date(date, "%Y-%m-%d %H:%M:%S", source->ctime);
    zel::replace_string(source->create_date, zel_strdup(date));
}

// Looks for every request of every path. False when the run is to end.
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
    if (check_directory(index, directory, lang_global.start_time) != 0)
        lang_exit(0);
    return 0;
}

namespace zel {

check_result run_check(int count, char **words, std::int64_t now)
{
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

    source_guard source;
    bool begun = false;
    const check_result result = read_or_begin(path.get(), now, source, begun);
    if (result != check_result::done)
        return result;
    stamp(source.get());
    clear_all_file_list(source.get());
    clear_all_used(source.get());
    if (!scan_paths(source.get(), count, words, now))
        return check_result::ended;
    LogPrint(1, "check: write file\n");
    write_how how;
    how.now = std::time(nullptr);
    const write_answer written = write_source(path.get(), source.get(), how);
    if (begun)
        say_begun(path.get(), written);
    LogPrint(1, "check: free group\n");
    source.reset();
    LogPrint(1, "check: exit\n");
    return check_result::done;
}

} // namespace zel

int check(int count, char **words)
{
    const zel::check_result result = zel::run_check(count, words, lang_global.start_time);
    if (result == zel::check_result::ended)
        lang_exit(0);
    return result == zel::check_result::done ? 0 : 1;
}
