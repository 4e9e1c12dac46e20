#include "editor/toolkit/scrolled-box.h"

namespace zel {

GtkWidget *scrolled_box_new(GtkWidget *content)
{
    GtkWidget *scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    GtkScrolledWindow *window = GTK_SCROLLED_WINDOW(scrolled);
    gtk_scrolled_window_set_policy(window, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    // The parent's reference may be the last one: without ours the content would be destroyed on
    // the way.
    g_object_ref(content);
    if (GtkWidget *parent = gtk_widget_get_parent(content))
        gtk_container_remove(GTK_CONTAINER(parent), content);
    gtk_scrolled_window_add_with_viewport(window, content);
    g_object_unref(content);
    gtk_viewport_set_shadow_type(GTK_VIEWPORT(gtk_bin_get_child(GTK_BIN(scrolled))),
                                 GTK_SHADOW_NONE);
    // Scrolls to the field that gets the keyboard: Tab would otherwise lead to one that nobody
    // sees.
    if (GTK_IS_CONTAINER(content))
        gtk_container_set_focus_vadjustment(GTK_CONTAINER(content),
                                            gtk_scrolled_window_get_vadjustment(window));
    return scrolled;
}

} // namespace zel
