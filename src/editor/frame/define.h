#pragma once

// The language dialog: the source's language definitions, which two of them the editor shows, the
// export path, and in modes 1 and 2 new languages, names and the what's-new time.

#include <gtk/gtk.h>

#include "source/model.h"

// One language in the dialog.
struct define_row_t {
    GtkWidget *name_entry;
    GtkWidget *file_entry;
    GtkWidget *edit_button;
    lang_t *lang; // not owned
    int busy;     // the row is being switched off by another one
};

extern GtkWidget *defineWin; // the dialog while it is open, else null
extern GList *defineList;    // of define_row_t, in the order of the languages

// Runs the dialog above the parent's window (null: none) until it is closed; returns 0. The source
// is changed in place, and counts as modified when a value has really changed.
int define_open(GtkWidget *parent, LangSource *source);

// Adds a row for the language to the box and to the list; returns the list.
[[nodiscard]] GList *define_create_entry(GtkWidget *box, GList *rows, lang_t *lang);
