#pragma once

// What the editor's windows share: the current source and its table, the main window, the status
// line. Null before the window is built; the widgets belong to the toolkit.

#include <gtk/gtk.h>

#include <string>

#include "editor/state/edit-ctrl.h"
#include "source/model.h"

extern GtkWidget *mainWin;         // the top-level window
extern GtkWidget *editBox;         // the "Language Edit" page
extern GtkWidget *editWin;         // the item table in it, or null
extern GtkWidget *statusWin;       // the one-line entry at the bottom
extern GtkWidget *changed_sign;    // beside it, seen while the source has unsaved changes
extern GtkAccelGroup *accel_group; // the window's keys; the item table adds its own

extern char *def_file;        // path of the current source, owned, or null
extern LangSource *def_group; // the current source, owned, or null

extern GtkWidget *empty_menu; // the two controls of the untranslated filter
extern GtkWidget *empty_tool;
extern int empty_lock; // set while one of them is made to follow the other

// Shows the source's texts in the table again, its first row selected; does nothing without a
// source or a table.
void edit_refresh();

namespace zel {

// The same with the row that is selected.
void edit_reload();

// The source as it is to be written, for the life of a scope: without the entries that exist only
// because the selected item is shown.
class source_to_write {
public:
    source_to_write();
    ~source_to_write();
    source_to_write(const source_to_write &) = delete;
    source_to_write &operator=(const source_to_write &) = delete;
};

// The status line; null empties it.
void edit_status(const char *text);
[[nodiscard]] std::string edit_status_text();

// Counts the changes: a caller that remembers the number can tell later whether there were some.
extern unsigned edit_changes;

// Sets whether the source has unsaved changes: lang_global's modified, and the sign beside the
// status line.
void edit_set_modified(bool modified);

// The value beside "Export path:"; null empties it.
void edit_show_export_path(const char *path);

// lang_global's output languages become copies of the names of the source's edited languages, or
// null (all of them without a source).
void edit_select_output_langs(LangSource *source);

} // namespace zel
