#include "editor/table/w_tab_panes.h"

#include "app/global.h"
#include "editor/toolkit/kept.h"

#include <algorithm>

namespace {

constexpr int list_width = 400;
constexpr int small_width = 800; // of a window whose list gets no more than that

// The list's share of a wide window: with texts in the list it needs more.
double list_share() { return lang_global.editor_mode == 0 ? 0.45 : 0.55; }

struct panes_state {
    int width = 0;         // for which the divider was placed
    bool is_moved = false; // by the user
};

gboolean moved_by_pointer(GtkWidget *, GdkEventButton *, gpointer data)
{
    static_cast<panes_state *>(data)->is_moved = true;
    return FALSE;
}

gboolean moved_by_keys(GtkWidget *, GtkScrollType, gpointer data)
{
    static_cast<panes_state *>(data)->is_moved = true;
    return FALSE;
}

void size_allocated(GtkWidget *widget, GtkAllocation *place, gpointer data)
{
    auto *state = static_cast<panes_state *>(data);
    // A pane has one pixel before the window gives out sizes.
    if (place->width == state->width || place->width <= 1)
        return;
    state->width = place->width;
    // The user's own place is kept at every size of the window.
    if (state->is_moved)
        return;
    const bool is_small = place->width <= small_width;
    const int share = static_cast<int>(place->width * list_share());
    gtk_paned_set_position(GTK_PANED(widget), is_small ? list_width : std::max(list_width, share));
}

} // namespace

namespace zel {

GtkWidget *tab_panes_new(GtkWidget *list, GtkWidget *texts)
{
    GtkWidget *panes = gtk_hpaned_new();
    gtk_paned_set_position(GTK_PANED(panes), list_width);
    gtk_paned_pack1(GTK_PANED(panes), list, TRUE, FALSE);
    gtk_paned_pack2(GTK_PANED(panes), texts, TRUE, FALSE);
    panes_state *state = &zel::kept_at<panes_state>(panes, "zel-panes");
    // The divider is the only part of the widget with a window of its own, so every click here is
    // on it.
    g_signal_connect(panes, "button-press-event", G_CALLBACK(moved_by_pointer), state);
    g_signal_connect(panes, "move-handle", G_CALLBACK(moved_by_keys), state);
    g_signal_connect(panes, "size-allocate", G_CALLBACK(size_allocated), state);
    return panes;
}

} // namespace zel
