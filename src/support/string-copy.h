#pragma once

// String copies that name the place they are made from. Every string returned is allocated with
// malloc and owned by the caller; file and line serve reports only.

#include <cstddef>
#include <memory>

#include "support/guard.h"

// A copy, with room for one spare byte; null for a null or an empty string. Without memory it
// logs, reports a fatal error and gives null.
[[nodiscard]] char *_zel_strdup(const char *text, const char *file, int line);

// A copy that keeps an empty string; null for null. Without memory it logs and gives null.
[[nodiscard]] char *_zel_strdup2(const char *text, const char *file, int line);

// The same two for a text whose length is known; its NUL follows.
[[nodiscard]] char *_zel_strdup(const char *text, std::size_t length);
[[nodiscard]] char *_zel_strdup2(const char *text, std::size_t length);

#define zel_strdup(text) _zel_strdup((text), __FILE__, __LINE__)
#define zel_strdup2(text) _zel_strdup2((text), __FILE__, __LINE__)

namespace zel {

// How many copies of this file's kinds found no memory since the process began. A reader that
// finds another number after its work than before has missed something. copy_failed counts one
// more, for copies and records made elsewhere.
unsigned failed_copies() noexcept;
void copy_failed() noexcept;

// Whether the result of zel_strdup is the text's copy: null for nothing and for an empty text only.
inline bool is_copy(const char *copy, const char *text)
{
    return copy != nullptr || text == nullptr || *text == '\0';
}

void free_string(char *text) noexcept;
using string_guard = std::unique_ptr<char, release<free_string>>;

// Replaces an owned string by another owned one and releases the old.
void replace_string(char *&owned, char *value) noexcept;

} // namespace zel
