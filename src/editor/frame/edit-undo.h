#pragma once

// Undo and redo in the editor's window: goes to the item that a step changed and takes the step
// back there, or does it again.

#include <gtk/gtk.h>

namespace zel {

// Adds Ctrl+Z and Shift+Ctrl+Z to accel_group, which exists by then.
void undo_add_keys();

// Records what is done in the table from now on, with nothing to undo yet, and adds undo and redo
// to the menus of its fields.
void undo_watch(GtkWidget *table);

// Takes a step back, or does the next one again; says so in the status line when there is none.
void edit_undo();
void edit_redo();

} // namespace zel
