#pragma once

// How wide the columns of the list are: as wide as what they show, as far as the list has room.
// Titles are always whole, and the items are in sight: where they would not be, the day is shown
// without its year. Then groups and items get room, then the time beside the day; where texts are
// shown, these come before the time, and before long names get more than their part. A column that
// the user has dragged keeps its width.

#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "editor/table/w_tab_model.h"

namespace zel {

enum class tab_cell { icon, number, date, ready, name, text };

// What a column is made of.
struct tab_column_row {
    const char *title; // null: none
    tab_cell kind;
    int column;  // what it shows
    int sort_id; // below 0: not sorted by
    int least;   // pixels it has in any case
    PangoEllipsizeMode ellipsize;
};

// The pixels without which a column is not worth its place, and those with which it is shown whole.
struct column_need {
    tab_cell kind;
    int least;
    int whole;
    int shortest = 0; // where the items would be out of sight otherwise; 0: the same
};

// The columns' widths in a list of so many pixels.
[[nodiscard]] std::vector<int> share_width(const std::vector<column_need> &needs, int room);

// Keeps a view column's row of the table, which must outlive it.
void tab_set_row(GtkTreeViewColumn *column, const tab_column_row &row);
const tab_column_row &tab_row_of(GtkTreeViewColumn *column);

// A tree view whose columns follow its width once they were measured; each needs its row.
[[nodiscard]] GtkWidget *tab_view_new(GtkTreeModel *model);

// Measures again, after the rows or the titles have changed. The view shows a ZelTabModel.
void tab_widths_measure(GtkTreeView *view);

// What the column of the dates has room for.
enum class tab_date_part { month_and_day, day, time };
tab_date_part tab_shown_part(GtkTreeViewColumn *column);

// The text of a cell that shows only a part of it, else empty.
[[nodiscard]] std::string tab_hidden_text(GtkTreeView *view, GtkTreeViewColumn *column,
                                          GtkTreeIter *iter);

} // namespace zel
