#pragma once

// Places in a text view's buffer, in characters, and tags on them.

#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "assist/pieces.h"

namespace zel {

struct char_span {
    int start;
    int end;
    bool operator==(const char_span &) const = default;
};

// The buffer of a text view.
inline GtkTextBuffer *buffer_of(GtkWidget *view)
{
    return gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
}

// The whole text of the buffer.
[[nodiscard]] std::string buffer_text(GtkTextBuffer *buffer);

// The same in lines, each with its end.
[[nodiscard]] std::vector<std::string> buffer_lines(GtkTextBuffer *buffer);

// The places of parts of the text, which stand in its order; parts that touch are one place.
[[nodiscard]] std::vector<char_span> places_of(const std::string &text,
                                               const std::vector<assist::piece> &parts);

// Tags these places, which stand in their order, and no others. Where the tag is right already, the
// toolkit lays nothing out again.
void tag_places(GtkTextBuffer *buffer, GtkTextTag *tag, const std::vector<char_span> &places);

} // namespace zel
