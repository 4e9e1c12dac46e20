#pragma once

// What cannot be seen in a text: signs for it, and line ends from elsewhere.

#include <gtk/gtk.h>

namespace zel {

// Draws faint signs over the view's unusual blanks, its line separators, and blanks at a line's
// end. The text stays as it is.
void show_signs(GtkTextView *view);

// What a person pastes or drops gets this system's line ends.
void take_plain_line_ends(GtkTextBuffer *buffer);

} // namespace zel
