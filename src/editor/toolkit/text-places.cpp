#include "editor/toolkit/text-places.h"

namespace zel {

namespace {

std::string text_between(GtkTextBuffer *buffer, const GtkTextIter &start, const GtkTextIter &end)
{
    gchar *text = gtk_text_buffer_get_text(buffer, &start, &end, TRUE);
    std::string out(text);
    g_free(text);
    return out;
}

std::vector<char_span> tagged(GtkTextBuffer *buffer, GtkTextTag *tag)
{
    std::vector<char_span> out;
    GtkTextIter at;
    gtk_text_buffer_get_start_iter(buffer, &at);
    // The search for a toggle skips one at the place that it begins at.
    if (!gtk_text_iter_begins_tag(&at, tag) && !gtk_text_iter_forward_to_tag_toggle(&at, tag))
        return out;
    do {
        const int offset = gtk_text_iter_get_offset(&at);
        if (gtk_text_iter_begins_tag(&at, tag))
            out.push_back({offset, offset});
        else if (!out.empty())
            out.back().end = offset;
        // At the end the toolkit finds the same toggle for ever.
    } while (!gtk_text_iter_is_end(&at) && gtk_text_iter_forward_to_tag_toggle(&at, tag));
    return out;
}

} // namespace

std::string buffer_text(GtkTextBuffer *buffer)
{
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(buffer, &start, &end);
    return text_between(buffer, start, end);
}

std::vector<std::string> buffer_lines(GtkTextBuffer *buffer)
{
    std::vector<std::string> lines;
    GtkTextIter start;
    gtk_text_buffer_get_start_iter(buffer, &start);
    while (!gtk_text_iter_is_end(&start)) {
        GtkTextIter end = start;
        // Moves behind the line's end, so that each line keeps its own.
        gtk_text_iter_forward_line(&end);
        lines.push_back(text_between(buffer, start, end));
        start = end;
    }
    return lines;
}

std::vector<char_span> places_of(const std::string &text, const std::vector<assist::piece> &parts)
{
    std::vector<char_span> out;
    const char *at = text.c_str();
    int offset = 0;
    for (const auto &[start, length] : parts) {
        // Each part is counted from the one before it: counting from the text's start every time
        // would be quadratic.
        offset += static_cast<int>(g_utf8_pointer_to_offset(at, text.c_str() + start));
        at = text.c_str() + start;
        const int chars = static_cast<int>(g_utf8_strlen(at, static_cast<gssize>(length)));
        if (!out.empty() && out.back().end == offset)
            out.back().end += chars;
        else
            out.push_back({offset, offset + chars});
    }
    return out;
}

void tag_places(GtkTextBuffer *buffer, GtkTextTag *tag, const std::vector<char_span> &places)
{
    // Removing and setting a tag makes the view lay out its paragraphs, also when nothing changes
    // in the end.
    if (places == tagged(buffer, tag))
        return;
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(buffer, &start, &end);
    gtk_text_buffer_remove_tag(buffer, tag, &start, &end);
    for (const char_span &one : places) {
        gtk_text_buffer_get_iter_at_offset(buffer, &start, one.start);
        gtk_text_buffer_get_iter_at_offset(buffer, &end, one.end);
        gtk_text_buffer_apply_tag(buffer, tag, &start, &end);
    }
}

} // namespace zel
