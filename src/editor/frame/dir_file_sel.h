#pragma once

// The folder and file choosers. Each runs modally above the window that holds the widget and gives
// the chosen path as a new string owned by the caller, or null.

#include <gtk/gtk.h>

#include "support/list.h"

[[nodiscard]] char *dir_sel(GtkWidget *widget, const char *title, const char *folder);

// A file to read, a file to write. The start folder and the preset name may be null; every "\" in
// them becomes "/", in place.
[[nodiscard]] char *file_sel_read(GtkWidget *widget, const char *title, char *folder, char *name);
[[nodiscard]] char *file_sel_write(GtkWidget *widget, const char *title, char *folder, char *name);

// Several files that match one of the glob patterns, "*.a:*.b": a list of owned paths.
[[nodiscard]] zel_list *file_sel_multiple_unix(GtkWidget *parent, const char *title,
                                               const char *folder, const char *patterns);

// Does nothing; returns 0.
int file_sel_show(GtkWidget *widget);

namespace zel {

// The same with a filter for the ending ("lang-src"), which is on at first, and one for all files.
// The preset name is not changed; its file passes the filter whatever its ending. Letters that are
// typed in the list of files begin a name.
[[nodiscard]] char *select_to_read(GtkWidget *widget, const char *title, const char *preset,
                                   const char *ending);
[[nodiscard]] char *select_to_write(GtkWidget *widget, const char *title, const char *preset,
                                    const char *ending);

// To read a language source; offers those that were opened last.
[[nodiscard]] char *select_source(GtkWidget *widget, const char *title);

} // namespace zel
