#include "family/dir_list.h"

#include "support/log-print.h"

#include <cstring>
#include <filesystem>
#include <system_error>

namespace {

int compare_names_back(const void *a, const void *b)
{
    return std::strcmp(static_cast<const char *>(b), static_cast<const char *>(a));
}

} // namespace

int dir_list_search(const zel_list *list, const char *name)
{
    for (; list != nullptr; list = list->next)
        if (name != nullptr && std::strcmp(dir_list_file(list), name) == 0)
            return 1;
    return 0;
}

void dir_list_print(std::FILE *stream, const zel_list *list)
{
    for (; list != nullptr; list = list->next)
        std::fprintf(stream, "dir_list_print >%s<\n", dir_list_file(list));
}

zel_list *dir_list_sort_back(zel_list *list) { return zel_list_sort(list, compare_names_back); }

int if_files_in_dir(const char *path)
{
    std::error_code error;
    const std::filesystem::directory_iterator first(path == nullptr ? "" : path, error);
    if (error) {
        LogPrint(1, "if_files_in_dir exit(1) %d ->%s<-\n", error.value(),
                 path == nullptr ? "(null)" : path);
        return 0;
    }
    return first != std::filesystem::directory_iterator() ? 1 : 0;
}
