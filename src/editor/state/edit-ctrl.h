#pragma once

// The operations through which the main window drives the item table, as a table: the window knows
// the table widget by nothing else.

struct _GtkWidget;
struct LangSource;
struct lang_entry_t;

// Every operation but the first returns 1, or 0 after a GLib warning for a bad widget.
struct edit_ctrl_t {
    _GtkWidget *(*new_table)();
    int (*set)(_GtkWidget *table, LangSource *source); // shows the source's used items
    int (*update)(_GtkWidget *table);                  // takes pending edits into the source
    int (*first)(_GtkWidget *table);
    int (*prev)(_GtkWidget *table);
    int (*next)(_GtkWidget *table);
    int (*last)(_GtkWidget *table);
    int (*check_changed)(_GtkWidget *table);
    int (*list_focus)(_GtkWidget *table); // the list gets the keyboard
    int (*refresh)(_GtkWidget *table);    // selects the first row again, so the texts are reloaded
    int (*whatsnew)(_GtkWidget *table);   // both filter the list again
    int (*empty)(_GtkWidget *table);
};

// What else the main window asks of the table. Results as above.
struct edit_more_t {
    int (*reload)(_GtkWidget *table);     // the languages again, then the selected item's texts
    int (*put_away)(_GtkWidget *table);   // before the source is written: removes what only
    int (*bring_back)(_GtkWidget *table); // showing the item has made; puts it back after

    // 1 for an entry that exists only because the selected item is shown, 0 for any other.
    int (*is_made)(_GtkWidget *table, const lang_entry_t *entry);
};

// The process's tables, filled before the editor's window is built.
extern edit_ctrl_t edit_ctrl;
extern edit_more_t edit_more;
