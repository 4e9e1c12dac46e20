#include "editor/toolkit/popup.h"

#include <gdk/gdkkeysyms.h>

namespace {

void popup_init(GTypeInstance *instance, gpointer)
{
    auto *popup = reinterpret_cast<ZelPopup *>(instance);
    gtk_window_set_title(GTK_WINDOW(popup), " ");
    gtk_window_set_type_hint(GTK_WINDOW(popup), GDK_WINDOW_TYPE_HINT_DIALOG);

    popup->frame = gtk_frame_new(nullptr);
    gtk_container_set_border_width(GTK_CONTAINER(popup->frame), 4);
    gtk_container_add(GTK_CONTAINER(popup), popup->frame);
    popup->vbox = gtk_vbox_new(FALSE, 0);
    gtk_container_add(GTK_CONTAINER(popup->frame), popup->vbox);

    popup->hbox = gtk_hbox_new(FALSE, 5);
    gtk_box_pack_start(GTK_BOX(popup->vbox), popup->hbox, FALSE, TRUE, 0);
    popup->icon_box = gtk_vbox_new(FALSE, 5);
    gtk_container_set_border_width(GTK_CONTAINER(popup->icon_box), 10);
    gtk_box_pack_start(GTK_BOX(popup->hbox), popup->icon_box, FALSE, FALSE, 0);
    gtk_widget_set_no_show_all(popup->icon_box, TRUE); // no empty room without an icon
    popup->content_box = gtk_vbox_new(TRUE, 5);
    gtk_container_set_border_width(GTK_CONTAINER(popup->content_box), 10);
    gtk_box_pack_start(GTK_BOX(popup->hbox), popup->content_box, TRUE, TRUE, 0);

    gtk_box_pack_start(GTK_BOX(popup->vbox), gtk_hseparator_new(), FALSE, TRUE, 0);
    popup->button_box = gtk_hbox_new(TRUE, 5);
    gtk_container_set_border_width(GTK_CONTAINER(popup->button_box), 10);
    gtk_box_pack_start(GTK_BOX(popup->vbox), popup->button_box, FALSE, TRUE, 0);

    popup->icon = nullptr;
    // popup_run asks for decorations before the popup is shown, and only a realized window has
    // them.
    gtk_widget_realize(GTK_WIDGET(popup));
}

gboolean press_on_escape(GtkWidget *, GdkEventKey *event, gpointer button)
{
    if (event->keyval != GDK_KEY_Escape)
        return FALSE;
    // Through the button, so that the key does whatever a click does.
    gtk_button_clicked(GTK_BUTTON(button));
    return TRUE;
}

} // namespace

GType zel_popup_get_type()
{
    static const GType type =
        g_type_register_static_simple(GTK_TYPE_WINDOW, "ZelPopup", sizeof(ZelPopupClass), nullptr,
                                      sizeof(ZelPopup), popup_init, GTypeFlags{});
    return type;
}

GtkWidget *zel_popup_new()
{
    return GTK_WIDGET(g_object_new(ZEL_TYPE_POPUP, "type", GTK_WINDOW_TOPLEVEL, nullptr));
}

int zel_popup_set_icon(GtkWidget *widget, GtkWidget *icon)
{
    g_return_val_if_fail(widget != NULL, 1);
    g_return_val_if_fail(ZEL_IS_POPUP(widget), 1);
    ZelPopup *popup = ZEL_POPUP(widget);
    if (popup->icon != nullptr)
        gtk_widget_destroy(popup->icon);
    popup->icon = icon;
    gtk_widget_set_visible(popup->icon_box, icon != nullptr);
    if (icon != nullptr) {
        // An icon that is destroyed from outside must not be destroyed a second time with the next
        // one.
        g_signal_connect(icon, "destroy", G_CALLBACK(gtk_widget_destroyed), &popup->icon);
        gtk_box_pack_start(GTK_BOX(popup->icon_box), icon, FALSE, FALSE, 0);
        gtk_widget_show(icon);
    }
    return 0;
}

namespace zel {

GtkWindow *window_of(GtkWidget *widget)
{
    while (widget != nullptr) {
        // An entry of a menu has no window of its own: go from menu to menu up to the widget that
        // the outermost one is attached to.
        GtkWidget *menu = gtk_widget_get_ancestor(widget, GTK_TYPE_MENU);
        if (menu == nullptr)
            break;
        widget = gtk_menu_get_attach_widget(GTK_MENU(menu));
    }
    GtkWidget *top = widget == nullptr ? nullptr : gtk_widget_get_toplevel(widget);
    return top != nullptr && gtk_widget_is_toplevel(top) && GTK_IS_WINDOW(top) ? GTK_WINDOW(top)
                                                                               : nullptr;
}

void popup_run(GtkWidget *popup, GtkWidget *parent, GMainLoop *loop)
{
    GtkWindow *above = window_of(parent);
    const gboolean was_modal = above != nullptr && gtk_window_get_modal(above);
    if (above != nullptr) {
        gtk_window_set_transient_for(GTK_WINDOW(popup), above);
        gtk_window_set_destroy_with_parent(GTK_WINDOW(popup), TRUE);
        // The window may be destroyed while the loop runs.
        g_object_add_weak_pointer(G_OBJECT(above), reinterpret_cast<gpointer *>(&above));
    }
    // No minimize or maximize: a modal popup that is out of sight would leave a window that takes
    // no input.
    gdk_window_set_decorations(gtk_widget_get_window(popup), GDK_DECOR_TITLE);
    gtk_window_set_modal(GTK_WINDOW(popup), TRUE);
    gtk_widget_show_all(popup);
    g_main_loop_run(loop);
    if (above != nullptr) {
        gtk_window_set_modal(above, was_modal);
        g_object_remove_weak_pointer(G_OBJECT(above), reinterpret_cast<gpointer *>(&above));
    }
}

GtkWidget *popup_add_button(GtkWidget *popup, const char *text, int width, int kind)
{
    GtkWidget *button = gtk_button_new_with_label(text);
    gtk_widget_set_size_request(button, width, -1);
    gtk_box_pack_start(GTK_BOX(ZEL_POPUP(popup)->button_box), button, FALSE, FALSE, 0);
    if ((kind & POPUP_DEFAULT) != 0) {
        gtk_widget_set_can_default(button, TRUE);
        gtk_window_set_default(GTK_WINDOW(popup), button);
    }
    if ((kind & POPUP_CLOSES) != 0)
        g_signal_connect(popup, "key-press-event", G_CALLBACK(press_on_escape), button);
    return button;
}

} // namespace zel
