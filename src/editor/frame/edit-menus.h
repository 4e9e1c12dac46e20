#pragma once

// The menu bar and the toolbar of the main window, built from tables. Their actions get the address
// of def_group as data; the keys go to accel_group, which exists by then.

#include <gtk/gtk.h>

namespace zel {

GtkWidget *make_menu_bar();
GtkWidget *make_toolbar();

} // namespace zel
