#include "support/string.h"

#include "support/log-print.h"
#include "support/misc-error.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

constexpr std::string_view separators = "/\\";

char *new_string(std::string_view text)
{
    char *copy = static_cast<char *>(std::malloc(text.size() + 1));
    if (copy == nullptr) {
        _zel_fatal("string", __LINE__, "not enough memory");
        return nullptr;
    }
    text.copy(copy, text.size());
    copy[text.size()] = '\0';
    return copy;
}

// Index of the last separator; npos when there is none.
std::size_t last_separator(std::string_view path) { return path.find_last_of(separators); }

// The file part, null when it is empty.
char *new_file_part(std::string_view path)
{
    const std::size_t at = last_separator(path);
    const std::string_view file = at == std::string_view::npos ? path : path.substr(at + 1);
    return file.empty() ? nullptr : new_string(file);
}

char *new_dir_part(std::string_view path)
{
    const std::size_t at = last_separator(path);
    return at == std::string_view::npos ? nullptr : new_string(path.substr(0, at));
}

// The name without this very extension.
std::string_view without_ext(std::string_view name, std::string_view ext)
{
    const std::size_t dot = name.rfind('.');
    if (dot != std::string_view::npos && name.substr(dot + 1) == ext)
        return name.substr(0, dot);
    return name;
}

} // namespace

char *dup_ptr_from_to(const char *base, const char *from, const char *to)
{
    if (base == nullptr || from == nullptr || to <= from)
        return nullptr;
    return new_string({from, strnlen(from, static_cast<std::size_t>(to - from))});
}

// Line feeds are no blanks here: they belong to the text.
char *zel_str_trim(char *text)
{
    if (text == nullptr)
        return nullptr;
    const std::size_t leading = std::strspn(text, " \t");
    std::size_t length = std::strlen(text) - leading;
    std::memmove(text, text + leading, length + 1);
    while (length > 0 && (text[length - 1] == ' ' || text[length - 1] == '\t'))
        text[--length] = '\0';
    return text;
}

int zel_str_replace_char(char *text, char from, char to)
{
    int replaced = 0;
    for (; text != nullptr && *text != '\0'; ++text) {
        if (*text != from)
            continue;
        *text = to;
        ++replaced;
        if (to == '\0') // the text ends here now
            break;
    }
    return replaced;
}

int zel_str_to_num(const char *text, const argv_tab_t *table)
{
    // No text, like a text that the table lacks, has the number of the closing row.
    while (table->word != nullptr && (text == nullptr || std::strcmp(table->word, text) != 0))
        ++table;
    return table->id;
}

char *zel_strdup_printf(const char *format, ...)
{
    std::va_list args;
    va_start(args, format);
    char *text = zel_strdup_vprintf(format, args);
    va_end(args);
    return text;
}

char *zel_strdup_vprintf(const char *format, std::va_list args)
{
    // The first run only measures. It walks a copy, because arguments can be walked once.
    std::va_list counted;
    va_copy(counted, args);
    const int length = std::vsnprintf(nullptr, 0, format, counted);
    va_end(counted);
    if (length < 0)
        return nullptr;
    const std::size_t size = static_cast<std::size_t>(length) + 1;
    char *text = static_cast<char *>(std::malloc(size));
    if (text == nullptr) {
        LogPrint(1, "zel_strdup_printf: ERROR not enough memory\n");
        return nullptr;
    }
    std::vsnprintf(text, size, format, args);
    return text;
}

int zel_path_to_unix(char *path) { return zel_str_replace_char(path, '\\', '/'); }

// This system writes paths in the same way.
int zel_path_to_os(char *path) { return zel_path_to_unix(path); }

int zel_split_path_file(const char *path, char **dir, char **file)
{
    *dir = nullptr;
    *file = nullptr;
    if (path == nullptr)
        return 1;
    *dir = new_dir_part(path);
    *file = new_file_part(path);
    return 0;
}

char *zel_del_file_ext(char *path)
{
    char *dot = path == nullptr ? nullptr : std::strrchr(path, '.');
    // Neither a name that begins with a dot nor a dot in a folder's name has an ending.
    if (dot != nullptr && dot != path && std::strpbrk(dot, "/\\:") == nullptr)
        *dot = '\0';
    return path;
}

char *zel_del_cmp_file_ext(char *path, const char *ext)
{
    if (path == nullptr || ext == nullptr)
        return nullptr;
    path[without_ext(path, ext).size()] = '\0';
    return path;
}

char *zel_add_file_ext(char *dst, const char *name, const char *ext)
{
    if (dst == nullptr || name == nullptr || ext == nullptr)
        return nullptr;
    const std::size_t length = without_ext(name, ext).size();
    std::memmove(dst, name, length); // the name may stand in dst
    dst[length] = '.';
    std::strcpy(dst + length + 1, ext);
    return dst;
}

int zel_gen_file_name_with_ext(char *path, const char *ext)
{
    if (path == nullptr || ext == nullptr)
        return 1;
    const std::string_view whole = path;
    const std::size_t slash = last_separator(whole);
    const std::size_t start = slash == std::string_view::npos ? 0 : slash + 1;
    if (start > 0)
        path[slash] = '/';
    // Only the name behind the last separator: a dot in a folder's name begins no extension.
    zel_add_file_ext(path + start, path + start, ext);
    return 0;
}
