#pragma once

// The item table: every used item of a source as a row of a list that can be sorted and searched,
// and beside it the selected item's texts and its "Ready" button. The main window reaches it
// through edit_ctrl only.
//
// The table keeps a reference to the source. It may outlive the source if nothing but destroying it
// is done then. The operations return 1, or 0 after a GLib warning when the widget is null or of
// another type.

#include <gtk/gtk.h>

#include <memory>

#include "editor/state/edit-ctrl.h"
#include "source/model.h"

#define ZEL_TYPE_TAB_EDIT (zel_tab_edit_get_type())
#define ZEL_TAB_EDIT(object) (G_TYPE_CHECK_INSTANCE_CAST((object), ZEL_TYPE_TAB_EDIT, ZelTabEdit))
#define ZEL_IS_TAB_EDIT(object) (G_TYPE_CHECK_INSTANCE_TYPE((object), ZEL_TYPE_TAB_EDIT))

namespace zel {
struct tab_rows;
class tab_finding;
class tab_hits;
class tab_ready;
class tab_search;
class tab_suggest;
class tab_work;
} // namespace zel

struct ZelTabEdit {
    GtkHBox box;
    GtkWidget *view;            // the list
    GtkTreeModel *store;        // one row per used item
    GtkWidget *search_entry;    // search words
    GtkTreeModel *sort_model;   // what the list shows: the rows of filter_model in order
    GtkTreeModel *filter_model; // the rows of store that filter_func lets through
    GtkWidget *text_widget;     // Zeltext
    GtkWidget *info_label;      // "%d %s": how many items
    GtkWidget *ready_button;
    LangSource *lang_source;    // not owned
    GtkTreePath *selected_path; // in the list, while a row is selected
    GtkTreePath *last_path;     // of the last row, during the move there
    GdkPixbuf *pix_active;
    GdkPixbuf *pix_passive;
    GtkTreeViewColumn *lang1_column; // modes 1 and 2
    GtkTreeViewColumn *lang2_column;
    GList *search_words;                  // of char *, only during a re-filter
    char *last_group;                     // group whose picture is shown; owned, never null
    int busy;                             // a selection or search handler runs
    GtkWidget *found_label;               // beside info_label, how many are found
    std::shared_ptr<zel::tab_rows> *rows; // what the three models stand on
    zel::tab_search *search;              // the row above the list
    zel::tab_suggest *suggest;            // help with its translations
    zel::tab_work *work;                  // what is left to do in them
    zel::tab_hits *hits;                  // in the place of the list for a while
    zel::tab_finding *finding;            // what is listed there
    zel::tab_ready *ready;                // the marks "Ready"
};

struct ZelTabEditClass {
    GtkHBoxClass parent_class;
};

GType zel_tab_edit_get_type();
GtkWidget *zel_tab_edit_new();

// Shows the source, its first row selected; asks the source again for the two shown languages.
int zel_tab_edit_set(GtkWidget *widget, LangSource *source);

// Stores the pending edits of the selected item.
int zel_tab_edit_update(GtkWidget *widget);

// Move through the rows as they are shown.
int zel_tab_edit_first(GtkWidget *widget);
int zel_tab_edit_prev(GtkWidget *widget);
int zel_tab_edit_next(GtkWidget *widget);
int zel_tab_edit_last(GtkWidget *widget);

int zel_tab_edit_check_changed(GtkWidget *widget); // does nothing
int zel_tab_edit_list_focus(GtkWidget *widget);    // the list gets the keyboard

// Call after the source has changed beneath: takes its languages again and selects the first row
// again, so that the texts are reloaded.
int zel_tab_edit_refresh(GtkWidget *widget);

// Both filter the list again.
int zel_tab_edit_whatsnew(GtkWidget *widget);
int zel_tab_edit_empty(GtkWidget *widget);

// Fills the table of operations with the above; 1.
int zel_tab_edit_get_ctrls(edit_ctrl_t *ctrls);

namespace zel {

// The operations that edit_ctrl_t has no place for.
edit_more_t tab_edit_more();

} // namespace zel
