#pragma once

// Definitions of languages that words add.

#include <string>

#include "source/model.h"

namespace zel::kit {

// Whether it may be a language's name: a file is named after it.
bool is_language_name(const std::string &name);

// The definition of that language, or null.
lang_t *find_definition(const LangSource *source, const char *name);

// Adds the language's definition; its compiled file bears its name.
lang_t *add_definition(LangSource *source, const std::string &name);

} // namespace zel::kit
