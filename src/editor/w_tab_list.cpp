#include "editor/w_tab_list.h"

#include "app/global.h"
#include "editor/accessible.h"
#include "editor/ui-text.h"
#include "editor/w_tab_model.h"

#include <algorithm>
#include <string>

namespace {

enum class cell { icon, text, ready };

// What a column is made of.
struct column_t {
    const char *title; // null: none
    cell kind;
    int column;  // what it shows
    int sort_id; // below 0: not sorted by
    bool wide;   // takes its share of the room that is left
    int widest;  // pixels of text at the most when the columns are sized by what they show
    PangoEllipsizeMode ellipsize;
};

constexpr int no_sort = -1;

constexpr column_t columns[] = {
    {nullptr, cell::icon, COL_ICON, no_sort, false, 0, PANGO_ELLIPSIZE_NONE},
    {"Pos", cell::text, COL_POS, COL_POS, false, 80, PANGO_ELLIPSIZE_NONE},
    {"Date", cell::text, COL_DATE, COL_TIME, false, 200, PANGO_ELLIPSIZE_END},
    {"Ready", cell::ready, COL_READY, COL_READY, false, 0, PANGO_ELLIPSIZE_NONE},
    {"Group", cell::text, COL_GROUP, no_sort, false, 110, PANGO_ELLIPSIZE_MIDDLE},
    {"Item", cell::text, COL_ITEM, no_sort, true, 110, PANGO_ELLIPSIZE_MIDDLE},
    {"Language 1", cell::text, COL_LANG1, no_sort, true, 100, PANGO_ELLIPSIZE_END},
    {"Language 2", cell::text, COL_LANG2, no_sort, true, 100, PANGO_ELLIPSIZE_END},
};

constexpr int sampled_rows = 60;
constexpr int cell_padding = 8; // of the renderer, and some air
constexpr int sort_arrow = 20;  // room for the arrow of the column that is sorted by
constexpr int icon_width = 20;

constexpr const char *row_key = "zel-column"; // where a view column keeps its row of the table

bool is_language(const column_t &column)
{
    return column.column == COL_LANG1 || column.column == COL_LANG2;
}

GtkCellRenderer *make_text_cell(const column_t &column)
{
    GtkCellRenderer *renderer = gtk_cell_renderer_text_new();
    g_object_set(renderer, "single-paragraph-mode", TRUE, "ellipsize", column.ellipsize, nullptr);
    if (column.column == COL_POS)
        g_object_set(renderer, "xalign", 1.0F, nullptr);
    return renderer;
}

GtkTreeViewColumn *make_column(const column_t &row,
                               void (*toggled)(GtkCellRendererToggle *, gchar *, gpointer),
                               gpointer data)
{
    GtkCellRenderer *renderer = nullptr;
    const char *attribute = "text";
    if (row.kind == cell::icon) {
        renderer = gtk_cell_renderer_pixbuf_new();
        attribute = "pixbuf";
    } else if (row.kind == cell::ready) {
        renderer = gtk_cell_renderer_toggle_new();
        attribute = "radio"; // a ready item is round, one that is not is square
        g_object_set(renderer, "activatable", TRUE, nullptr);
        g_signal_connect(renderer, "toggled", G_CALLBACK(toggled), data);
    } else {
        renderer = make_text_cell(row);
    }
    const char *title = row.title == nullptr ? "" : zel::ui_text("tab-edit", row.title);
    GtkTreeViewColumn *column =
        gtk_tree_view_column_new_with_attributes(title, renderer, attribute, row.column, nullptr);
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_column_set_fixed_width(column, icon_width);
    gtk_tree_view_column_set_resizable(column, row.kind != cell::icon);
    gtk_tree_view_column_set_expand(column, row.wide);
    if (row.sort_id >= 0)
        gtk_tree_view_column_set_sort_column_id(column, row.sort_id);
    g_object_set_data(G_OBJECT(column), row_key, const_cast<column_t *>(&row));
    return column;
}

const column_t &row_of(GtkTreeViewColumn *column)
{
    return *static_cast<const column_t *>(g_object_get_data(G_OBJECT(column), row_key));
}

// A click on a "Ready" cell marks its item and does nothing else; the toolkit would also select the
// row, which takes the item that is worked on out of the panel.
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
    const bool marks = row_of(column).kind == cell::ready;
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

int text_width(PangoLayout *layout, const char *text)
{
    int width = 0;
    pango_layout_set_text(layout, text, -1);
    pango_layout_get_pixel_size(layout, &width, nullptr);
    return width;
}

std::string cell_text(GtkTreeModel *model, GtkTreeIter *iter, int column)
{
    GValue value = G_VALUE_INIT;
    GValue text = G_VALUE_INIT;
    g_value_init(&text, G_TYPE_STRING);
    gtk_tree_model_get_value(model, iter, column, &value);
    g_value_transform(&value, &text);
    std::string result = g_value_get_string(&text) == nullptr ? "" : g_value_get_string(&text);
    g_value_unset(&value);
    g_value_unset(&text);
    return result;
}

// The widest text of the first rows; of the position numbers, which grow, that of the last.
int widest_text(GtkTreeModel *model, const column_t &column, PangoLayout *layout)
{
    const int rows = gtk_tree_model_iter_n_children(model, nullptr);
    int first = column.column == COL_POS ? std::max(rows - sampled_rows, 0) : 0;
    int width = 0;
    GtkTreeIter iter;
    for (int count = 0; count < sampled_rows; ++count, ++first) {
        if (gtk_tree_model_iter_nth_child(model, &iter, nullptr, first) == 0)
            break;
        width = std::max(width, text_width(layout, cell_text(model, &iter, column.column).c_str()));
    }
    return std::min(width, column.widest);
}

// What the view and the renderer leave free beside a text.
int cell_margin(GtkTreeView *view)
{
    gint separator = 0;
    gint line = 0;
    gtk_widget_ensure_style(GTK_WIDGET(view));
    gtk_widget_style_get(GTK_WIDGET(view), "horizontal-separator", &separator, "focus-line-width",
                         &line, nullptr);
    return separator + 2 * line + cell_padding;
}

} // namespace

namespace zel {

tab_list tab_list_new(GtkTreeModel *model,
                      void (*toggled)(GtkCellRendererToggle *, gchar *, gpointer), gpointer data)
{
    tab_list list{gtk_tree_view_new_with_model(model), nullptr, nullptr};
    GtkTreeView *view = GTK_TREE_VIEW(list.view);
    for (const column_t &row : columns) {
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
    gtk_tree_view_set_fixed_height_mode(view, TRUE);
    gtk_tree_view_set_rules_hint(view, TRUE);
    gtk_tree_view_set_enable_search(view, FALSE);
    zel::set_accessible_name(list.view, ui_text("tab-edit", "Items"));
    return list;
}

void tab_list_autosize(GtkTreeView *view)
{
    GtkTreeModel *model = gtk_tree_view_get_model(view);
    PangoLayout *layout = gtk_widget_create_pango_layout(GTK_WIDGET(view), nullptr);
    const int margin = cell_margin(view);
    GList *list = gtk_tree_view_get_columns(view);
    for (GtkTreeViewColumn *column : each<GtkTreeViewColumn>(list)) {
        const column_t *row = &row_of(column);
        int width = text_width(layout, gtk_tree_view_column_get_title(column));
        if (row->sort_id >= 0)
            width += sort_arrow;
        if (row->kind == cell::text)
            width = std::max(width, widest_text(model, *row, layout));
        width = row->kind == cell::icon ? icon_width : width + margin;
        gtk_tree_view_column_set_fixed_width(column, width);
    }
    g_list_free(list);
    g_object_unref(layout);
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

} // namespace zel
