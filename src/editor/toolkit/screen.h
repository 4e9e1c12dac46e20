#pragma once

// The part of a screen that windows may use.

#include <gtk/gtk.h>

namespace zel {

// The work area of the screen that the widget is on, without panels and docks as far as the window
// manager tells.
GdkRectangle work_area(GtkWidget *widget);

// The same for the monitor at that place, or for the nearest one.
GdkRectangle work_area_at(GtkWidget *widget, int x, int y);

} // namespace zel
