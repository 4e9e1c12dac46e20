#pragma once

// Content that may be higher than its place.

#include <gtk/gtk.h>

namespace zel {

// A scrolled window without an edge, as wide as the content. When the content is too high it is
// scrolled up and down, and to the field that gets the keyboard. The content leaves the parent that
// it may have.
[[nodiscard]] GtkWidget *scrolled_box_new(GtkWidget *content);

} // namespace zel
