#pragma once

// The list and the texts beside each other.

#include <gtk/gtk.h>

namespace zel {

// In the smallest window the list has 400 pixels, in a wider one its share of the width, until
// somebody moves the divider.
[[nodiscard]] GtkWidget *tab_panes_new(GtkWidget *list, GtkWidget *texts);

} // namespace zel
