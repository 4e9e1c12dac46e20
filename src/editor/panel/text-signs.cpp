#include "editor/panel/text-signs.h"

#include <cstring>
#include <string>

namespace {

constexpr const char *action_key = "zel-action"; // how deep a buffer is in actions of the user

// The sign for a character that the view shows as nothing or as a plain blank; null for others.
const char *sign_of(gunichar character, bool at_end)
{
    switch (character) {
    case ' ':
    case '\t':
        return at_end ? "\u00b7" : nullptr;
    case 0x00a0: // no-break, figure and narrow ones
    case 0x2007:
    case 0x202f:
        return "\u00b0";
    case 0x0085: // the line ends that are none in C
    case '\r':
    case 0x2028:
    case 0x2029:
        return "\u21b5";
    case 0x200b: // no width
    case 0x2060:
    case 0xfeff:
        return "\u00a6";
    default:
        return nullptr;
    }
}

// Whether only blanks follow up to the line's end.
bool ends_line(GtkTextIter at)
{
    while (gtk_text_iter_ends_line(&at) == 0) {
        const gunichar character = gtk_text_iter_get_char(&at);
        if (character != ' ' && character != '\t')
            return false;
        gtk_text_iter_forward_char(&at);
    }
    return true;
}

struct painter {
    GtkTextView *view;
    GdkWindow *window;
    cairo_t *cairo;
    PangoLayout *layout;

    painter(GtkTextView *of, GdkWindow *in)
        : view(of), window(in), cairo(gdk_cairo_create(in)),
          layout(gtk_widget_create_pango_layout(GTK_WIDGET(of), nullptr))
    {
        const GdkColor &ink = gtk_widget_get_style(GTK_WIDGET(of))->text[GTK_STATE_NORMAL];
        constexpr double full = 65535;
        // Faint, so that nobody takes a sign for a letter of the text.
        cairo_set_source_rgba(cairo, ink.red / full, ink.green / full, ink.blue / full, 0.45);
    }
    painter(const painter &) = delete;
    painter &operator=(const painter &) = delete;
    ~painter()
    {
        g_object_unref(layout);
        cairo_destroy(cairo);
    }

    void draw(const GtkTextIter &at, const char *sign)
    {
        GdkRectangle place{};
        gint x = 0;
        gint y = 0;
        gtk_text_view_get_iter_location(view, &at, &place);
        gtk_text_view_buffer_to_window_coords(view, GTK_TEXT_WINDOW_TEXT, place.x, place.y, &x, &y);
        pango_layout_set_text(layout, sign, -1);
        gint width = 0;
        gint height = 0;
        pango_layout_get_pixel_size(layout, &width, &height);
        // Centred on the character's place: a character without width has its sign on the border.
        cairo_move_to(cairo, x + (place.width - width) / 2.0, y + (place.height - height) / 2.0);
        pango_cairo_show_layout(cairo, layout);
    }
};

gboolean exposed(GtkWidget *widget, GdkEventExpose *event, gpointer)
{
    GtkTextView *view = GTK_TEXT_VIEW(widget);
    if (event->window != gtk_text_view_get_window(view, GTK_TEXT_WINDOW_TEXT))
        return FALSE;
    gint x = 0;
    gint y = 0;
    gtk_text_view_window_to_buffer_coords(view, GTK_TEXT_WINDOW_TEXT, 0, event->area.y, &x, &y);
    GtkTextIter at;
    GtkTextIter end;
    // Only the lines that are drawn now are looked at.
    gtk_text_view_get_iter_at_location(view, &at, 0, y);
    gtk_text_view_get_iter_at_location(view, &end, G_MAXINT, y + event->area.height);
    painter paint(view, event->window);
    // Found out once for a whole run of blanks: looking ahead from each of them would be quadratic.
    bool in_blanks = false;
    bool at_end = false;
    for (; gtk_text_iter_compare(&at, &end) <= 0; gtk_text_iter_forward_char(&at)) {
        const gunichar character = gtk_text_iter_get_char(&at);
        const bool blank = character == ' ' || character == '\t';
        if (blank && !in_blanks)
            at_end = ends_line(at);
        in_blanks = blank;
        if (const char *sign = sign_of(character, at_end && blank))
            paint.draw(at, sign);
        if (gtk_text_iter_is_end(&at) != 0)
            break;
    }
    return FALSE;
}

void action_begins(GtkTextBuffer *buffer, gpointer)
{
    const int depth = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(buffer), action_key));
    g_object_set_data(G_OBJECT(buffer), action_key, GINT_TO_POINTER(depth + 1));
}

void action_ends(GtkTextBuffer *buffer, gpointer)
{
    const int depth = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(buffer), action_key));
    g_object_set_data(G_OBJECT(buffer), action_key, GINT_TO_POINTER(depth - 1));
}

// Insertions of the program keep their line ends, since a text of the source may hold any: only
// what people paste is changed.
void inserting(GtkTextBuffer *buffer, GtkTextIter *at, gchar *text, gint bytes, gpointer)
{
    const auto size = static_cast<std::size_t>(bytes);
    if (g_object_get_data(G_OBJECT(buffer), action_key) == nullptr ||
        std::memchr(text, '\r', size) == nullptr)
        return;
    std::string plain;
    for (std::size_t i = 0; i < size; ++i) {
        if (text[i] != '\r')
            plain += text[i];
        else if (i + 1 == size || text[i + 1] != '\n')
            plain += '\n';
    }
    // The insertion goes on with the changed text, which comes here again without a carriage
    // return. The iterator stays valid, as the caller expects.
    g_signal_stop_emission_by_name(buffer, "insert-text");
    gtk_text_buffer_insert(buffer, at, plain.data(), static_cast<gint>(plain.size()));
}

} // namespace

namespace zel {

void show_signs(GtkTextView *view)
{
    // After the toolkit's own handler, which would paint over the signs.
    g_signal_connect_after(view, "expose-event", G_CALLBACK(exposed), nullptr);
}

void take_plain_line_ends(GtkTextBuffer *buffer)
{
    g_signal_connect(buffer, "begin-user-action", G_CALLBACK(action_begins), nullptr);
    g_signal_connect(buffer, "end-user-action", G_CALLBACK(action_ends), nullptr);
    g_signal_connect(buffer, "insert-text", G_CALLBACK(inserting), nullptr);
}

} // namespace zel
