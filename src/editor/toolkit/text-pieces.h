#pragma once

// Long paragraphs of a text view in pieces that the toolkit lays out in linear time.

#include <gtk/gtk.h>

namespace zel {

// From now on cuts long paragraphs into pieces as text is inserted into the buffer. The user sees
// nothing of it, and the text stays as it is.
void keep_in_pieces(GtkTextBuffer *buffer);

} // namespace zel
