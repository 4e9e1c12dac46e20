#pragma once

// A window with room for an icon, contents and a row of buttons: what the message box and the
// language dialog are built on.

#include <gtk/gtk.h>

struct ZelPopup {
    GtkWindow window;
    GtkWidget *frame; // border 4, fills the window
    GtkWidget *vbox;
    GtkWidget *hbox;        // upper part of vbox
    GtkWidget *icon_box;    // left part of hbox
    GtkWidget *content_box; // right part of hbox, filled by callers
    GtkWidget *button_box;  // under a line, filled by callers
    GtkWidget *icon;        // in icon_box, or null
};

struct ZelPopupClass {
    GtkWindowClass parent_class;
};

GType zel_popup_get_type();
#define ZEL_TYPE_POPUP (zel_popup_get_type())
#define ZEL_POPUP(object) (G_TYPE_CHECK_INSTANCE_CAST((object), ZEL_TYPE_POPUP, ZelPopup))
#define ZEL_IS_POPUP(object) (G_TYPE_CHECK_INSTANCE_TYPE((object), ZEL_TYPE_POPUP))

// A new popup, realized and not shown.
GtkWidget *zel_popup_new();

// Puts an icon into the popup in place of the old one, which is destroyed; null takes it out.
// 0, or 1 after a GLib warning for a bad popup.
int zel_popup_set_icon(GtkWidget *widget, GtkWidget *icon);

namespace zel {

// The window that a dialog started from the widget belongs to (for a menu entry that of the menu
// bar), or null.
GtkWindow *window_of(GtkWidget *widget);

// Shows the popup modally above the parent's window (null: none) and runs the loop until it is
// quit. The popup is destroyed with that window; afterwards the window is as modal as it was
// before.
void popup_run(GtkWidget *popup, GtkWidget *parent, GMainLoop *loop);

// A button of the popup's row, as wide as asked; Return presses the default one, Escape the one
// that closes.
enum { POPUP_PLAIN = 0, POPUP_DEFAULT = 1, POPUP_CLOSES = 2 };
GtkWidget *popup_add_button(GtkWidget *popup, const char *text, int width, int kind);

} // namespace zel
