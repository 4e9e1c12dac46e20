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
    return zel::check_file(w.index, path);
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

int check_directory(zel::item_index &index, const char *directory)
{
    walk w{index, {}};
    struct stat status;
    if (zel_stat(directory, &status) == 0)
        w.open.push_back({status.st_dev, status.st_ino});
    return search_directory(w, directory);
}

int check_path(zel::item_index &index, const char *path)
{
    LogPrint(1, "check: check directory >%s<\n", path);
    std::printf("check: check directory >%s<\n", path);
    struct stat status;
    const bool is_file = zel_stat(path, &status) == 0 && S_ISREG(status.st_mode);
    const int result = is_file ? zel::check_file(index, path) : check_directory(index, path);
    LogPrint(1, "check: free\n");
    return result;
}

// ---- The command

int end_with_usage()
{
    check_usage();
    lang_exit(0);
    return 1;
}

// The reader may end the process. Where a handler keeps it alive, this tells such an end from a
// source that merely cannot be read.
struct exit_watch {
    exit_watch()
    {
        ended = false;
        outer = lang_set_exit_handler(note);
        if (outer == nullptr)
            lang_set_exit_handler(nullptr);
    }
    ~exit_watch() { lang_set_exit_handler(outer); }
    exit_watch(const exit_watch &) = delete;
    exit_watch &operator=(const exit_watch &) = delete;

    static void note(int status)
    {
        ended = true;
        outer(status);
    }
    static bool ended;
    static lang_exit_handler outer;
};
bool exit_watch::ended;
lang_exit_handler exit_watch::outer;

LangSource *read_source(const char *path, bool &ended)
{
    LogPrint(1, "check: read file >%s<\n", path);
    std::printf("check: read file >%s<\n", path);
    const exit_watch watch;
    LangSource *source = lang_read_file(path);
    ended = exit_watch::ended;
    if (source != nullptr || ended)
        return source;
    source = lang_alloc_group();
    std::puts("check: WARNING no group");
    LogPrint(1, "check: WARNING no group\n");
    return source;
}

void stamp(LangSource *source)
{
    char date[1024];
    source->ctime = std::time(nullptr);
    sprintf_date(date, "%Y-%m-%d %H:%M:%S", source->ctime);
    zel::replace_string(source->create_date, zel_strdup(date));
}

// Looks for every request of every path. False when the run is to end.
bool scan_paths(LangSource *source, int count, char **paths)
{
    LogPrint(1, "check: check directorys start\n");
    zel::item_index index(source);
    for (int i = 0; i < count; ++i)
        if (check_path(index, paths[i]) != 0)
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
    return check_directory(index, directory);
}

int check(int count, char **words)
{
    LogPrint(1, "check: entry\n");
    argv_prep(&count, &words);
    if (check_argv(&count, &words, check_options) == OPTION_HELP)
        return end_with_usage();
    char *name = nullptr;
    argv_get_str(&count, &words, &name);
    const zel::string_guard path(name);
    if (path == nullptr || count < 1)
        return end_with_usage();

    bool ended = false;
    source_guard source(read_source(path.get(), ended));
    if (source == nullptr || ended)
        return 1;
    stamp(source.get());
    clear_all_file_list(source.get());
    clear_all_used(source.get());
    if (!scan_paths(source.get(), count, words))
        return 1;
    LogPrint(1, "check: write file\n");
    lang_write_file(path.get(), source.get());
    LogPrint(1, "check: free group\n");
    source.reset();
    LogPrint(1, "check: exit\n");
    return 0;
}
