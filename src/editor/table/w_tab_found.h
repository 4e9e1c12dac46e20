#pragma once

// The row under the list: its count, and how much of it a search or a filter has left.

#include <gtk/gtk.h>

#include <cstddef>

namespace zel {

// The row with a label for the count, one for what is found, and what is given.
struct tab_info {
    GtkWidget *frame;
    GtkWidget *count;
    GtkWidget *found;
};
[[nodiscard]] tab_info tab_info_new(GtkWidget *progress);

// What the list shows: so many of all rows, with words searched for, or with a filter. The label is
// empty while the list shows all.
struct tab_found {
    std::size_t shown;
    std::size_t all;
    bool searched;
    bool untranslated; // only items that lack a text
    bool other_filter;
};
void tab_show_found(GtkWidget *label, const tab_found &found);

} // namespace zel
