#include "editor/toolkit/misc-row.h"

int misc_select_row(GtkTreeView *view, GtkTreeModel *model, int index, int count)
{
    GtkTreeIter iter;
    if (view == nullptr || model == nullptr || index < 0 || index >= count ||
        gtk_tree_model_iter_nth_child(model, &iter, nullptr, index) == 0)
        return 0;
    gtk_tree_selection_select_iter(gtk_tree_view_get_selection(view), &iter);
    return 1;
}
