#include "editor/toolkit/menu-grab.h"

#include <gtk/gtk.h>

namespace {

bool is_hidden_menu(GtkWidget *holder)
{
    return holder != nullptr && GTK_IS_MENU(holder) && gtk_widget_get_mapped(holder) == 0;
}

gboolean close_hidden(gpointer)
{
    // Closing a menu gives the input back to its holder before, which may be a hidden menu, too.
    GtkWidget *holder = gtk_grab_get_current();
    while (is_hidden_menu(holder)) {
        GtkWidget *item = gtk_menu_get_attach_widget(GTK_MENU(holder));
        GtkWidget *above = item == nullptr ? nullptr : gtk_widget_get_parent(item);
        gtk_menu_shell_cancel(GTK_MENU_SHELL(holder));
        if (above != nullptr && GTK_IS_MENU_SHELL(above))
            gtk_menu_shell_cancel(GTK_MENU_SHELL(above));
        GtkWidget *before = holder;
        // A menu that keeps the input although it has been cancelled would hold us here for ever.
        holder = gtk_grab_get_current();
        if (holder == before)
            break;
    }
    return FALSE;
}

// The toolkit is still opening the menu at this moment. The idle handler closes it afterwards, and
// its high priority brings it before the next key.
gboolean holder_changed(GSignalInvocationHint *, guint, const GValue *, gpointer)
{
    if (is_hidden_menu(gtk_grab_get_current()))
        g_idle_add_full(G_PRIORITY_HIGH, close_hidden, nullptr, nullptr);
    // TRUE keeps the hook.
    return TRUE;
}

} // namespace

namespace zel {

void close_hidden_menus()
{
    static bool watched;
    if (watched)
        return;
    watched = true;
    // A hook sees the signal of every widget: menus are made all the time, by text fields, too.
    g_signal_add_emission_hook(g_signal_lookup("grab-notify", GTK_TYPE_WIDGET), 0, holder_changed,
                               nullptr, nullptr);
}

} // namespace zel
