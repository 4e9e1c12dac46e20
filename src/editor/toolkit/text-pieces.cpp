#include "editor/toolkit/text-pieces.h"

#include <algorithm>

namespace {

// The toolkit splits off a run of letters without a break and shapes it again, with all that
// follows, for each line that it wraps into: 36 s for 100,000 letters. A change of tags ends the
// run, and so does a tag that changes nothing.
constexpr int long_paragraph = 2000; // characters
constexpr int piece = 500;

constexpr const char *tag_name = "piece";

// Tags every second piece of the paragraph between these offsets in it.
void cut(GtkTextBuffer *buffer, const GtkTextIter &paragraph, int from, int to)
{
    GtkTextTag *tag = gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), tag_name);
    GtkTextIter start = paragraph;
    gtk_text_iter_set_line_offset(&start, from);
    for (int at = from; at < to;) {
        const int next = std::min((at / piece + 1) * piece, to);
        GtkTextIter end = start;
        gtk_text_iter_forward_chars(&end, next - at);
        // The parity comes from the place in the paragraph, so pieces that are cut later fit those
        // that stand. What is inserted into a tagged piece has its tag, which is why the others are
        // cleared.
        if (at / piece % 2 != 0)
            gtk_text_buffer_apply_tag(buffer, tag, &start, &end);
        else
            gtk_text_buffer_remove_tag(buffer, tag, &start, &end);
        start = end;
        at = next;
    }
}

// Cuts only what is new, since texts come in many strings; a paragraph that has become long with it
// is cut whole.
void inserted(GtkTextBuffer *buffer, GtkTextIter *end, gchar *text, gint bytes, gpointer)
{
    if (gtk_text_buffer_get_char_count(buffer) < long_paragraph)
        return;
    const int length = static_cast<int>(g_utf8_strlen(text, bytes));
    GtkTextIter start = *end;
    gtk_text_iter_backward_chars(&start, length);
    GtkTextIter paragraph = start;
    gtk_text_iter_set_line_offset(&paragraph, 0);
    for (;;) {
        const int chars = gtk_text_iter_get_chars_in_line(&paragraph);
        const bool first = gtk_text_iter_get_line(&paragraph) == gtk_text_iter_get_line(&start);
        const bool last = gtk_text_iter_get_line(&paragraph) == gtk_text_iter_get_line(end);
        const bool was_long = chars - length >= long_paragraph;
        if (chars >= long_paragraph)
            cut(buffer, paragraph, first && was_long ? gtk_text_iter_get_line_offset(&start) : 0,
                last && was_long ? gtk_text_iter_get_line_offset(end) : chars);
        if (last || gtk_text_iter_forward_line(&paragraph) == 0)
            break;
    }
}

} // namespace

namespace zel {

void keep_in_pieces(GtkTextBuffer *buffer)
{
    gtk_text_buffer_create_tag(buffer, tag_name, nullptr);
    // After the toolkit's own handler: only then is the text in the buffer, with its end at the
    // iterator.
    g_signal_connect_after(buffer, "insert-text", G_CALLBACK(inserted), nullptr);
}

} // namespace zel
