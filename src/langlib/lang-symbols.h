#pragma once

// Symbols that texts name between two percent signs. Lists and substitution are in lang.h; this is
// the system's list, which every substitution sees.

#include "langlib/lang.h"
#include "support/list.h"

// Null until a load or a search needs it; then it holds PERCENT.
extern zel_list *lang_symbols;

namespace zel {

void lang_symbols_make(); // from any thread
void lang_symbols_drop();

} // namespace zel
