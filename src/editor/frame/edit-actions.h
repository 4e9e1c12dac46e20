#pragma once

// Moving through the items, the untranslated filter, settings, help, and what the main window
// itself reacts to. The data of every handler is the address of def_group.

#include <gtk/gtk.h>

void cb_first(GtkWidget *widget, gpointer data);
void cb_previous(GtkWidget *widget, gpointer data);
void cb_next(GtkWidget *widget, gpointer data);
void cb_last(GtkWidget *widget, gpointer data);

// The untranslated filter; the check entry of the menu and the toggle of the toolbar are one
// setting.
void cb_empty_menu(GtkWidget *widget, gpointer data);
void cb_empty_toolbar(GtkWidget *widget, gpointer data);

void cb_posnr(GtkWidget *widget, gpointer data); // position numbers in exports, a toggle
void cb_settings(GtkWidget *widget, gpointer data);
void cb_help(GtkWidget *widget, gpointer data);

// Lets every key pass; with lang_global's digit_keys the digits become those of Arabic.
gboolean lang_key_press_event(GtkWidget *widget, GdkEventKey *event, gpointer data);

// Gives the keys of accel_group precedence over the mnemonics of menus: Alt+S saves, Alt+M marks
// ready, though two menus have these letters. They never open those menus, not even while they
// cannot act.
gboolean accel_first_event(GtkWidget *widget, GdkEventKey *event, gpointer data);

// Handler of the edit page's tab when it is drawn: gives the list the keyboard. A field that the
// user types in gets it back, since a window that passes over the tab has it drawn, too.
gboolean list_expose_event(GtkWidget *widget, GdkEventExpose *event, gpointer data);
