#pragma once

// Long paragraphs of a text view in pieces that the toolkit lays out in linear time.

#include <gtk/gtk.h>

namespace zel {

// From now on, what is inserted into the buffer is kept in pieces where a paragraph is long.
// Nothing of it is seen, and the text stays as it is.
void keep_in_pieces(GtkTextBuffer *buffer);

} // namespace zel
