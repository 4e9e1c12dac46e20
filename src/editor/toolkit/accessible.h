#pragma once

// What assistive technology is told of a widget.

#include <gtk/gtk.h>

namespace zel {

// The name that a screen reader says, and more about the widget's state (null: nothing more).
void set_accessible_name(GtkWidget *widget, const char *name);
void set_accessible_description(GtkWidget *widget, const char *description);

} // namespace zel
