#include "editor/toolkit/gtk-compat.h"

GdkWindow *zel_gdk_window_get_pointer(GdkWindow *window, gint *x, gint *y, GdkModifierType *mask)
{
    return gdk_window_get_pointer(window, x, y, mask);
}

void zel_gdk_window_get_size(GdkWindow *window, gint *width, gint *height)
{
    gdk_drawable_get_size(window, width, height);
}

GtkWidget *zel_gtk_toolbar_append_element(GtkToolbar *toolbar, GtkToolbarChildType type,
                                          GtkWidget *widget, const char *text,
                                          const char *tooltip_text,
                                          const char *tooltip_private_text, GtkWidget *icon,
                                          GCallback callback, gpointer user_data)
{
    return gtk_toolbar_append_element(toolbar, type, widget, text, tooltip_text,
                                      tooltip_private_text, icon, callback, user_data);
}

GtkWidget *zel_gtk_toolbar_append_item(GtkToolbar *toolbar, const char *text,
                                       const char *tooltip_text, const char *tooltip_private_text,
                                       GtkWidget *icon, GCallback callback, gpointer user_data)
{
    return gtk_toolbar_append_item(toolbar, text, tooltip_text, tooltip_private_text, icon,
                                   callback, user_data);
}

void zel_gtk_toolbar_set_orientation(GtkToolbar *toolbar, GtkOrientation orientation)
{
    gtk_toolbar_set_orientation(toolbar, orientation);
}

void zel_gtk_widget_set_uposition(GtkWidget *widget, gint x, gint y)
{
    gtk_widget_set_uposition(widget, x, y);
}

void zel_gtk_widget_set_usize(GtkWidget *widget, gint width, gint height)
{
    gtk_widget_set_usize(widget, width, height);
}

void zel_gtk_widget_size_request(GtkWidget *widget, GtkRequisition *requisition)
{
    gtk_widget_size_request(widget, requisition);
}

void zel_gtk_window_set_policy(GtkWindow *window, gint allow_shrink, gint allow_grow,
                               gint auto_shrink)
{
    gtk_window_set_policy(window, allow_shrink, allow_grow, auto_shrink);
}

GtkWidget *zel_gtk_hscrollbar_new(GtkAdjustment *adjustment)
{
    return gtk_hscrollbar_new(adjustment);
}

GtkWidget *zel_gtk_vscrollbar_new(GtkAdjustment *adjustment)
{
    return gtk_vscrollbar_new(adjustment);
}

GtkWidget *zel_gtk_hseparator_new() { return gtk_hseparator_new(); }
GtkWidget *zel_gtk_vseparator_new() { return gtk_vseparator_new(); }

GtkWidget *zel_gtk_hbox_new(gboolean homogeneous, gint spacing)
{
    return gtk_hbox_new(homogeneous, spacing);
}

GtkWidget *zel_gtk_vbox_new(gboolean homogeneous, gint spacing)
{
    return gtk_vbox_new(homogeneous, spacing);
}

GtkWidget *zel_gtk_hscale_new(GtkAdjustment *adjustment) { return gtk_hscale_new(adjustment); }
GtkWidget *zel_gtk_vscale_new(GtkAdjustment *adjustment) { return gtk_vscale_new(adjustment); }
GtkWidget *zel_gtk_hpaned_new() { return gtk_hpaned_new(); }
GtkWidget *zel_gtk_vpaned_new() { return gtk_vpaned_new(); }

GtkWidget *zel_gtk_dialog_get_content_area(GtkDialog *dialog)
{
    return gtk_dialog_get_content_area(dialog);
}

GtkWidget *zel_gtk_dialog_get_action_area(GtkDialog *dialog)
{
    return gtk_dialog_get_action_area(dialog);
}

void zel_gtk_tree_path_free(GtkTreePath *path)
{
    if (path != nullptr)
        gtk_tree_path_free(path);
}

namespace {

// An element of a kind; the icon is taken by a plain button at once.
GtkToolItem *make_element(int kind, GtkWidget *group, const char *label, GtkWidget *icon)
{
    switch (kind) {
    case ZEL_TOOL_BUTTON:
        return gtk_tool_button_new(icon, label);
    case ZEL_TOOL_TOGGLE:
        return gtk_toggle_tool_button_new();
    case ZEL_TOOL_RADIO:
        return group == nullptr
                   ? gtk_radio_tool_button_new(nullptr)
                   : gtk_radio_tool_button_new_from_widget(GTK_RADIO_TOOL_BUTTON(group));
    default:
        return gtk_separator_tool_item_new();
    }
}

} // namespace

GtkWidget *zel_toolbar_append_space(GtkWidget *toolbar)
{
    return zel_toolbar_append_element(toolbar, ZEL_TOOL_SEPARATOR, nullptr, nullptr, nullptr,
                                      nullptr, nullptr, nullptr);
}

GtkWidget *zel_toolbar_append_element(GtkWidget *toolbar, int kind, GtkWidget *group,
                                      const char *label, const char *tooltip, GtkWidget *icon,
                                      GCallback handler, gpointer data)
{
    if (toolbar == nullptr)
        return nullptr;
    GtkToolItem *item = make_element(kind, group, label, icon);
    // Toggle and radio items are tool buttons, too: only the separator is none.
    if (GTK_IS_TOOL_BUTTON(item)) {
        if (label != nullptr)
            gtk_tool_button_set_label(GTK_TOOL_BUTTON(item), label);
        if (icon != nullptr)
            gtk_tool_button_set_icon_widget(GTK_TOOL_BUTTON(item), icon);
        if (handler != nullptr)
            g_signal_connect(item, "clicked", handler, data);
    }
    if (tooltip != nullptr)
        gtk_tool_item_set_tooltip_text(item, tooltip);
    gtk_toolbar_insert(GTK_TOOLBAR(toolbar), item, -1);
    return GTK_WIDGET(item);
}
