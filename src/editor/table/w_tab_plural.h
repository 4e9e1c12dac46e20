#pragma once

// The line under a text with plural forms: which numbers take which form, "1, 21 | 2-4 | 0, 5-20",
// the form with the caret bold, what the text lacks in red.

#include <gtk/gtk.h>

#include <memory>
#include <string>
#include <string_view>

namespace zel {

struct plural_line {
    std::string text;
    std::string marks;   // changes with what is bold or red
    std::string tooltip; // the form at the caret with some of its numbers put in
    std::unique_ptr<PangoAttrList, decltype(&pango_attr_list_unref)> attributes{
        nullptr, pango_attr_list_unref};
};

// Of a view's text, in a language with this rule for its forms; the label is where the line will
// stand.
[[nodiscard]] plural_line plural_line_of(GtkWidget *view, GtkWidget *label, std::string_view rule);

// Selects the form before (-1) or behind (1) the one with the caret; false when there is none.
bool plural_go_to_form(GtkWidget *view, int direction);

} // namespace zel
