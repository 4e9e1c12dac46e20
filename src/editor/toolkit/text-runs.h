#pragma once

// Conversions, symbols and tags in texts that are written from right to left. A text view orders
// what it lays out by the scripts of its letters, which takes a piece like "%d" apart: the sign is
// drawn on the other side of its letter. Here such a piece is drawn as one run from left to right
// all the same. The text stays as it is, and nothing is put into it.

#include <gtk/gtk.h>

#include <string>

namespace zel {

// Draws the places that the tag of this name marks as runs from left to right, wherever the view
// has them otherwise: the letters, their colours, selection and caret. Where the view breaks a
// piece over two lines, each part is such a run: nothing but a letter in the text could keep it
// together.
void keep_runs_whole(GtkTextView *view, const char *tag_name);

// The text with marks that keep its direction and its pieces whole where it is only shown; without
// right-to-left letters the text itself. For labels and lists, never for what is stored.
[[nodiscard]] std::string shown_in_runs(const std::string &text);

// The same for a cell of one line, where blanks before the text would take its room: three and more
// become their number behind a sign. A line end is a line feed, for which the toolkit has a sign.
[[nodiscard]] std::string shown_in_cell(const std::string &text);

// The text within a line of another that runs from left to right.
[[nodiscard]] std::string shown_in_line(const std::string &text);

// Lets a label's text run from left to right in every interface, as dates and paths do, which are
// read wrongly else; it stands where the lines of the interface begin.
void keep_left_to_right(GtkWidget *label);

} // namespace zel
