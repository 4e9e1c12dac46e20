#include "checker/scan-tree.h"

#include "support/file-call.h"
#include "support/gen_path.h"
#include "support/log-print.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zel {

namespace {

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

struct file_id {
    dev_t device;
    ino_t number;
    bool operator==(const file_id &) const = default;
};

struct tree_walk {
    const tree_scan &to;
    std::vector<file_id> open; // the directories from the start of the walk down to this one
};

struct directory_release {
    void operator()(DIR *directory) const noexcept { closedir(directory); }
};
using directory_guard = std::unique_ptr<DIR, directory_release>;

int search_directory(tree_walk &w, const char *directory);

int step_down(tree_walk &w, const char *path, file_id id)
{
    // A link back up the tree: following it would never end.
    if (std::find(w.open.begin(), w.open.end(), id) != w.open.end())
        return 0;
    LogPrint(1, "_check_rec: step down >%s<\n", path);
    w.open.push_back(id);
    const int result = search_directory(w, path);
    w.open.pop_back();
    LogPrint(1, "_check_rec: step up >%s<\n", path);
    return result;
}

int search_entry(tree_walk &w, const char *path, const char *name)
{
    struct stat status;
    const bool known = zel_stat(path, &status) == 0;
    const bool is_wanted = w.to.wants == nullptr ? is_scanned(name) : w.to.wants(name);
    if (known && S_ISDIR(status.st_mode))
        return step_down(w, path, {status.st_dev, status.st_ino});
    // A link that leads nowhere is no loss, and the scan itself complains about its own files.
    if (!known && errno != ENOENT && errno != ELOOP && !is_wanted)
        w.to.not_seen(path);
    LogPrint(1, "_check_rec: check file >%s<>%s<\n", path, name);
    // Pipes and devices are no sources, and reading one might not end. What has no status, such as
    // a link that leads nowhere, is left to the scan to complain about.
    if (!is_wanted || (known && !S_ISREG(status.st_mode)))
        return 0;
    return w.to.scan(path);
}

int search_directory(tree_walk &w, const char *directory)
{
    LogPrint(1, "_check_rec: entry >%s<\n", directory);
    // GLib's function would leave another cause.
    const directory_guard entries(opendir(directory));
    if (entries == nullptr) {
        // Logging may change errno.
        const int error = errno;
        LogPrint(1, "_check_rec: ERROR(1) open >%s<\n", directory);
        errno = error;
        w.to.not_opened(directory);
        return 0;
    }
    std::string path;
    for (;;) {
        // Only errno tells an error from the end of the directory.
        errno = 0;
        const dirent *entry = readdir(entries.get());
        if (entry == nullptr)
            break;
        const char *name = entry->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        path.assign(std::strlen(directory) + std::strlen(name) + 4, '\0');
        gen_path(path.data(), 0, directory, name, nullptr);
        if (const int result = search_entry(w, path.c_str(), name); result != 0)
            return result;
    }
    if (errno != 0) { // what is missing would count as not used
        w.to.not_opened(directory);
        return -1;
    }
    LogPrint(1, "_check_rec: exit(2)  >%s<\n", directory);
    return 0;
}

} // namespace

int scan_directory(const char *directory, const tree_scan &to)
{
    tree_walk w{to, {}};
    struct stat status;
    // A link below may lead back to the start.
    if (zel_stat(directory, &status) == 0)
        w.open.push_back({status.st_dev, status.st_ino});
    return search_directory(w, directory);
}

int scan_path(const char *path, const tree_scan &to)
{
    struct stat status;
    const bool is_file = zel_stat(path, &status) == 0 && S_ISREG(status.st_mode);
    return is_file ? to.scan(path) : scan_directory(path, to);
}

} // namespace zel
