#pragma once

// Renderers of the list, which draw a screenful in half the time of the toolkit's own, and in
// colours that stand out in every theme.

#include <gtk/gtk.h>

namespace zel {

// A text cell that is laid out once, for the width it has; the toolkit's own lays out every
// shortened text a second time. Its "wrap-width" is what it was drawn with last, and so is its
// "text": a right-to-left one has the marks that keep it whole. Its height is that of a line of the
// font, whatever the text is.
[[nodiscard]] GtkCellRenderer *text_cell_new();

// A toggle cell that draws its own marks, in the colour of the row's text, so that they can be told
// apart in every theme: round and filled for "radio", else an empty square.
[[nodiscard]] GtkCellRenderer *ready_cell_new();

// A picture cell that draws a line around its picture in a selected row, in the colour of the row's
// text, so that the picture stands out whatever colour the theme selects with.
[[nodiscard]] GtkCellRenderer *mark_cell_new();

} // namespace zel
