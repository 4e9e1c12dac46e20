#pragma once

#include "editor/panel/w_text_panel.h"

// Boxes of the panel that share out their width in another way than the toolkit's do.

namespace zel {

// Holds the fields, and beside them where the item is used: both are then put into it, in this
// order. "Used in" asks for its width; where captions of the fields would be cut, it gets less, and
// least where it has nothing to show.
GtkWidget *text_panes_new(Zeltext *text, int spacing);

// Holds a caption and beside it what is wrong with the text; one more widget may be put at its end.
// What the caption does not need is for the remarks. These get half of the row at least, and a
// fifth where a column beside the fields has them in full.
GtkWidget *text_caption_row_new(GtkWidget *caption, GtkWidget *finding, int spacing);

} // namespace zel
