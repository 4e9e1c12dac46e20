#pragma once

// The list of the item table: its columns and their renderers.

#include <gtk/gtk.h>

#include "editor/table/w_tab_model.h"
#include "source/model.h"

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

// Makes the two languages that the source has edited those of the rows, and the titles of the
// list's columns. The rows keep names of their own: the user may rename or remove languages while
// the list is shown.
void tab_list_show_languages(tab_rows &rows, LangSource *source, const tab_list &list);

// Selects the row at that place; does nothing when there is none.
void tab_list_go_to(GtkTreeView *view, int place);

// Place of the selected row in the list, -1 when none is selected.
[[nodiscard]] int tab_list_selected(GtkTreeView *view);

} // namespace zel
