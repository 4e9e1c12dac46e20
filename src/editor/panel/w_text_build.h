#pragma once

// How the text panel is put together.

#include "editor/panel/w_text_panel.h"

namespace zel {

// Makes all widgets of the panel, without an item. Comments have their height and no more,
// translations share the rest; where that is too little, comments shrink to a line, translations to
// two, and then the panel scrolls.
void build_text_panel(Zeltext *text);

} // namespace zel
