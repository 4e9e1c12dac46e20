#include "support/dir_list.h"

#include "support/file-call.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/text.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

void close_dir(DIR *dir) { closedir(dir); }
using dir_guard = std::unique_ptr<DIR, zel::release<close_dir>>;

// Returns the next entry's name without "." and ".."; null at the end. The name is valid until the
// next call.
const char *next_entry(DIR *dir)
{
    while (const dirent *entry = readdir(dir))
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            return entry->d_name;
    return nullptr;
}

int compare_names(const void *a, const void *b)
{
    return std::strcmp(static_cast<const char *>(a), static_cast<const char *>(b));
}

// Longest work path that cre_dir builds, with its final NUL.
constexpr std::size_t work_path_size = 2048;

enum {
    CRE_OK = 0,
    CRE_NO_HOST = 1,
    CRE_NO_HOST_END = 2,
    CRE_NO_SHARE = 3,
    CRE_NO_NAME = 6,
    CRE_UNEXPECTED = 7,
    CRE_NOT_CREATED = 8,
    CRE_NO_ACCESS = 10,
    CRE_GO_ON = -1 // not a result: the next token is due
};

// State of cre_dir: the path as far as it exists, one name further, and the text that is left.
struct dir_maker {
    const char *cursor;
    std::string token; // room for every token; text of the one read last
    std::string work;
    std::string parent;

    int next() { return cd_next_token(&cursor, token.data()); }

    void add_token() { work += token.c_str(); }

    bool next_is(int kind)
    {
        if (next() != kind)
            return false;
        add_token();
        return true;
    }
};

int not_created()
{
    LogPrint(1, "cre_dir dir: ERROR 8 (UNIX)\n");
    return CRE_NOT_CREATED;
}

bool parent_is_writable(std::string parent)
{
    if (parent.empty())
        return true;
    const bool separated = zel::is_separator(parent.back());
    if (separated)
        parent.back() = '/';
    // The root has no name without its separator.
    const bool cut = separated && parent.size() > 1;
    if (zel_access(parent.substr(0, parent.size() - (cut ? 1 : 0)).c_str(), W_OK) == 0)
        return true;
    if (separated)
        LogPrint(1, "cre_dir dir     ->%s<- ERROR 9.1 no write access\n", parent.c_str());
    else
        LogPrint(1, "cre_dir dir     ->%s<- ERROR 9.2 no write access\n", parent.c_str());
    return false;
}

int create(const dir_maker &maker)
{
    if (!parent_is_writable(maker.parent))
        return CRE_NO_ACCESS;
    return zel_mkdir(maker.work.c_str(), 0774) == 0 ? CRE_GO_ON : not_created();
}

// Call after a name has been added to the work path. Makes the directory if there is none.
int make_sure(dir_maker &maker)
{
    // A path that is too long is not made: once cut, it would name another directory.
    if (maker.work.size() >= work_path_size)
        return not_created();
    const char *path = maker.work.c_str();
    LogPrint(1, "cre_dir dir buf >%s< check existence\n", path);
    if (zel_access(path, F_OK) != 0) {
        if (const int result = create(maker); result != CRE_GO_ON)
            return result;
    } else {
        // Only logged: the directory may be a mere step on the way.
        if (zel_access(path, W_OK) != 0)
            LogPrint(1, "cre_dir dir     ->%s<- INFO 10 no write access\n", path);
        if (zel_access(path, R_OK) != 0)
            LogPrint(1, "cre_dir dir     ->%s<- INFO 11 no read  access\n", path);
    }
    maker.parent = maker.work;
    return CRE_GO_ON;
}

int after_separator(dir_maker &maker)
{
    maker.add_token();
    switch (maker.next()) {
    case CD_NAME:
        maker.add_token();
        return make_sure(maker);
    case CD_END:
        return CRE_OK;
    default:
        LogPrint(1, "cre_dir dir: ERROR 4 >%s<\n", maker.work.c_str());
        return CRE_NO_NAME;
    }
}

// A drive and its root are taken to be there: only the name behind them is made.
int after_drive(dir_maker &maker)
{
    maker.work = maker.token.c_str();
    if (!maker.next_is(CD_SEPARATOR) || !maker.next_is(CD_NAME))
        return CRE_OK;
    return make_sure(maker);
}

// "//host/share": only the share is a directory.
int after_network(dir_maker &maker)
{
    maker.work = maker.token.c_str();
    if (!maker.next_is(CD_NAME)) {
        LogPrint(1, "cre_dir dir: ERROR 1 >%s<\n", maker.work.c_str());
        return CRE_NO_HOST;
    }
    if (!maker.next_is(CD_SEPARATOR)) {
        LogPrint(1, "cre_dir dir: ERROR 2 >%s<\n", maker.work.c_str());
        return CRE_NO_HOST_END;
    }
    if (!maker.next_is(CD_NAME)) {
        LogPrint(1, "cre_dir dir: ERROR 3 >%s<\n", maker.work.c_str());
        return CRE_NO_SHARE;
    }
    return make_sure(maker);
}

int make_next(dir_maker &maker)
{
    switch (maker.next()) {
    case CD_END:
        LogPrint(1, "cre_dir dir: exit OK\n");
        return CRE_OK;
    case CD_NAME:
        maker.add_token();
        return make_sure(maker);
    case CD_SEPARATOR:
        return after_separator(maker);
    case CD_DRIVE:
        return after_drive(maker);
    case CD_NETWORK:
        return after_network(maker);
    default:
        LogPrint(1, "cre_dir exit ERROR 7\n");
        return CRE_UNEXPECTED;
    }
}

} // namespace

zel_list *dir_list(zel_list *list, const char *path, const char *ending)
{
    // A null path counts as a missing folder, so that the log has an errno to show.
    errno = path == nullptr ? ENOENT : 0;
    const dir_guard dir(path == nullptr ? nullptr : opendir(path));
    if (dir == nullptr) {
        LogPrint(1, "dir_list entry  exit(1) %d ->%s<-\n", errno,
                 path == nullptr ? "(null)" : path);
        return nullptr;
    }
    zel::list_end end(list);
    while (const char *name = next_entry(dir.get())) {
        if (ending != nullptr && !std::string_view(name).ends_with(ending))
            continue;
        zel::string_guard copy(zel_strdup(name));
        // Without memory the list ends early: callers use what there is.
        if (copy == nullptr || !end.append(copy.get()))
            break;
        static_cast<void>(copy.release());
    }
    return end.head;
}

void dir_list_free(zel_list *list) { zel_list_free_with_data(list); }

zel_list *dir_list_sort(zel_list *list) { return zel_list_sort(list, compare_names); }

char *dir_list_file(const zel_list *element)
{
    return element == nullptr ? nullptr : static_cast<char *>(element->data);
}

int cd_next_token(const char **cursor, char *buffer)
{
    const char *text = *cursor;
    int kind = CD_NAME;
    std::size_t length = 2;
    // The longer beginnings come first: a drive's letter would pass for a name, and the first of
    // two separators for a single one.
    if (*text == '\0') {
        kind = CD_END;
        length = 0;
    } else if (text[1] == ':') {
        kind = CD_DRIVE;
    } else if (zel::is_separator(text[0]) && text[1] == text[0]) {
        kind = CD_NETWORK;
    } else if (text[0] == '.' && zel::is_separator(text[1])) {
        // "./" names no directory of its own.
        kind = CD_SEPARATOR;
    } else if (zel::is_separator(text[0])) {
        kind = CD_SEPARATOR;
        length = 1;
    } else {
        length = std::strcspn(text, "/\\");
    }
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
    *cursor = text + length;
    return kind;
}

int cre_dir(const char *base, const char *dir)
{
    if (dir == nullptr || *dir == '\0') {
        LogPrint(1, dir == nullptr ? "cre_dir dir: dir null ptr\n" : "cre_dir dir: dir null len\n");
        return CRE_OK;
    }
    dir_maker maker{dir, std::string(std::strlen(dir) + 3, '\0'), {}, {}};
    if (base != nullptr) {
        LogPrint(1, "cre_dir dir: dir >%s<:>%s<\n", base, dir);
        LogPrint(1, "cre_dir dir: wd  >%s<\n", base);
        maker.work = base;
        if (maker.work.empty() || !zel::is_separator(maker.work.back()))
            maker.work += '/';
    } else {
        LogPrint(1, "cre_dir dir: dir >%s<\n", dir);
    }
    // The first name is made in the base directory, so that is what must be writable.
    maker.parent = maker.work;
    int result = CRE_GO_ON;
    while (result == CRE_GO_ON)
        result = make_next(maker);
    return result;
}
