#pragma once

// The message box.

#include <gtk/gtk.h>

// The open message box, or null.
extern GtkWidget *winMsg;

// Shows the text (null: "Info") above the window that holds the parent (null: none) and returns
// when the user has pressed "Ok" or closed the box.
void lang_msg_box(GtkWidget *parent, const char *text);

namespace zel {

// The same with the icon of an error in place of that of an information.
void error_box(GtkWidget *parent, const char *text);

} // namespace zel
