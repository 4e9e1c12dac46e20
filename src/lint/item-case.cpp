#include "lint/item-case.h"

#include <cstring>
#include <strings.h>

namespace zel::lint {

bool same_language(const char *a, const char *b)
{
    a = a == nullptr ? "" : a;
    b = b == nullptr ? "" : b;
    return std::strcmp(a, b) == 0 || strcasecmp(a, b) == 0;
}

std::size_t find_language(std::span<const language> languages, const char *name, std::size_t guess)
{
    if (guess < languages.size() && same_language(languages[guess].name, name))
        return guess;
    std::size_t i = 0;
    while (i < languages.size() && !same_language(languages[i].name, name))
        ++i;
    return i;
}

} // namespace zel::lint
