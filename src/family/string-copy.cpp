#include "family/string-copy.h"

#include "support/misc-error.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

char *_zel_str_add(char *owned, const char *add, const char *file, int line)
{
    if (add == nullptr)
        return owned;
    if (owned == nullptr)
        return _zel_strdup(add, file, line);
    const std::size_t length = std::strlen(owned);
    const std::size_t added = std::strlen(add);
    // If the added text is a part of the owned string, it moves with that string.
    const auto at = reinterpret_cast<std::uintptr_t>(add) - reinterpret_cast<std::uintptr_t>(owned);
    char *grown = static_cast<char *>(std::realloc(owned, length + added + 2));
    if (grown == nullptr) {
        zel::copy_failed();
        _zel_fatal(file, line, "not enough memory");
        return owned;
    }
    std::memcpy(grown + length, at <= length ? grown + at : add, added);
    grown[length + added] = '\0';
    return grown;
}

char *_zel_strdup_add(const char *first, const char *second)
{
    if (first == nullptr)
        return zel_strdup(second);
    if (second == nullptr)
        return zel_strdup(first);
    const std::size_t length = std::strlen(first);
    const std::size_t added = std::strlen(second);
    char *joined = static_cast<char *>(std::malloc(length + added + 2));
    if (joined == nullptr) {
        zel::copy_failed();
        _zel_fatal("zel_malloc", __LINE__, "not enough memory");
        return nullptr;
    }
    std::memcpy(joined, first, length);
    std::memcpy(joined + length, second, added + 1);
    return joined;
}
