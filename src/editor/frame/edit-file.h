#pragma once

// The file menu: loading, saving, ending. The data of every handler is the address of def_group.

#include <gtk/gtk.h>

void cb_open(GtkWidget *widget, gpointer data);
void cb_save(GtkWidget *widget, gpointer data);
void cb_save_as(GtkWidget *widget, gpointer data);            // under another name, or one file per
void cb_save_selected_lang(GtkWidget *widget, gpointer data); // language pair
void cb_exit(GtkWidget *widget, gpointer data);

// Handler of closing the main window: TRUE when the user keeps it.
gboolean delete_event(GtkWidget *widget, GdkEvent *event, gpointer data);

// Writes and releases the settings, releases the source.
void prg_exit();

namespace zel {

// Reads def_file into def_group; false when that fails, after the reader's messages. Errors that
// end a command only fail here. The status line tells what was read, or why not.
bool edit_read_source();

// Makes the table of def_group on the edit page.
void edit_show_source();

// Guards the shown source from now on: takes its lock, offers what an earlier editor could not save
// (which replaces the source when the user wants it), and begins its recovery file.
void edit_guard_source(GtkWidget *parent);

} // namespace zel
