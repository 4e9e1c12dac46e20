#pragma once

// Selecting a row of a list by its index.

#include <gtk/gtk.h>

// Selects the row of that index when 0 <= index < count and the model has it: 1, else 0.
int misc_select_row(GtkTreeView *view, GtkTreeModel *model, int index, int count);
