#include "editor/toolkit/text-runs.h"

#include "editor/toolkit/text-places.h"

#define GTK_TEXT_USE_INTERNAL_UNSUPPORTED_API // whether the caret is to be seen just now
#include <gtk/gtktextlayout.h>

#include <algorithm>

namespace {

// A longer piece is left to the toolkit: each letter is measured one by one at every redraw.
constexpr int longest_run = 200; // characters
constexpr const char *ltr_mark = "\u200e";
constexpr const char *rtl_mark = "\u200f";
constexpr unsigned char first_rtl = 0xd6; // no letter of these begins with a smaller byte

bool may_have_rtl(const std::string &text)
{
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) >= first_rtl; });
}

// Whether the first letter outside of the places that has a direction is of a right-to-left script.
bool begins_rtl(const std::string &text, const std::vector<zel::char_span> &places)
{
    if (!may_have_rtl(text))
        return false;
    auto next = places.begin();
    int offset = 0;
    for (const char *at = text.c_str(); *at != '\0'; at = g_utf8_next_char(at), ++offset) {
        while (next != places.end() && next->end <= offset)
            ++next;
        const PangoDirection direction = pango_unichar_direction(g_utf8_get_char(at));
        if (direction != PANGO_DIRECTION_NEUTRAL && (next == places.end() || next->start > offset))
            return direction == PANGO_DIRECTION_RTL;
    }
    return false;
}

// Some letters that follow one another in the text, and where they are seen.
struct run {
    GtkTextIter start;
    GtkTextIter end;
    int left = 0;
    int right = 0;
    int y = 0;
    int height = 0;
    int used = 0; // of the width, by these letters
    bool in_order = true;
    bool goes_on = false; // on the next line
};

GdkRectangle place_of(GtkTextView *view, const GtkTextIter &at)
{
    GdkRectangle place{};
    gtk_text_view_get_iter_location(view, &at, &place);
    // The toolkit gives letters that run to the left a negative width.
    if (place.width < 0) {
        place.x += place.width;
        place.width = -place.width;
    }
    return place;
}

// Finds the place of the run, letter by letter. False when they stand on several lines.
bool measure(GtkTextView *view, run &of)
{
    GdkRectangle place = place_of(view, of.start);
    of.left = place.x;
    of.right = place.x + place.width;
    of.y = place.y;
    of.height = place.height;
    of.used = place.width;
    of.in_order = true;
    GtkTextIter at = of.start;
    while (gtk_text_iter_forward_char(&at) && gtk_text_iter_compare(&at, &of.end) < 0) {
        const int before = place.x;
        place = place_of(view, at);
        if (place.y != of.y)
            return false;
        of.in_order = of.in_order && place.x >= before;
        of.left = std::min(of.left, place.x);
        of.right = std::max(of.right, place.x + place.width);
        of.used += place.width;
    }
    return true;
}

// Whether the letter is drawn inside the run and may belong to it. One of a right-to-left script
// never does: it is a letter of the text around.
bool is_within(GtkTextView *view, const GtkTextIter &at, const run &of)
{
    const GdkRectangle place = place_of(view, at);
    const int middle = place.x + place.width / 2;
    return place.y == of.y && middle > of.left && middle < of.right &&
           pango_unichar_direction(gtk_text_iter_get_char(&at)) != PANGO_DIRECTION_RTL;
}

// Widens the run by the letters that are drawn between those of the piece. False when something
// else is drawn there, too: painting over it would hide letters of the text.
bool grow(GtkTextView *view, run &of)
{
    for (int chars = 0; chars < longest_run && measure(view, of); ++chars) {
        GtkTextIter before = of.start;
        if (gtk_text_iter_ends_line(&of.end) == 0 && is_within(view, of.end, of))
            gtk_text_iter_forward_char(&of.end);
        else if (gtk_text_iter_starts_line(&before) == 0 && gtk_text_iter_backward_char(&before) &&
                 is_within(view, before, of))
            of.start = before;
        else
            // The place of each letter is rounded to a pixel, so the sum may be off by one for
            // each.
            return of.right - of.left - of.used <= chars + 1;
    }
    return false;
}

PangoAttribute *of_colour(PangoAttribute *(*make)(guint16, guint16, guint16),
                          const GdkColor &colour)
{
    return make(colour.red, colour.green, colour.blue);
}

void add_attributes(PangoAttrList *list, const GtkTextAttributes *of, guint from, guint to,
                    const GtkStyle *style, int state)
{
    const bool selected = state >= 0;
    PangoAttribute *attributes[] = {
        of_colour(pango_attr_foreground_new,
                  selected ? style->text[state] : of->appearance.fg_color),
        selected || of->appearance.draw_bg != 0
            ? of_colour(pango_attr_background_new,
                        selected ? style->base[state] : of->appearance.bg_color)
            : nullptr,
        pango_attr_underline_new(static_cast<PangoUnderline>(of->appearance.underline)),
    };
    for (PangoAttribute *one : attributes) {
        if (one == nullptr)
            continue;
        one->start_index = from;
        one->end_index = to;
        pango_attr_list_insert(list, one);
    }
}

// The attributes that the view draws each letter with, selection included.
PangoAttrList *attributes_of(GtkTextView *view, const run &of)
{
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(view);
    const GtkStyle *style = gtk_widget_get_style(GTK_WIDGET(view));
    const int state =
        gtk_widget_has_focus(GTK_WIDGET(view)) ? GTK_STATE_SELECTED : GTK_STATE_ACTIVE;
    GtkTextIter first;
    GtkTextIter last;
    gtk_text_buffer_get_selection_bounds(buffer, &first, &last);
    PangoAttrList *list = pango_attr_list_new();
    GtkTextAttributes *plain = gtk_text_view_get_default_attributes(view);
    guint byte = 0;
    // Letter by letter, because a tag or the selection may begin or end inside the run.
    for (GtkTextIter at = of.start; gtk_text_iter_compare(&at, &of.end) < 0;
         gtk_text_iter_forward_char(&at)) {
        GtkTextAttributes *own = gtk_text_attributes_copy(plain);
        gtk_text_iter_get_attributes(&at, own);
        const auto length =
            static_cast<guint>(g_unichar_to_utf8(gtk_text_iter_get_char(&at), nullptr));
        add_attributes(list, own, byte, byte + length, style,
                       gtk_text_iter_in_range(&at, &first, &last) ? state : -1);
        byte += length;
        gtk_text_attributes_unref(own);
    }
    gtk_text_attributes_unref(plain);
    return list;
}

PangoLayout *layout_of(GtkTextView *view, const run &of)
{
    // A context of its own: the direction of the view's context is not for one run to change.
    PangoContext *context = gtk_widget_create_pango_context(GTK_WIDGET(view));
    pango_context_set_base_dir(context, PANGO_DIRECTION_LTR);
    PangoLayout *layout = pango_layout_new(context);
    g_object_unref(context);
    pango_layout_set_auto_dir(layout, FALSE);
    gchar *text = gtk_text_iter_get_slice(&of.start, &of.end);
    pango_layout_set_text(layout, text, -1);
    g_free(text);
    PangoAttrList *list = attributes_of(view, of);
    pango_layout_set_attributes(layout, list);
    pango_attr_list_unref(list);
    return layout;
}

// Draws the caret within the run. The text around it runs to the left, so the run's start is at its
// right edge and its end at its left.
void draw_caret(cairo_t *cairo, GtkTextView *view, const run &of, PangoLayout *layout, int x, int y)
{
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(view);
    GtkTextIter caret;
    gtk_text_buffer_get_iter_at_mark(buffer, &caret, gtk_text_buffer_get_insert(buffer));
    if (!gtk_widget_has_focus(GTK_WIDGET(view)) || gtk_text_view_get_cursor_visible(view) == 0 ||
        gtk_text_layout_get_cursor_visible(view->layout) == 0 ||
        gtk_text_iter_compare(&caret, &of.start) < 0 || gtk_text_iter_compare(&caret, &of.end) > 0)
        return;
    int at = x;
    if (gtk_text_iter_equal(&caret, &of.start)) {
        at = x + of.right - of.left;
    } else if (gtk_text_iter_equal(&caret, &of.end)) {
        if (of.goes_on)
            return; // the next line's run draws it
    } else {
        gchar *before = gtk_text_iter_get_slice(&of.start, &caret);
        PangoRectangle place{};
        pango_layout_index_to_pos(layout, static_cast<int>(std::string(before).size()), &place);
        g_free(before);
        at = x + PANGO_PIXELS(place.x);
    }
    gdk_cairo_set_source_color(cairo,
                               &gtk_widget_get_style(GTK_WIDGET(view))->text[GTK_STATE_NORMAL]);
    cairo_rectangle(cairo, at, y, 1, of.height);
    cairo_fill(cairo);
}

void draw(GtkTextView *view, GdkWindow *window, const run &of)
{
    gint x = 0;
    gint y = 0;
    gtk_text_view_buffer_to_window_coords(view, GTK_TEXT_WINDOW_TEXT, of.left, of.y, &x, &y);
    // Wipes out what the toolkit has drawn there, which stands in another order.
    cairo_t *cairo = gdk_cairo_create(window);
    cairo_rectangle(cairo, x, y, of.right - of.left, of.height);
    gdk_cairo_set_source_color(cairo,
                               &gtk_widget_get_style(GTK_WIDGET(view))->base[GTK_STATE_NORMAL]);
    cairo_fill(cairo);
    PangoLayout *layout = layout_of(view, of);
    cairo_move_to(cairo, x, y);
    pango_cairo_show_layout(cairo, layout);
    draw_caret(cairo, view, of, layout, x, y);
    g_object_unref(layout);
    cairo_destroy(cairo);
}

// The parts of a piece that the view has broken over several lines.
std::vector<run> parts_of(GtkTextView *view, const GtkTextIter &start, const GtkTextIter &end)
{
    std::vector<run> parts{{start, end}};
    int y = place_of(view, start).y;
    GtkTextIter at = start;
    while (gtk_text_iter_forward_char(&at) && gtk_text_iter_compare(&at, &end) < 0) {
        const int before = y;
        y = place_of(view, at).y;
        if (y == before)
            continue;
        parts.back().end = at;
        parts.back().goes_on = true;
        parts.push_back({at, end});
    }
    return parts;
}

bool has_rtl(GtkTextIter at, const GtkTextIter &end)
{
    for (; gtk_text_iter_compare(&at, &end) < 0; gtk_text_iter_forward_char(&at))
        if (pango_unichar_direction(gtk_text_iter_get_char(&at)) == PANGO_DIRECTION_RTL)
            return true;
    return false;
}

gboolean exposed(GtkWidget *widget, GdkEventExpose *event, gpointer tag_name)
{
    GtkTextView *view = GTK_TEXT_VIEW(widget);
    GtkTextTag *tag =
        gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(gtk_text_view_get_buffer(view)),
                                  static_cast<const char *>(tag_name));
    if (tag == nullptr || event->window != gtk_text_view_get_window(view, GTK_TEXT_WINDOW_TEXT))
        return FALSE;
    // Only the lines that are drawn now are looked at: the text may be long.
    gint y = 0;
    gtk_text_view_window_to_buffer_coords(view, GTK_TEXT_WINDOW_TEXT, 0, event->area.y, nullptr,
                                          &y);
    GtkTextIter at;
    GtkTextIter end;
    gtk_text_view_get_line_at_y(view, &at, y, nullptr);
    gtk_text_view_get_line_at_y(view, &end, y + event->area.height, nullptr);
    gtk_text_iter_forward_to_line_end(&end);
    // Without such a letter the toolkit draws every piece in its order.
    if (!has_rtl(at, end))
        return FALSE;
    do {
        if (!gtk_text_iter_begins_tag(&at, tag))
            continue;
        GtkTextIter piece_end = at;
        gtk_text_iter_forward_to_tag_toggle(&piece_end, tag);
        if (gtk_text_iter_get_offset(&piece_end) - gtk_text_iter_get_offset(&at) >= longest_run)
            continue;
        for (run &part : parts_of(view, at, piece_end))
            // Drawn again only where the toolkit has put the letters into another order.
            if (grow(view, part) && !part.in_order)
                draw(view, event->window, part);
    } while (gtk_text_iter_forward_to_tag_toggle(&at, tag) != 0 &&
             gtk_text_iter_compare(&at, &end) < 0);
    return FALSE;
}

} // namespace

namespace zel {

void keep_runs_whole(GtkTextView *view, const char *tag_name)
{
    // After the toolkit's own handler, which would paint over the runs.
    g_signal_connect_after(view, "expose-event", G_CALLBACK(exposed), const_cast<char *>(tag_name));
}

std::string shown_in_runs(const std::string &text)
{
    if (!may_have_rtl(text))
        return text;
    const std::vector<assist::piece> pieces = assist::pieces_of(text);
    std::string out = begins_rtl(text, places_of(text, pieces)) ? rtl_mark : "";
    std::size_t done = 0;
    for (const auto &[at, length] : pieces) {
        out += text.substr(done, at - done) + ltr_mark + text.substr(at, length) + ltr_mark;
        done = at + length;
    }
    return out + text.substr(done);
}

std::string shown_in_cell(const std::string &text)
{
    constexpr std::size_t few = 2;
    const std::size_t blanks = std::min(text.find_first_not_of(" \t"), text.size());
    const bool is_wide = blanks > few || text.find('\t') < blanks;
    std::string line = is_wide ? "\u2423" + std::to_string(blanks) + " " : "";
    for (std::size_t at = is_wide ? blanks : 0; at < text.size(); ++at)
        if (text[at] != '\r')
            line += text[at];
        else if (at + 1 == text.size() || text[at + 1] != '\n')
            line += '\n';
    return shown_in_runs(line);
}

std::string shown_in_line(const std::string &text)
{
    return may_have_rtl(text) ? ltr_mark + text + ltr_mark : text;
}

void keep_left_to_right(GtkWidget *label)
{
    const bool mirrored = gtk_widget_get_direction(label) == GTK_TEXT_DIR_RTL;
    gtk_widget_set_direction(label, GTK_TEXT_DIR_LTR);
    gtk_misc_set_alignment(GTK_MISC(label), mirrored ? 1.0F : 0.0F, 0.5F);
}

} // namespace zel
