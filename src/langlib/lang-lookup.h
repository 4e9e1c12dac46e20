#pragma once

// A request's text with where it lies.

#include "langlib/lang.h"

namespace zel {

struct asked_text {
    const lang_handle_t *home; // the handle that has it, of a chain
    const lang_text_t *text;   // its slot; null, which is logged once something is loaded: none
};

// Asks a handle (null: the process-wide one) and its chain as __lang_get_str does.
asked_text ask(lang_handle_t *handle, const char *group, const char *item, const char *file,
               int line);

} // namespace zel
