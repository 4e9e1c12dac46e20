#include "editor/table/w_tab_list.h"

#include "app/global.h"
#include "editor/table/list-cells.h"
#include "editor/table/w_tab_model.h"
#include "editor/table/w_tab_widths.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/ui-text.h"
#include "source/misc.h"

#include <cstring>
#include <string>

namespace {

using zel::tab_cell;
using zel::tab_column_row;

constexpr int no_sort = -1;
constexpr int icon_width = 20;
constexpr std::size_t day_length = 10; // of "2024-03-04 10:11:12"
constexpr std::size_t year_length = 5;

// The columns: title, kind, column of the model, sort id, least pixels, where a text is cut.
constexpr tab_column_row columns[] = {
    {nullptr, tab_cell::icon, COL_ICON, no_sort, icon_width, PANGO_ELLIPSIZE_NONE},
    {"Pos", tab_cell::number, COL_POS, COL_POS, 0, PANGO_ELLIPSIZE_NONE},
    {"Date", tab_cell::date, COL_DATE, COL_TIME, 0, PANGO_ELLIPSIZE_END},
    {"Ready", tab_cell::ready, COL_READY, COL_READY, 0, PANGO_ELLIPSIZE_NONE},
    {"Group", tab_cell::name, COL_GROUP, no_sort, 70, PANGO_ELLIPSIZE_MIDDLE},
    {"Item", tab_cell::name, COL_ITEM, no_sort, 80, PANGO_ELLIPSIZE_END},
    {"Language 1", tab_cell::text, COL_LANG1, no_sort, 90, PANGO_ELLIPSIZE_END},
    {"Language 2", tab_cell::text, COL_LANG2, no_sort, 90, PANGO_ELLIPSIZE_END},
};

// Shows of the date only what has room as a whole: a time that is cut would be misread.
void show_date(GtkTreeViewColumn *column, GtkCellRenderer *renderer, GtkTreeModel *model,
               GtkTreeIter *iter, gpointer)
{
    gchar *date = nullptr;
    gtk_tree_model_get(model, iter, COL_DATE, &date, -1);
    const zel::tab_date_part part = zel::tab_shown_part(column);
    const bool is_whole = date != nullptr && std::strlen(date) > day_length;
    if (is_whole && part != zel::tab_date_part::time)
        date[day_length] = '\0';
    const std::size_t from =
        is_whole && part == zel::tab_date_part::month_and_day ? year_length : 0;
    const std::string shown = date == nullptr ? "" : date + from;
    // In an interface from right to left the time would stand before the day.
    const bool mirrored = gtk_widget_get_default_direction() == GTK_TEXT_DIR_RTL;
    g_object_set(renderer, "text", (mirrored ? "\u200e" + shown : shown).c_str(), nullptr);
    g_free(date);
}

GtkCellRenderer *make_text_cell(const tab_column_row &row)
{
    GtkCellRenderer *renderer = zel::text_cell_new();
    g_object_set(renderer, "single-paragraph-mode", TRUE, "ellipsize", row.ellipsize, nullptr);
    // Numbers are compared digit by digit from the right.
    if (row.kind == tab_cell::number)
        g_object_set(renderer, "xalign", 1.0F, nullptr);
    return renderer;
}

GtkTreeViewColumn *make_column(const tab_column_row &row,
                               void (*toggled)(GtkCellRendererToggle *, gchar *, gpointer),
                               gpointer data)
{
    GtkCellRenderer *renderer = nullptr;
    const char *attribute = "text";
    if (row.kind == tab_cell::icon) {
        renderer = zel::mark_cell_new();
        attribute = "pixbuf";
    } else if (row.kind == tab_cell::ready) {
        renderer = zel::ready_cell_new();
        attribute = "radio"; // a ready item is round, one that is not is square
        g_object_set(renderer, "activatable", TRUE, nullptr);
        g_signal_connect(renderer, "toggled", G_CALLBACK(toggled), data);
    } else {
        renderer = make_text_cell(row);
    }
    const char *title = row.title == nullptr ? "" : zel::ui_text("tab-edit", row.title);
    GtkTreeViewColumn *column =
        gtk_tree_view_column_new_with_attributes(title, renderer, attribute, row.column, nullptr);
    if (row.kind == tab_cell::date) {
        // The date's text depends on the width: it is made for each cell.
        gtk_tree_view_column_clear_attributes(column, renderer);
        gtk_tree_view_column_set_cell_data_func(column, renderer, show_date, nullptr, nullptr);
    }
    // Fixed widths: else the toolkit would measure every row of the list.
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    // A width to begin with: the columns get theirs once the rows are measured.
    gtk_tree_view_column_set_fixed_width(column, icon_width);
    gtk_tree_view_column_set_resizable(column, row.kind != tab_cell::icon);
    if (row.sort_id >= 0)
        gtk_tree_view_column_set_sort_column_id(column, row.sort_id);
    zel::tab_set_row(column, row);
    return column;
}

// A click on a "Ready" cell marks its item and does nothing else. The toolkit would also select the
// row, and so take the item that is worked on out of the panel.
gboolean ready_pressed(GtkWidget *widget, GdkEventButton *event, gpointer)
{
    GtkTreeView *view = GTK_TREE_VIEW(widget);
    GtkTreePath *path = nullptr;
    GtkTreeViewColumn *column = nullptr;
    if (event->button != 1 || event->window != gtk_tree_view_get_bin_window(view) ||
        gtk_tree_view_get_path_at_pos(view, static_cast<gint>(event->x),
                                      static_cast<gint>(event->y), &path, &column, nullptr,
                                      nullptr) == 0)
        return FALSE;
    const bool marks = zel::tab_row_of(column).kind == tab_cell::ready;
    // A double click sends two presses and one more event, which would mark the item a third time.
    if (marks && event->type == GDK_BUTTON_PRESS) {
        GList *renderers = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
        gchar *text = gtk_tree_path_to_string(path);
        g_signal_emit_by_name(renderers->data, "toggled", text);
        g_free(text);
        g_list_free(renderers);
    }
    gtk_tree_path_free(path);
    return marks;
}

// Shows the whole of a text that has no room in its cell.
gboolean show_tooltip(GtkWidget *widget, gint x, gint y, gboolean by_keyboard, GtkTooltip *tooltip,
                      gpointer)
{
    GtkTreeView *view = GTK_TREE_VIEW(widget);
    GtkTreePath *path = nullptr;
    GtkTreeIter iter;
    if (gtk_tree_view_get_tooltip_context(view, &x, &y, by_keyboard, nullptr, &path, &iter) == 0)
        return FALSE;
    GtkTreeViewColumn *column = nullptr;
    // A tooltip by keyboard is for the cell with the cursor.
    if (by_keyboard != 0)
        gtk_tree_view_get_cursor(view, nullptr, &column);
    else
        gtk_tree_view_get_path_at_pos(view, x, y, nullptr, &column, nullptr, nullptr);
    const std::string text = column == nullptr ? "" : zel::tab_hidden_text(view, column, &iter);
    if (!text.empty()) {
        gtk_tooltip_set_text(tooltip, text.c_str());
        gtk_tree_view_set_tooltip_cell(view, tooltip, path, column, nullptr);
    }
    gtk_tree_path_free(path);
    return text.empty() ? FALSE : TRUE;
}

void set_language_title(GtkTreeViewColumn *column, const char *lang)
{
    if (column != nullptr)
        gtk_tree_view_column_set_title(column, zel::utf8_shown(lang).c_str());
}

bool is_language(const tab_column_row &column)
{
    return column.column == COL_LANG1 || column.column == COL_LANG2;
}

} // namespace

namespace zel {

tab_list tab_list_new(GtkTreeModel *model,
                      void (*toggled)(GtkCellRendererToggle *, gchar *, gpointer), gpointer data)
{
    tab_list list{tab_view_new(model), nullptr, nullptr};
    GtkTreeView *view = GTK_TREE_VIEW(list.view);
    for (const tab_column_row &row : columns) {
        if (is_language(row) && lang_global.editor_mode == 0)
            continue;
        GtkTreeViewColumn *column = make_column(row, toggled, data);
        gtk_tree_view_append_column(view, column);
        if (row.column == COL_LANG1)
            list.lang1 = column;
        if (row.column == COL_LANG2)
            list.lang2 = column;
    }
    g_signal_connect(view, "button-press-event", G_CALLBACK(ready_pressed), nullptr);
    g_signal_connect(view, "query-tooltip", G_CALLBACK(show_tooltip), nullptr);
    gtk_widget_set_has_tooltip(list.view, TRUE);
    // All rows have one height: the list does not need to measure those out of sight.
    gtk_tree_view_set_fixed_height_mode(view, TRUE);
    gtk_tree_view_set_rules_hint(view, TRUE);
    // Letters that are typed belong to the search field above the list.
    gtk_tree_view_set_enable_search(view, FALSE);
    zel::set_accessible_name(list.view, ui_text("tab-edit", "Items"));
    return list;
}

void tab_list_show_languages(tab_rows &rows, LangSource *source, const tab_list &list)
{
    const char *lang1 = nullptr;
    const char *lang2 = nullptr;
    misc_select_edit_lang(source, &lang1, &lang2);
    rows.lang1 = lang1 == nullptr ? nullptr : std::make_unique<std::string>(lang1);
    rows.lang2 = lang2 == nullptr ? nullptr : std::make_unique<std::string>(lang2);
    set_language_title(list.lang1, lang1);
    set_language_title(list.lang2, lang2);
}

void tab_list_go_to(GtkTreeView *view, int place)
{
    GtkTreeModel *model = gtk_tree_view_get_model(view);
    if (model == nullptr || place < 0 || place >= gtk_tree_model_iter_n_children(model, nullptr))
        return;
    GtkTreePath *path = gtk_tree_path_new_from_indices(place, -1);
    gtk_tree_view_set_cursor(view, path, nullptr, FALSE);
    gtk_tree_path_free(path);
}

int tab_list_selected(GtkTreeView *view)
{
    GtkTreeModel *model = nullptr;
    GtkTreeIter iter;
    if (gtk_tree_selection_get_selected(gtk_tree_view_get_selection(view), &model, &iter) == 0 ||
        model == nullptr)
        return -1;
    ZelTabModel *rows = ZEL_TAB_MODEL(model);
    return zel_tab_model_place_of(rows, zel_tab_model_row_of(rows, &iter));
}

} // namespace zel
