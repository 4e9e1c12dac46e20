#include "family/cfg_file_name.h"

#include "family/dir_list.h"
#include "support/file-call.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/string.h"
#include "support/text.h"

#include <cstring>
#include <memory>
#include <unistd.h>

namespace {

constexpr int candidate_count = 4;

// The number at the front of a file name; 0 stands for "any".
struct file_version {
    int a;
    int b;
    int c;
};

// Version that candidate number 1 to 4 asks for: each gives up one number more, from the right.
file_version candidate_version(const file_version &wanted, int number)
{
    return {number < 4 ? wanted.a : 0, number < 3 ? wanted.b : 0, number < 2 ? wanted.c : 0};
}

// Returns the first candidate in the directory that exists; null when none does.
zel::string_guard find_in(const char *search, const char *dir, const file_version &wanted,
                          const char *name)
{
    for (int number = 1; number <= candidate_count; ++number) {
        const file_version version = candidate_version(wanted, number);
        zel::string_guard path(zel_strdup_printf("%s/%s/%03d-%03d-%02d-%s", search, dir, version.a,
                                                 version.b, version.c, name));
        if (path == nullptr)
            return nullptr;
        LogPrint(1, "gen_check_cfg_file_name: (%d) %s\n", number, path.get());
        // Only that it exists: a candidate that cannot be read is still the one to use.
        if (zel_access(path.get(), F_OK) == 0)
            return path;
    }
    return nullptr;
}

// Returns the version directories below the search directory, newest first; null, after a line in
// the log, when there are none.
dir_list_guard version_dirs(const char *search)
{
    if (zel_access(search, F_OK) != 0) {
        LogPrint(1, "gen_check_cfg_file_name: WARNING path >%s< does not exist\n", search);
        return nullptr;
    }
    dir_list_guard dirs(dir_list_sort_back(dir_list(nullptr, search, nullptr)));
    if (dirs == nullptr)
        LogPrint(1, "gen_check_cfg_file_name: WARNING >%s< no entrys\n", search);
    return dirs;
}

} // namespace

int gen_check_cfg_file_name(char *out, int size, const char *base, const char *sub, int major,
                            int minor, int a, int b, int c, const char *name)
{
    if (name == nullptr || *name == '\0') {
        LogPrint(1, "gen_check_cfg_file_name: WARNING no file name\n");
        return 1;
    }
    LogPrint(1, "gen_check_cfg_file_name: entry\n");
    const zel::string_guard search(
        zel_strdup_printf("%s/%s", zel::or_empty(base), zel::or_empty(sub)));
    // With three digits each, comparing the names compares the versions.
    const zel::string_guard key(zel_strdup_printf("%03d-%03d", major, minor));
    if (search == nullptr || key == nullptr)
        return 1;
    const dir_list_guard dirs = version_dirs(search.get());
    if (dirs == nullptr)
        return 1;
    zel::string_guard found;
    for (const zel_list *node = dirs.get(); node != nullptr && found == nullptr; node = node->next)
        // Directories of newer versions come first and are passed over.
        if (std::strcmp(dir_list_file(node), key.get()) <= 0)
            found = find_in(search.get(), dir_list_file(node), {a, b, c}, name);
    const std::size_t length = found == nullptr ? 0 : std::strlen(found.get());
    // A path that does not fit is not cut: it would name another file.
    if (length == 0 || static_cast<int>(length) >= size) {
        LogPrint(1, "gen_check_cfg_file_name: WARNING no cfg file found\n");
        return 1;
    }
    std::memcpy(out, found.get(), length + 1);
    LogPrint(1, "gen_check_cfg_file_name: cfg file found >%s<\n", out);
    return 0;
}
