#pragma once

// Sizes in a widget's font. The widget keeps them until its font changes: measuring lays out
// letters, and the panel asks for the same sizes whenever it is given its place.

#include <gtk/gtk.h>

namespace zel {

// Pixels that the text takes in one line; the widget keeps them for the text asked for last.
int width_in_line(GtkWidget *widget, const char *text);

struct font_size {
    int line; // ascent and descent, in units of Pango
    int ascent;
    int letter; // the width of a usual one
};
font_size font_size_of(GtkWidget *widget);

} // namespace zel
