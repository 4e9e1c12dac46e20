#pragma once

// A list that takes the place of the items for a while: places where a word was found, each with
// two lines of text in which something is marked. The list of the items stays as it is meanwhile,
// with its selection and where it was scrolled to.

#include <gtk/gtk.h>

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "assist/pieces.h"
#include "editor/table/w_tab_model.h"

namespace zel {

// A text, in UTF-8, and the parts of it that are marked, in their order.
struct hit_line {
    std::string text;
    std::vector<assist::piece> marked;
};

// What is listed; the functions are asked for what is in sight, and may be asked at any time.
struct hit_rows {
    std::string name;  // of the list, for screen readers
    std::string title; // above the texts
    std::size_t count = 0;
    std::function<std::string(std::size_t row)> where; // two short lines
    std::function<std::array<hit_line, 2>(std::size_t row)> lines;
    std::function<void(std::size_t row)> open; // Return, or a double click
    // With boxes in front of the rows: whether one is checked, and the other way round with it.
    std::function<bool(std::size_t row)> is_on;
    std::function<void(std::size_t row)> toggle;
};

class tab_hits {
public:
    // Of the list of the items.
    explicit tab_hits(GtkWidget *list);
    tab_hits(const tab_hits &) = delete;
    tab_hits &operator=(const tab_hits &) = delete;

    GtkWidget *pane() const { return pane_; } // holds both lists
    bool is_shown() const { return gtk_widget_get_visible(scrolled_hits_) != 0; }
    GtkWidget *list() const { return is_shown() ? view_ : items_; }

    // Shows the rows; the same ones with others behind them stay where they are scrolled to.
    void show(hit_rows rows);
    void hide();

private:
    static void show_box(GtkTreeViewColumn *, GtkCellRenderer *, GtkTreeModel *, GtkTreeIter *,
                         gpointer self);
    static void show_where(GtkTreeViewColumn *, GtkCellRenderer *, GtkTreeModel *, GtkTreeIter *,
                           gpointer self);
    static void show_lines(GtkTreeViewColumn *, GtkCellRenderer *, GtkTreeModel *, GtkTreeIter *,
                           gpointer self);
    static void toggled(GtkCellRendererToggle *, gchar *path, gpointer self);
    static void activated(GtkTreeView *, GtkTreePath *, GtkTreeViewColumn *, gpointer self);
    static gboolean show_tooltip(GtkWidget *, gint x, gint y, gboolean by_keyboard, GtkTooltip *,
                                 gpointer self);

    void make_view();
    GtkTreeViewColumn *add_column(GtkCellRenderer *cell, int width, GtkTreeCellDataFunc show);
    std::size_t letters_in_sight() const; // of a text
    void toggle(int row);
    void fit_names();
    void exchange(std::size_t count);

    GtkWidget *items_;
    GtkWidget *scrolled_items_;
    GtkWidget *pane_;
    GtkWidget *view_ = nullptr;
    GtkWidget *scrolled_hits_ = nullptr;
    GtkTreeViewColumn *box_column_ = nullptr;
    GtkTreeViewColumn *where_column_ = nullptr;
    GtkTreeViewColumn *text_column_ = nullptr;
    hit_rows rows_;
};

} // namespace zel
