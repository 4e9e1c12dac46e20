#pragma once

// Watches over the file of the current source while it is in the editor: whether another program
// changes it, and whether another editor has it open.

#include <gtk/gtk.h>

#include <string>

#include "recovery/file-state.h"
#include "support/file-call.h"

namespace zel {

// Call before a file is read: remembers its text from before the reading, so that a change
// meanwhile is noticed later.
void watch_note(const char *path);

// Call when the source is shown: takes its lock. When another editor has it, a message says so.
void watch_begin(GtkWidget *parent);

// Call when the source is no longer current: removes its lock file.
void watch_end();

// Whether this editor is the only one that is known to have the source open.
bool watch_is_alone();

// The source's absolute path and its text as it was read or last saved.
const std::string &watched_path();
const file_state &watched_state();

// Call when we have written the watched file, with the file that was written.
void watch_saved(const char *path, const file_id &written);

// Call before the file at the path is written over. When it is the source's file, and another
// program has changed it, the user decides; no is the default.
enum class overwrite { yes, no, other_name };
overwrite watch_ask(GtkWidget *parent, const char *path);

// Whether the file at the path is still the one that the user was asked about.
bool watch_allows(const char *path);

// When the main window gets the keyboard back, the status line tells what has become of the file
// meanwhile.
void watch_window(GtkWidget *window);

} // namespace zel
