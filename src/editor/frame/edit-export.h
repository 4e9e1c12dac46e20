#pragma once

// Export to compiled language files, import of one. The data of both is the address of def_group.

#include <gtk/gtk.h>

void cb_export(GtkWidget *widget, gpointer data);
void cb_import(GtkWidget *widget, gpointer data);

namespace zel {

// Compiles the current source, as lang compile does, where the settings want that with each save.
// False when it fails.
bool export_after_save();

} // namespace zel
