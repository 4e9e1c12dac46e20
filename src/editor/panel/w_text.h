#pragma once

// The text panel beside the item list: the selected item's identity and, for each of the two shown
// languages, a comment and a translation to edit.
//
// The fields are bound to the item's entries of the model; zel_text_update stores there what was
// typed, and zel_text_set does so for the item before. The item must live until then. The
// operations return 1, or 0 after a GLib warning when the widget is null or of another type.

#include "editor/panel/w_text_panel.h"

GtkWidget *zel_text_new();

// The position number and group for the next zel_text_set; a null name drops the group.
int zel_text_set_pos(GtkWidget *widget, int pos);
int zel_text_set_group_name(GtkWidget *widget, const char *name);

// Shows an item, and makes an empty entry for every field that has none; without a source or an
// item the panel is emptied. update: pending edits of the item before are stored first. Entries
// that were made for the item before and are still empty are removed: in a compiled file an empty
// entry leaves the item out, and looking must not do that.
int zel_text_set(GtkWidget *widget, LangSource *source, item_t *item, int update);

// Stores the fields that were typed in.
int zel_text_update(GtkWidget *widget);

// Fills the view from the first entry of that language: that entry, or null.
lang_entry_t *zel_insert_lang(GtkWidget *view, const char *lang, GList *entries);

// Stores the view's text as the entry's lines. Every line but the last keeps its line end; blank
// lines at the end are dropped.
void zel_get_text(GtkWidget *view, lang_entry_t *entry);

void clear_text_view_buffer(GtkWidget *view);

// Of the first entry of that language: the entry, its lines, its first line; null without one.
lang_entry_t *zel_get_lang_entry(GList *entries, const char *lang);
GList *zel_get_lang_list(GList *entries, const char *lang);
const char *zel_get_first_lang_entry(GList *entries, const char *lang);

namespace zel {

// Empties the panel as zel_text_set does without an item, but what is seen stays: the caller shows
// another item at once, and a panel that is emptied in between is laid out and drawn twice.
void text_leave_item(Zeltext *text, int update);

// Takes the keyboard from the panel's texts, as when they are hidden. Who gives it back to a field
// has its new text read aloud.
void text_drop_focus(Zeltext *text);

// The field (text_field) that has the keyboard, or -1.
int text_focused_field(Zeltext *text);

// Gives a field the keyboard, with the caret behind its text; false when it is not shown.
bool text_focus_field(Zeltext *text, int field);

// Gives the keyboard to the field that is translated into: that of the shown language which is not
// the source's own. Does nothing without a source.
void text_focus_translation(Zeltext *text, LangSource *source);

// Around writing the source: removes the empty entries that were made for the shown item, and makes
// them again.
bool text_is_made(const Zeltext *text, const lang_entry_t *entry); // whether it is one of them
void text_put_away(Zeltext *text);
void text_bring_back(Zeltext *text);

// The first shown language whose translation, as it stands in its field, is blank; null when there
// is none. Belongs to the source.
const char *text_missing_language(Zeltext *text);

} // namespace zel
