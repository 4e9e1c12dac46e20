#include "support/gen_path.h"

#include "support/log-print.h"
#include "support/text.h"

#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace {

// A path that grows in the caller's buffer. Pieces go in whole or not at all, so that a path that
// does not fit never names another file.
struct joined_path {
    char *buffer;
    std::size_t limit; // the length must stay below it
    std::size_t length;

    bool ends_in_separator() const { return length > 0 && zel::is_separator(buffer[length - 1]); }

    bool add(std::string_view piece)
    {
        // An empty piece fits even where there is no room.
        if (piece.size() >= limit - length)
            return piece.empty();
        std::memmove(buffer + length, piece.data(), piece.size());
        length += piece.size();
        buffer[length] = '\0';
        return true;
    }

    bool add_separator() { return ends_in_separator() || add("/"); }
};

bool add_first(joined_path &path, const char *first)
{
    const std::size_t start = path.length;
    if (!path.add(first))
        return false;
    if (path.buffer[start] == '\\')
        path.buffer[start] = '/';
    return path.add_separator();
}

// One separator at either end is dropped, so that components may bring their own.
bool add_further(joined_path &path, std::string_view component)
{
    if (zel::is_separator(component.front()))
        component.remove_prefix(1);
    if (!component.empty() && zel::is_separator(component.back()))
        component.remove_suffix(1);
    return path.add(component) && path.add("/");
}

// Takes off the last separator. Roots keep theirs: "/" and "c:/".
void drop_last_separator(joined_path &path)
{
    const bool root = path.length == 1 || (path.length == 3 && path.buffer[1] == ':');
    if (path.ends_in_separator() && !root)
        path.buffer[--path.length] = '\0';
}

int join(joined_path &path, const char *first, std::va_list args)
{
    if (path.length > 0 && !path.add_separator())
        return 1;
    if (first == nullptr)
        return 0;
    if (!add_first(path, first))
        return 1;
    for (const char *next = va_arg(args, const char *); next != nullptr && *next != '\0';
         next = va_arg(args, const char *))
        if (!add_further(path, next))
            return 1;
    drop_last_separator(path);
    return 0;
}

} // namespace

int gen_path(char *buffer, int append, const char *first, ...)
{
    if (buffer == nullptr) {
        LogPrint(1, "gen_path: ERROR: no buffer\n");
        return 1;
    }
    if (append == 0)
        *buffer = '\0';
    // Nobody knows the buffer's size here: the caller vouches for it.
    joined_path path{buffer, SIZE_MAX, std::strlen(buffer)};
    std::va_list args;
    va_start(args, first);
    const int result = join(path, first, args);
    va_end(args);
    return result;
}

int gen_path_ext(char *buffer, int append, std::size_t size, const char *first, ...)
{
    if (buffer == nullptr) {
        LogPrint(1, "gen_path: ERROR: no buffer\n");
        return 1;
    }
    if (size == 0)
        return 1;
    if (append == 0)
        *buffer = '\0';
    // The buffer need not hold a NUL within its size.
    const std::size_t length = strnlen(buffer, size);
    if (length >= size - 1 && length > 0)
        return 1;
    joined_path path{buffer, size - 1, length};
    std::va_list args;
    va_start(args, first);
    const int result = join(path, first, args);
    va_end(args);
    return result;
}
