#pragma once

// Content that may be higher than its place.

#include <gtk/gtk.h>

namespace zel {

// A scrolled window without an edge: as wide as the content, which is scrolled up and down when it
// is too high, also to what gets the keyboard. The content may have a parent, which it leaves.
[[nodiscard]] GtkWidget *scrolled_box_new(GtkWidget *content);

} // namespace zel
