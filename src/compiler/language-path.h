#pragma once

// Path of the compiled file of a language.

#include <string>

#include "source/model.h"

namespace zel {

struct language_path {
    std::string path;
    bool is_allowed = true; // false: it leads out of the destination
};

// Without a destination the file of the definition as it stands. Below one,
// destination/language-edit/file, and the language's folder is made; a name or a file that leads
// out of the destination, by ".." or over somebody else's link, is refused, and so is a path that
// would have to be cut. The path ends in ".lang" once.
language_path path_of_language(const lang_t *lang, const char *destination);

} // namespace zel
