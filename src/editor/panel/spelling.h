#pragma once

// Spelling in the text panel, where there is a dictionary for a shown language: words that it does
// not know are underlined, and the fields' menus offer others for them. Nothing is looked up while
// a key is handled.

#include "editor/panel/w_text_panel.h"

namespace zel {

extern guint before_first_spelling; // milliseconds from the first text, so that the window is quick

// Checks the panel's fields from now on, until the panel is destroyed.
void watch_spelling(Zeltext *text);

} // namespace zel
