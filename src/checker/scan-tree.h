#pragma once

// Which files of a tree are scanned for requests: C sources and headers, scripts and configuration
// files, by their names. Links are followed, but not to a directory that is being searched already.

#include <functional>
#include <string_view>

namespace zel {

struct tree_scan {
    std::function<int(const char *file)> scan; // anything but 0 ends the search and is its result
    // A directory is logged, and passed over; errno says why.
    std::function<void(const char *directory)> not_opened;
    // What the system does not let look at (errno says why) is passed over; it may be a directory.
    std::function<void(const char *path)> not_seen;
    // Which files of a directory, by their names, where it is not those that the check scans.
    bool (*wants)(std::string_view name) = nullptr;
};

// -1 also, after not_opened, for a directory that cannot be read to its end. A path that is a
// regular file is scanned whatever its name; any other is searched as a directory.
int scan_path(const char *path, const tree_scan &to);
int scan_directory(const char *directory, const tree_scan &to);

} // namespace zel
