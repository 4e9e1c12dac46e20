#pragma once

// Where the main window stands and how large it is, kept in the settings between runs.

#include <gtk/gtk.h>

namespace zel {

// Puts a window's place into an area, as large as it was, as far as the area has room.
[[nodiscard]] GdkRectangle place_within(GdkRectangle place, const GdkRectangle &area);

// Before the window is shown: gives it its least size, 800 × 600 unless that and a title are more
// than the screen's free area; puts it where the settings say, within the screen; and keeps what
// becomes of it there. Without a place in the settings it stands in the centre.
void keep_window_place(GtkWidget *window);

} // namespace zel
