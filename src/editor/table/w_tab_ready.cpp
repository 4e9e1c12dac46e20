#include "editor/table/w_tab_ready.h"

#include "editor/panel/edit-record.h"
#include "editor/panel/w_text.h"
#include "editor/state/edit-state.h"
#include "editor/state/key-set.h"
#include "editor/table/w_tab_list.h"
#include "editor/toolkit/ui-text.h"

#include <gdk/gdkkeysyms.h>

#include <string>

namespace zel {

GtkWidget *tab_ready::make_button(GtkTreeView *list, Zeltext *panel)
{
    list_ = list;
    panel_ = panel;
    button_ = gtk_check_button_new_with_label(ui_text("tab-edit", "Ready"));
    gtk_widget_set_tooltip_text(button_, ui_text("common", "Toggle ready (ALT+M)"));
    g_signal_connect(button_, "toggled", G_CALLBACK(button_toggled), this);
    add_button_key(button_, GDK_KEY_m, GDK_MOD1_MASK);
    return button_;
}

item_t *tab_ready::item_of(int row) const
{
    return (*shown_->rows)->rows[static_cast<std::size_t>(row)].item;
}

// Draws the row again, and leaves it where it is, also in a list that is sorted by the marks: it
// would run away from under the hand, and its neighbours with it. The next click on a header puts
// it in its place.
void tab_ready::changed(int row) { zel_tab_model_row_changed(shown_, row); }

// An item may be marked ready before it has its texts: the status line says so.
void tab_ready::tell_missing_text() const
{
    const char *lang = text_missing_language(panel_);
    if (lang == nullptr)
        return;
    const std::string text = std::string(ui_text("tab-edit", "Ready, but the text is missing")) +
                             ": \"" + utf8_shown(lang) + "\"";
    edit_status(text.c_str());
}

void tab_ready::button_toggled(GtkToggleButton *button, gpointer self)
{
    auto *ready = static_cast<tab_ready *>(self);
    const int row = zel_tab_model_row_at(ready->shown_, tab_list_selected(ready->list_));
    if (row < 0)
        return;
    item_t *item = ready->item_of(row);
    // The history takes the value from before: it comes first.
    record_ready(item, gtk_toggle_button_get_active(button), true);
    edit_set_modified(true);
    item->ready = gtk_toggle_button_get_active(button);
    ready->changed(row);
    if (item->ready != 0)
        ready->tell_missing_text();
}

void tab_ready::show(const item_t *item)
{
    g_signal_handlers_block_by_func(button_, reinterpret_cast<gpointer>(button_toggled), this);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(button_), item != nullptr && item->ready != 0);
    g_signal_handlers_unblock_by_func(button_, reinterpret_cast<gpointer>(button_toggled), this);
    gtk_widget_set_sensitive(button_, item != nullptr);
}

// The cell is a mark for the user's own work: unlike the button beside the texts it leaves the
// source unmodified, so nobody is asked about saving.
void tab_ready::cell_toggled(GtkCellRendererToggle *, gchar *path_text, gpointer self)
{
    auto *ready = static_cast<tab_ready *>(self);
    GtkTreeIter iter;
    int row = -1;
    if (gtk_tree_model_get_iter_from_string(GTK_TREE_MODEL(ready->shown_), &iter, path_text) != 0)
        row = zel_tab_model_row_of(ready->shown_, &iter);
    // The model may have changed since the toolkit made the path.
    if (row < 0) {
        g_warning("%s: bad tree path?", G_STRLOC);
        return;
    }
    item_t *item = ready->item_of(row);
    record_ready(item, item->ready == 0, false);
    item->ready = item->ready == 0;
    ready->changed(row);
}

} // namespace zel
