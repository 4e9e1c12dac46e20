#include "support/string-copy.h"

#include "support/log-print.h"
#include "support/misc-error.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace {

std::atomic<unsigned> failures;

char *copy_of(const char *text, std::size_t length)
{
    char *copy = static_cast<char *>(std::malloc(length + 2));
    if (copy != nullptr)
        std::memcpy(copy, text, length + 1);
    else
        zel::copy_failed();
    return copy;
}

} // namespace

char *_zel_strdup(const char *text, const char *, int)
{
    return text == nullptr ? nullptr : _zel_strdup(text, std::strlen(text));
}

char *_zel_strdup(const char *text, std::size_t length)
{
    // An empty text becomes null, as in the whole model; zel_strdup2 keeps the difference.
    if (length == 0)
        return nullptr;
    char *copy = copy_of(text, length);
    if (copy == nullptr) {
        LogPrint(1, "zel_strdup: ERROR not enough memory\n");
        // Logs have always named this place: scripts that look for it do not follow a line.
        _zel_fatal("zel_malloc", 111, "not enough memory");
    }
    return copy;
}

char *_zel_strdup2(const char *text, const char *, int)
{
    return text == nullptr ? nullptr : _zel_strdup2(text, std::strlen(text));
}

char *_zel_strdup2(const char *text, std::size_t length)
{
    char *copy = copy_of(text, length);
    if (copy == nullptr)
        LogPrint(1, "zel_strdup2: ERROR not enough memory\n");
    return copy;
}

namespace zel {

unsigned failed_copies() noexcept { return failures.load(std::memory_order_relaxed); }

// The count is never set back: a reader compares it before and after its run.
void copy_failed() noexcept { failures.fetch_add(1, std::memory_order_relaxed); }

void free_string(char *text) noexcept { std::free(text); }

void replace_string(char *&owned, char *value) noexcept
{
    std::free(owned);
    owned = value;
}

} // namespace zel
