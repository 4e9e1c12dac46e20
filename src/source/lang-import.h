#pragma once

// Taking the translations of a compiled language file into a source.

#include "source/model.h"

struct lang_handle_t;

// Every text that the handle translates becomes its language's text, of one line, of the source's
// item of that group and name; the language is added when the source does not define it. Only
// items that the source has are touched, and only their texts. The handle is one of
// lang_import_new: others would answer with the item's name for what is not translated.
// Returns 0, or, logged: 1 no source, 2 no handle, 3 it holds no table, 4 it names no language.
int lang_import(LangSource *source, lang_handle_t *handle);
