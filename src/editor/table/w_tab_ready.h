#pragma once

// The mark "Ready" of the item table: the button beside the texts, and the cells of the list.

#include <gtk/gtk.h>

#include "editor/panel/w_text_panel.h"
#include "editor/table/w_tab_model.h"
#include "source/model.h"

namespace zel {

class tab_ready {
public:
    // The rows as the list shows them; they outlive it.
    explicit tab_ready(ZelTabModel *shown) : shown_(shown) {}
    tab_ready(const tab_ready &) = delete;
    tab_ready &operator=(const tab_ready &) = delete;

    // The button, with its key; it marks the item of the row that is selected in the list.
    GtkWidget *make_button(GtkTreeView *list, Zeltext *panel);

    // Makes the button follow the selected item, null for none, which is no change of the source.
    void show(const item_t *item);

    // A click on a cell; self is the object.
    static void cell_toggled(GtkCellRendererToggle *, gchar *path_text, gpointer self);

private:
    static void button_toggled(GtkToggleButton *button, gpointer self);

    item_t *item_of(int row) const;
    void changed(int row);
    void tell_missing_text() const;

    ZelTabModel *shown_;
    GtkTreeView *list_ = nullptr;
    Zeltext *panel_ = nullptr;
    GtkWidget *button_ = nullptr;
};

} // namespace zel
