#include "family/string.h"

#include "support/file-call.h"
#include "support/log-print.h"
#include "support/misc-error.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <glib.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool read_size_part(std::string_view part, int &value)
{
    // sscanf needs a NUL, and the part stands inside a longer text.
    std::array<char, 32> text{};
    if (part.empty() || part.size() >= text.size())
        return false;
    part.copy(text.data(), part.size());
    // Reads the number at the start of the part: what follows its digits is not looked at.
    return std::sscanf(text.data(), "%d", &value) == 1;
}

// "to short" is deliberate, here and below: the messages are an interface.
int copy_drive(std::string_view drive, char *out, int size)
{
    if (drive.size() >= static_cast<std::size_t>(size)) {
        LogPrint(1, "zel_path_get_drive: buffer to short %d\n", size);
        return 1;
    }
    drive.copy(out, drive.size());
    out[drive.size()] = '\0';
    return 0;
}

} // namespace

namespace zel {

bool read_width_height(const char *text, const char *marks, int &width, int &height)
{
    const std::string_view pair = text == nullptr ? "" : text;
    const std::size_t mark = pair.find_first_of(marks);
    int first = 0;
    int second = 0;
    if (mark == std::string_view::npos || !read_size_part(pair.substr(0, mark), first) ||
        !read_size_part(pair.substr(mark + 1), second))
        return false;
    // Stored only now, so that both numbers change or neither does.
    width = first;
    height = second;
    return true;
}

} // namespace zel

int zel_strlen(const char *text)
{
    return text == nullptr ? 0 : static_cast<int>(std::strlen(text));
}

char *zel_substr(const char *text, int start, int length)
{
    const std::string_view whole = text == nullptr ? "" : text;
    // Callers count positions from 1.
    if (start < 1 || static_cast<std::size_t>(start) > whole.size())
        return nullptr;
    const std::string_view rest = whole.substr(static_cast<std::size_t>(start) - 1);
    const std::string_view part =
        length <= 0 ? rest : rest.substr(0, static_cast<std::size_t>(length));
    char *copy = strndup(part.data(), part.size());
    if (copy == nullptr)
        _zel_fatal("string", __LINE__, "zel_substr: ERROR not enough memory\n");
    return copy;
}

int zel_get_sub_str(char **cursor, char *out, char separator, int size)
{
    char *text = *cursor;
    if (text == nullptr || *text == '\0')
        return 0;
    // The cursor stands on the separator that ended the last part.
    if (*text == separator)
        ++text;
    char *end = text;
    while (*end != '\0' && *end != separator)
        ++end;
    *cursor = end;
    if (out != nullptr && size > 0) {
        const auto length =
            std::min(static_cast<std::size_t>(end - text), static_cast<std::size_t>(size) - 1);
        std::memcpy(out, text, length);
        out[length] = '\0';
    }
    return 1;
}

char *zel_str_trim_hk(char *text)
{
    if (text == nullptr)
        return nullptr;
    // The length before the move counts the quote, too, so the NUL moves along.
    if (*text == '"')
        std::memmove(text, text + 1, std::strlen(text));
    const std::size_t length = std::strlen(text);
    if (length > 0 && text[length - 1] == '"')
        text[length - 1] = '\0';
    return text;
}

void zel_space_to_char(char *text, char character) { zel_str_replace_char(text, ' ', character); }

int zel_str_count_lf(const char *text)
{
    const std::string_view whole = text == nullptr ? "" : text;
    return static_cast<int>(std::count(whole.begin(), whole.end(), '\n'));
}

int zel_str_float_cmp(const char *text, float number)
{
    // Reads a decimal point in every locale, unlike strtod.
    const float value = text == nullptr ? 0.0F : static_cast<float>(g_ascii_strtod(text, nullptr));
    if (value < number)
        return -1;
    return value > number ? 1 : 0;
}

int zel_str_diff(char *out, const char *a, const char *b)
{
    for (; *a != '\0' && *b != '\0'; ++a, ++b)
        if (*a != *b)
            *out++ = *b;
    const char *rest = *a != '\0' ? a : b;
    // out holds the longer text, and each character before the rest added one at most.
    std::strcpy(out, rest);
    if (*rest == '\0')
        return 0;
    return rest == a ? 1 : -1;
}

int zel_str_get_width_height(const char *text, int *width, int *height)
{
    return zel::read_width_height(text, "x", *width, *height) ? 0 : 1;
}

int zel_path_conv(char *path) { return zel_path_to_unix(path); }

int zel_path_to_dos(char *path) { return zel_str_replace_char(path, '/', '\\'); }

int zel_split_path(const char *path, char **dir)
{
    char *file = nullptr;
    const int result = zel_split_path_file(path, dir, &file);
    std::free(file);
    return result;
}

int zel_split_file(const char *path, char **file)
{
    *file = nullptr;
    if (path == nullptr)
        return 1;
    struct stat status {};
    // A folder's path has no file part, whatever its last name looks like.
    if (zel_stat(path, &status) == 0 && S_ISDIR(status.st_mode)) {
        LogPrint(1, "zel_split_file(0): dir >%s<\n", path);
        return 1;
    }
    char *dir = nullptr;
    zel_split_path_file(path, &dir, file);
    std::free(dir);
    return 0;
}

int zel_path_get_drive(const char *path, char *out, int size)
{
    if (path == nullptr || out == nullptr) {
        LogPrint(1, "zel_path_get_drive: null ptr %p:%p\n", static_cast<const void *>(path),
                 static_cast<void *>(out));
        return 1;
    }
    const std::string_view whole = path;
    if (whole.size() < 2) {
        LogPrint(1, "zel_path_get_drive: path to short\n");
        return 1;
    }
    // The shortest drive, as in "C:", takes three bytes with its NUL.
    if (size < 3) {
        LogPrint(1, "zel_path_get_drive: buffer to short\n");
        return 1;
    }
    if (whole[1] == ':')
        return copy_drive(whole.substr(0, 2), out, size);
    // The name of a host runs to the next separator, or to the end.
    if (zel::is_separator(whole[0]) && zel::is_separator(whole[1]))
        return copy_drive(whole.substr(0, whole.find_first_of("/\\", 2)), out, size);
    return 1;
}

int check_file_exist_read(const char *path)
{
    if (path == nullptr || zel_access(path, F_OK) != 0)
        return 1;
    return zel_access(path, R_OK) == 0 ? 0 : 2;
}

int zel_if_ext(const zel_list *extensions, const char *name)
{
    // Without a list every ending will do.
    if (extensions == nullptr || name == nullptr)
        return 1;
    // The endings of the list have their dot, too.
    const char *ext = std::strrchr(name, '.');
    for (; ext != nullptr && extensions != nullptr; extensions = extensions->next) {
        const auto *listed = static_cast<const char *>(extensions->data);
        if (listed != nullptr && std::strcmp(listed, ext) == 0)
            return 1;
    }
    return 0;
}
