#pragma once

// Another language as help: below a translation the same item's text in any third language of the
// source, chosen in the menu of the caption or of the field. It is read only, and being shown
// changes nothing in the source. The choice is kept by name in the settings; it rests where the
// source has no such language, or shows it already.

#include "editor/panel/w_text_panel.h"

namespace zel {

constexpr int below_lines = 4; // that it takes at most; one at least

// The row below a translation's field (TEXT_TRANS1 or TEXT_TRANS2), hidden, made around a view like
// those of the fields.
[[nodiscard]] GtkWidget *text_below_new(Zeltext *text, int field, GtkWidget *view);

// Offers the choice in the menu of the caption, which gets one, and in that of the field.
void text_below_offer(Zeltext *text, int field, GtkWidget *caption_row);

// Shows the texts of the panel's item; without an item nothing.
void text_below_show(Zeltext *text);

// Shows the next or, with -1, the previous of the languages that the menus offer, none being one of
// them; false where there is none to choose.
bool text_below_step(Zeltext *text, int field, int direction);

// The heights of the text's first line and of as many as it may take; 0 while it is hidden.
struct below_height {
    int least;
    int most;
};
below_height text_below_height(Zeltext *text, int field);

// What scrolls the text.
GtkWidget *text_below_scrolled(Zeltext *text, int field);

} // namespace zel
