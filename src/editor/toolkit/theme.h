#pragma once

// The looks of the editor where the user's desktop has none of its own.

#include <gtk/gtk.h>

namespace zel {

// Parses the program's own styles, once: all of them while the user has no theme, else only what
// the window needs to fit. Called with the display open, before the first window.
void apply_theme();

// Whether a theme of that name has a part for this toolkit. Without one the toolkit shows its raw
// default, whatever the user has chosen.
bool has_theme(const char *name);

// Whether the view shows light letters on dark ground.
bool is_dark(GtkWidget *view);

// A red that can be read on the view's ground, and so on the labels around it.
[[nodiscard]] PangoAttribute *red_letters(GtkWidget *view);

// A frame with a line on all four sides, for what one types or reads in. The line is seen without a
// theme, too, and where a dark theme draws it in the colour of the ground.
GtkWidget *make_line_frame();

// Draws that line around a frame or an entry, which a dark theme may leave without one. While the
// field has the keyboard, the theme draws its own.
void draw_line_in_dark(GtkWidget *field);

// A frame that only holds something together: no line, and no room for one.
void make_bare(GtkWidget *frame);

// Shows the label in a colour half way to its ground, or in its own again. The label stays
// sensitive: some themes engrave an insensitive one, which makes it stand out.
void show_faint(GtkWidget *label, bool is_faint);

// Takes the black out of a widget's edges where the user has no theme.
void soften_edges(GtkWidget *widget);

} // namespace zel
