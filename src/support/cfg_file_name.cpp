#include "support/cfg_file_name.h"

#include "support/dir_list.h"
#include "support/file-call.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/string.h"

#include <memory>
#include <string>
#include <unistd.h>

namespace {

using dir_list_guard = std::unique_ptr<zel_list, zel::release<dir_list_free>>;

constexpr int candidate_count = 4;

// The number at the front of a file name; 0 stands for "any".
struct file_version {
    int a;
    int b;
    int c;
};

std::string formatted(zel::string_guard text)
{
    return text == nullptr ? std::string() : std::string(text.get());
}

// The version that candidate number 1 to 4 asks for: each gives up one number more.
file_version candidate_version(const file_version &wanted, int number)
{
    return {number < 4 ? wanted.a : 0, number < 3 ? wanted.b : 0, number < 2 ? wanted.c : 0};
}

// The first candidate in the directory that exists; empty when none does.
std::string find_in(const std::string &dir, const file_version &wanted, const char *name)
{
    for (int number = 1; number <= candidate_count; ++number) {
        const file_version version = candidate_version(wanted, number);
        std::string path = formatted(zel::string_guard(zel_strdup_printf(
            "%s/%03d-%03d-%02d-%s", dir.c_str(), version.a, version.b, version.c, name)));
        LogPrint(1, "gen_check_cfg_file_name: (%d) %s\n", number, path.c_str());
        if (zel_access(path.c_str(), F_OK) == 0)
            return path;
    }
    return {};
}

// The version directories below the search directory, newest first; null, logged, without any.
dir_list_guard version_dirs(const std::string &search)
{
    if (zel_access(search.c_str(), F_OK) != 0) {
        LogPrint(1, "gen_check_cfg_file_name: WARNING path >%s< does not exist\n", search.c_str());
        return nullptr;
    }
    dir_list_guard dirs(dir_list_sort_back(dir_list(nullptr, search.c_str(), nullptr)));
    if (dirs == nullptr)
        LogPrint(1, "gen_check_cfg_file_name: WARNING >%s< no entrys\n", search.c_str());
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
    const std::string search =
        std::string(base == nullptr ? "" : base) + "/" + (sub == nullptr ? "" : sub);
    const dir_list_guard dirs = version_dirs(search);
    if (dirs == nullptr)
        return 1;
    const std::string key =
        formatted(zel::string_guard(zel_strdup_printf("%03d-%03d", major, minor)));
    std::string found;
    for (const zel_list *node = dirs.get(); node != nullptr && found.empty(); node = node->next)
        if (dir_list_file(node) <= key)
            found = find_in(search + "/" + dir_list_file(node), {a, b, c}, name);
    if (found.empty() || static_cast<int>(found.size()) >= size) {
        LogPrint(1, "gen_check_cfg_file_name: WARNING no cfg file found\n");
        return 1;
    }
    out[found.copy(out, found.size())] = '\0';
    LogPrint(1, "gen_check_cfg_file_name: cfg file found >%s<\n", out);
    return 0;
}
