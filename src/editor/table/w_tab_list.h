#pragma once

// The list of the item table: its columns and their renderers.

#include <gtk/gtk.h>

namespace zel {

struct tab_list {
    GtkWidget *view;
    GtkTreeViewColumn *lang1; // the two language columns; null in mode 0
    GtkTreeViewColumn *lang2;
};

// A list that shows the model; a click on a "Ready" cell calls toggled with the row's path as text.
[[nodiscard]] tab_list tab_list_new(GtkTreeModel *model,
                                    void (*toggled)(GtkCellRendererToggle *, gchar *, gpointer),
                                    gpointer data);

// Selects the row at that place; does nothing when there is none.
void tab_list_go_to(GtkTreeView *view, int place);

} // namespace zel
