#pragma once

// Signs for what cannot be seen in a text, and line ends of other systems.

#include <gtk/gtk.h>

namespace zel {

// Draws faint signs over the view's unusual blanks, its line separators, and blanks at a line's
// end. The text stays as it is.
void show_signs(GtkTextView *view);

// From now on what a person pastes or drops gets this system's line ends.
void take_plain_line_ends(GtkTextBuffer *buffer);

} // namespace zel
