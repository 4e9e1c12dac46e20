#pragma once

// The field of a file chooser in which a path is typed.

#include <gtk/gtk.h>

namespace zel {

// The widget inside a chooser that does its work; null when the chooser has been destroyed.
GtkWidget *inner_chooser(GtkWidget *chooser);

// Shows the chooser with its field, which has the keyboard; the Tab key completes a path in it. The
// name of the preset file stands in it and is selected; without one it is empty. What is typed
// stays when the list beside it has been read and selects something; a letter typed in the list or
// its folders begins a path. Returns GTK_RESPONSE_NONE, or the answer that the chooser got while
// its folder was awaited: then it is not shown.
int show_path_field(GtkWidget *chooser, const char *preset);

// Puts a whole path into the field, as if it was typed.
void put_path(GtkWidget *chooser, const char *path);

// Says under the chooser why the path is not taken, and gives the field the keyboard again.
void refuse_path(GtkWidget *chooser, const char *why);

} // namespace zel
