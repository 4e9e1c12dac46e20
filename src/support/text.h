#pragma once

// Questions about characters and texts that files, commands and paths answer in one way, whatever
// the user's locale: letters, digits and white space are those of ASCII. The functions of the C
// library follow the locale (in a Turkish one "i" and "I" are two letters, in one of eight bits
// half a UTF-8 character may be white space) and are not for what is written in files.

namespace zel {

constexpr bool is_space(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool is_blank(int c) { return c == ' ' || c == '\t'; }
constexpr bool is_digit(int c) { return c >= '0' && c <= '9'; }
constexpr bool is_letter(int c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// Between the names of a path.
constexpr bool is_separator(int c) { return c == '/' || c == '\\'; }

constexpr int lower(int c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; }

// As strcasecmp and strncasecmp.
constexpr int compare_nocase(const char *a, const char *b)
{
    for (;; ++a, ++b) {
        const int difference =
            lower(static_cast<unsigned char>(*a)) - lower(static_cast<unsigned char>(*b));
        if (difference != 0 || *a == '\0')
            return difference;
    }
}

// Null as an empty text.
constexpr const char *or_empty(const char *text) { return text == nullptr ? "" : text; }

} // namespace zel
