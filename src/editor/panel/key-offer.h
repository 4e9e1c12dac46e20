#pragma once

// The menu of a translation's field offers the text with a free key ("_Save"), where it lacks one
// or has that of another text of its group.

#include "editor/panel/w_text_panel.h"

namespace zel {

// Offers it in the menus of both translations.
void offer_keys(Zeltext *text);

} // namespace zel
