#pragma once

// Watches over the file of the current source while it is in the editor: whether another program
// changes it, and whether another editor has it open.

#include <gtk/gtk.h>

#include <string>

#include "recovery/file-state.h"
#include "support/file-call.h"

namespace zel {

// What is about to be read: the file's text is remembered from before the reading, so that a change
// meanwhile is noticed later.
void watch_note(const char *path);

// The source was read and is shown: takes its lock. When another editor has it, a message says so.
void watch_begin(GtkWidget *parent);

// The source is no longer current: no lock file is left.
void watch_end();

// Whether this editor is the only one that is known to have the source open.
bool watch_is_alone();

// The source's absolute path and its text as it was read or last saved.
const std::string &watched_path();
const file_state &watched_state();

// The watched file was written by us, as that file.
void watch_saved(const char *path, const file_id &written);

// Before the file at the path is written over. When that is the source's, and another program has
// changed it, the user decides; no is the default.
enum class overwrite { yes, no, other_name };
overwrite watch_ask(GtkWidget *parent, const char *path);

// Whether the file at the path still is as it was when that was asked or answered.
bool watch_allows(const char *path);

// The main window tells in the status line, when it gets the keyboard back, what has become of the
// file meanwhile.
void watch_window(GtkWidget *window);

} // namespace zel
