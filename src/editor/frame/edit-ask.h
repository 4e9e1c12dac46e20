#pragma once

// What actions say and ask. The widget is the one that started the action.

#include <gtk/gtk.h>

namespace zel {

// "Discard changes ?": false when the answer is No or Escape; closing the question by its window's
// button counts as Yes.
bool ask_discard(GtkWidget *widget);

// Shows the translation of the text, an item of the group, in a box.
void message(GtkWidget *widget, const char *group, const char *text);

// The same, and in the status line with the text of the first group.
void status_and_message(GtkWidget *widget, const char *status_group, const char *group,
                        const char *text);

// Says that there is no source to work on.
void nothing_to_do(GtkWidget *widget);

} // namespace zel
