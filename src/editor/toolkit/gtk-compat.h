#pragma once

// Names for toolkit calls whose form differs between toolkit versions; each passes its arguments on
// unchanged to the call of the same name without the prefix, or the one named beside it. The
// getters and setters of an adjustment (gtk_adjustment_get_upper and so on) are the toolkit's own.

#include <gtk/gtk.h>

GdkWindow *zel_gdk_window_get_pointer(GdkWindow *window, gint *x, gint *y, GdkModifierType *mask);
void zel_gdk_window_get_size(GdkWindow *window, gint *width, gint *height); // gdk_drawable_get_size

GtkWidget *zel_gtk_toolbar_append_element(GtkToolbar *toolbar, GtkToolbarChildType type,
                                          GtkWidget *widget, const char *text,
                                          const char *tooltip_text,
                                          const char *tooltip_private_text, GtkWidget *icon,
                                          GCallback callback, gpointer user_data);
GtkWidget *zel_gtk_toolbar_append_item(GtkToolbar *toolbar, const char *text,
                                       const char *tooltip_text, const char *tooltip_private_text,
                                       GtkWidget *icon, GCallback callback, gpointer user_data);
void zel_gtk_toolbar_set_orientation(GtkToolbar *toolbar, GtkOrientation orientation);

void zel_gtk_widget_set_uposition(GtkWidget *widget, gint x, gint y);
void zel_gtk_widget_set_usize(GtkWidget *widget, gint width, gint height);
void zel_gtk_widget_size_request(GtkWidget *widget, GtkRequisition *requisition);
void zel_gtk_window_set_policy(GtkWindow *window, gint allow_shrink, gint allow_grow,
                               gint auto_shrink);

GtkWidget *zel_gtk_hscrollbar_new(GtkAdjustment *adjustment);
GtkWidget *zel_gtk_vscrollbar_new(GtkAdjustment *adjustment);
GtkWidget *zel_gtk_hseparator_new();
GtkWidget *zel_gtk_vseparator_new();
GtkWidget *zel_gtk_hbox_new(gboolean homogeneous, gint spacing);
GtkWidget *zel_gtk_vbox_new(gboolean homogeneous, gint spacing);
GtkWidget *zel_gtk_hscale_new(GtkAdjustment *adjustment);
GtkWidget *zel_gtk_vscale_new(GtkAdjustment *adjustment);
GtkWidget *zel_gtk_hpaned_new();
GtkWidget *zel_gtk_vpaned_new();

GtkWidget *zel_gtk_dialog_get_content_area(GtkDialog *dialog);
GtkWidget *zel_gtk_dialog_get_action_area(GtkDialog *dialog);

// Null is ignored.
void zel_gtk_tree_path_free(GtkTreePath *path);

// Kinds of toolbar elements.
enum { ZEL_TOOL_SEPARATOR = 0, ZEL_TOOL_BUTTON = 1, ZEL_TOOL_TOGGLE = 2, ZEL_TOOL_RADIO = 3 };

// Appends a drawn separator; returns it.
GtkWidget *zel_toolbar_append_space(GtkWidget *toolbar);

// Appends an element of a kind and returns it; null for a null toolbar. A radio button joins the
// group of the given radio item (null: a new group). Label, tooltip, icon and handler (of
// "clicked") may be null.
GtkWidget *zel_toolbar_append_element(GtkWidget *toolbar, int kind, GtkWidget *group,
                                      const char *label, const char *tooltip, GtkWidget *icon,
                                      GCallback handler, gpointer data);
