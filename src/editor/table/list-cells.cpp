#include "editor/table/list-cells.h"

#include "editor/toolkit/kept.h"
#include "editor/toolkit/measure.h"
#include "editor/toolkit/text-runs.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace {

GtkCellRendererClass *text_class; // the toolkit's
GtkCellRendererClass *pixbuf_class;

// Layouts of the texts that a cell has drawn, which cost some times as much as drawing them.
struct kept_layouts {
    static constexpr std::size_t most = 128; // some pages of the list

    ~kept_layouts() { drop(); }
    kept_layouts() = default;
    kept_layouts(const kept_layouts &) = delete;
    kept_layouts &operator=(const kept_layouts &) = delete;

    void drop()
    {
        for (const auto &[key, layout] : by_key)
            g_object_unref(layout);
        by_key.clear();
    }

    std::unordered_map<std::string, PangoLayout *> by_key;
    PangoContext *context = nullptr; // a layout follows the changes of its own
};

// How the toolkit lays out the text of a cell that has no other marks than these.
struct text_look {
    const char *text;
    const PangoFontDescription *font;
    PangoUnderline underline;
    PangoEllipsizeMode shortened;
    gboolean in_one_paragraph;
    int room; // -1: as much as it likes
};

std::string key_of(const text_look &look)
{
    std::string key(look.text);
    for (const unsigned part :
         {pango_font_description_hash(look.font), static_cast<unsigned>(look.underline),
          static_cast<unsigned>(look.shortened), static_cast<unsigned>(look.in_one_paragraph),
          static_cast<unsigned>(look.room)})
        key.append(reinterpret_cast<const char *>(&part), sizeof part);
    return key;
}

PangoLayout *layout_new(GtkWidget *widget, const text_look &look)
{
    PangoLayout *layout = gtk_widget_create_pango_layout(widget, look.text);
    PangoAttrList *attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_font_desc_new(look.font));
    if (look.underline != PANGO_UNDERLINE_NONE)
        pango_attr_list_insert(attributes, pango_attr_underline_new(look.underline));
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
    pango_layout_set_single_paragraph_mode(layout, look.in_one_paragraph);
    pango_layout_set_ellipsize(layout, look.shortened);
    pango_layout_set_wrap(layout, PANGO_WRAP_CHAR);
    pango_layout_set_width(layout, look.room < 0 ? -1 : look.room * PANGO_SCALE);
    return layout;
}

PangoLayout *layout_of(GtkCellRenderer *cell, GtkWidget *widget, const text_look &look)
{
    kept_layouts &kept = zel::kept_at<kept_layouts>(cell, "zel-layouts");
    PangoContext *context = gtk_widget_get_pango_context(widget);
    if (kept.context != context || kept.by_key.size() >= kept_layouts::most)
        kept.drop();
    kept.context = context;
    PangoLayout *&layout = kept.by_key[key_of(look)];
    if (layout == nullptr)
        layout = layout_new(widget, look);
    return layout;
}

GtkStateType state_of(GtkWidget *widget, GtkCellRendererState flags)
{
    if (!gtk_widget_is_sensitive(widget))
        return GTK_STATE_INSENSITIVE;
    if ((flags & GTK_CELL_RENDERER_SELECTED) == 0)
        return GTK_STATE_NORMAL;
    return gtk_widget_has_focus(widget) ? GTK_STATE_SELECTED : GTK_STATE_ACTIVE;
}

// Whether the cell is drawn as most are: the toolkit draws the others.
bool is_plain(GtkCellRenderer *cell, GtkWidget *widget, GtkCellRendererState flags)
{
    constexpr int special = GTK_CELL_RENDERER_PRELIT | GTK_CELL_RENDERER_INSENSITIVE;
    const GtkCellRendererText *text = GTK_CELL_RENDERER_TEXT(cell);
    return text->text != nullptr && text->extra_attrs == nullptr && text->foreground_set == 0 &&
           text->background_set == 0 && text->strikethrough_set == 0 && text->rise_set == 0 &&
           text->scale_set == 0 && gtk_cell_renderer_get_sensitive(cell) != 0 &&
           gtk_widget_is_sensitive(widget) != 0 && (flags & special) == 0 &&
           gtk_widget_get_direction(widget) == GTK_TEXT_DIR_LTR;
}

// Draws the text as the toolkit does, with a layout that is kept.
void draw_text(GtkCellRenderer *cell, GdkDrawable *window, GtkWidget *widget, GdkRectangle *area,
               GdkRectangle *expose, GtkCellRendererState flags, const text_look &look)
{
    PangoLayout *layout = layout_of(cell, widget, look);
    PangoRectangle text{};
    gint x_pad = 0;
    gint y_pad = 0;
    gfloat x_align = 0;
    gfloat y_align = 0;
    pango_layout_get_pixel_extents(layout, nullptr, &text);
    gtk_cell_renderer_get_padding(cell, &x_pad, &y_pad);
    gtk_cell_renderer_get_alignment(cell, &x_align, &y_align);
    const int width = std::min(text.width, area->width - 2 * x_pad);
    const int height = std::min(text.height, area->height - 2 * y_pad);
    const auto x =
        static_cast<int>(x_align * static_cast<float>(area->width - text.x - width - 2 * x_pad));
    const auto y =
        static_cast<int>(y_align * static_cast<float>(area->height - height - 2 * y_pad));
    gtk_paint_layout(gtk_widget_get_style(widget), window, state_of(widget, flags), TRUE, expose,
                     widget, "cellrenderertext",
                     area->x + (look.room < 0 ? x : std::max(x, 0)) + x_pad,
                     area->y + std::max(y, 0) + y_pad, layout);
}

// Puts signs and the marks that keep a right-to-left text whole into what is drawn; the list's own
// text has none. Returns what is drawn.
std::string mark_runs(GtkCellRenderer *cell)
{
    const char *text = GTK_CELL_RENDERER_TEXT(cell)->text;
    const std::string plain = text == nullptr ? "" : text;
    std::string marked = zel::shown_in_cell(plain);
    if (marked != plain)
        g_object_set(cell, "text", marked.c_str(), nullptr);
    return marked;
}

struct text_line {
    int height; // in pixels
    int ascent;
};

// By how much the toolkit would draw the text lower than those beside it: letters of some scripts
// come from a font with higher lines.
int lowered_by(GtkWidget *widget, const std::string &shown, int room)
{
    constexpr unsigned char first_far_script = 0xd6; // of UTF-8: Hebrew and what is behind it
    // Measuring takes time, and most texts need none.
    if (std::none_of(shown.begin(), shown.end(),
                     [](char c) { return static_cast<unsigned char>(c) >= first_far_script; }))
        return 0;
    PangoLayout *layout = gtk_widget_create_pango_layout(widget, shown.c_str());
    pango_layout_set_single_paragraph_mode(layout, TRUE);
    text_line own{0, PANGO_PIXELS(pango_layout_get_baseline(layout))};
    pango_layout_get_pixel_size(layout, nullptr, &own.height);
    g_object_unref(layout);
    const auto baseline = [room](const text_line &line) {
        return std::max(0, (room - line.height) / 2) + line.ascent;
    };
    const zel::font_size font = zel::font_size_of(widget);
    return baseline(own) - baseline({PANGO_PIXELS_CEIL(font.line), PANGO_PIXELS(font.ascent)});
}

// For a text in one paragraph the width to wrap at is also the width to shorten to.
void render_text(GtkCellRenderer *cell, GdkDrawable *window, GtkWidget *widget,
                 GdkRectangle *background, GdkRectangle *area, GdkRectangle *expose,
                 GtkCellRendererState flags)
{
    const std::string shown = mark_runs(cell);
    gint padding = 0;
    gint above = 0;
    gtk_cell_renderer_get_padding(cell, &padding, &above);
    gint before = 0;
    gboolean in_one_paragraph = FALSE;
    PangoEllipsizeMode shortened = PANGO_ELLIPSIZE_NONE;
    g_object_get(cell, "wrap-width", &before, "ellipsize", &shortened, "single-paragraph-mode",
                 &in_one_paragraph, nullptr);
    const gint room = shortened == PANGO_ELLIPSIZE_NONE ? -1 : MAX(area->width - 2 * padding, 0);
    // Setting a property notifies its listeners, and this is done for each cell that is drawn.
    if (room != before)
        g_object_set(cell, "wrap-width", room, nullptr);
    GdkRectangle raised = *area;
    raised.y -= lowered_by(widget, shown, area->height - 2 * above);
    const GtkCellRendererText *text = GTK_CELL_RENDERER_TEXT(cell);
    const PangoUnderline underline =
        text->underline_set != 0 ? text->underline_style : PANGO_UNDERLINE_NONE;
    // Without room the toolkit does not shorten.
    if (room != 0 && is_plain(cell, widget, flags))
        return draw_text(cell, window, widget, &raised, expose, flags,
                         {text->text, text->font, underline, shortened, in_one_paragraph, room});
    text_class->render(cell, window, widget, background, &raised, expose, flags);
}

// Gives all rows the height of a line of the font: letters of other scripts may be higher, and so
// may an underline be, but the list has rows of one height.
void size_text(GtkCellRenderer *cell, GtkWidget *widget, GdkRectangle *area, gint *x, gint *y,
               gint *width, gint *height)
{
    // The toolkit's own class fills in the rest.
    text_class->get_size(cell, widget, area, x, y, width, height);
    if (height == nullptr)
        return;
    gint padding = 0;
    gtk_cell_renderer_get_padding(cell, nullptr, &padding);
    *height = PANGO_PIXELS_CEIL(zel::font_size_of(widget).line) + 2 * padding;
}

void text_class_init(gpointer klass, gpointer)
{
    text_class = GTK_CELL_RENDERER_CLASS(g_type_class_peek_parent(klass));
    GTK_CELL_RENDERER_CLASS(klass)->render = render_text;
    GTK_CELL_RENDERER_CLASS(klass)->get_size = size_text;
}

constexpr double round_line = 1.5;
constexpr double full = 65535; // of a colour

void draw_round(cairo_t *cairo, double size)
{
    const double middle = size / 2;
    cairo_set_line_width(cairo, round_line);
    cairo_arc(cairo, middle, middle, middle - round_line, 0, 2 * G_PI);
    cairo_stroke(cairo);
    cairo_arc(cairo, middle, middle, middle - 3 * round_line, 0, 2 * G_PI);
    cairo_fill(cairo);
}

void draw_square(cairo_t *cairo, double size)
{
    cairo_set_line_width(cairo, 1);
    cairo_rectangle(cairo, round_line, round_line, size - 2 * round_line, size - 2 * round_line);
    cairo_stroke(cairo);
}

// The shape as the display keeps it: drawn once, then stamped in every row. The cell keeps it.
cairo_surface_t *shape_of(GtkCellRenderer *cell, bool round, int size, cairo_t *like)
{
    const char *key = round ? "zel-round" : "zel-square";
    auto *shape = static_cast<cairo_surface_t *>(g_object_get_data(G_OBJECT(cell), key));
    if (shape != nullptr)
        return shape;
    // Alpha only: the colour comes with each row.
    shape = cairo_surface_create_similar(cairo_get_target(like), CAIRO_CONTENT_ALPHA, size, size);
    cairo_t *cairo = cairo_create(shape);
    (round ? draw_round : draw_square)(cairo, size);
    cairo_destroy(cairo);
    g_object_set_data_full(G_OBJECT(cell), key, shape, [](gpointer old) {
        cairo_surface_destroy(static_cast<cairo_surface_t *>(old));
    });
    return shape;
}

void render_ready(GtkCellRenderer *cell, GdkDrawable *window, GtkWidget *widget, GdkRectangle *,
                  GdkRectangle *area, GdkRectangle *expose, GtkCellRendererState flags)
{
    gint x = 0;
    gint y = 0;
    gint padding = 0;
    gint size = 0;
    gtk_cell_renderer_get_size(cell, widget, area, &x, &y, nullptr, nullptr);
    gtk_cell_renderer_get_padding(cell, &padding, nullptr);
    g_object_get(cell, "indicator-size", &size, nullptr);
    const GdkColor &ink = gtk_widget_get_style(widget)->text[state_of(widget, flags)];
    cairo_t *cairo = gdk_cairo_create(window);
    // The toolkit asks for a part of the row at times: what is outside must stay as it is.
    if (expose != nullptr) {
        gdk_cairo_rectangle(cairo, expose);
        cairo_clip(cairo);
    }
    const bool round = gtk_cell_renderer_toggle_get_radio(GTK_CELL_RENDERER_TOGGLE(cell)) != 0;
    cairo_set_source_rgb(cairo, ink.red / full, ink.green / full, ink.blue / full);
    cairo_mask_surface(cairo, shape_of(cell, round, size, cairo), area->x + x + padding,
                       area->y + y + padding);
    cairo_destroy(cairo);
}

void ready_class_init(gpointer klass, gpointer)
{
    GTK_CELL_RENDERER_CLASS(klass)->render = render_ready;
}

// Draws a line around the mark of the selected row, whose colour may be that of the mark.
void render_mark(GtkCellRenderer *cell, GdkDrawable *window, GtkWidget *widget,
                 GdkRectangle *background, GdkRectangle *area, GdkRectangle *expose,
                 GtkCellRendererState flags)
{
    pixbuf_class->render(cell, window, widget, background, area, expose, flags);
    if ((flags & GTK_CELL_RENDERER_SELECTED) == 0)
        return;
    GdkRectangle mark{};
    gint x_pad = 0;
    gint y_pad = 0;
    gtk_cell_renderer_get_padding(cell, &x_pad, &y_pad);
    gtk_cell_renderer_get_size(cell, widget, area, &mark.x, &mark.y, &mark.width, &mark.height);
    cairo_t *cairo = gdk_cairo_create(window);
    if (expose != nullptr) {
        gdk_cairo_rectangle(cairo, expose);
        cairo_clip(cairo);
    }
    gdk_cairo_set_source_color(cairo, &gtk_widget_get_style(widget)->text[state_of(widget, flags)]);
    cairo_set_line_width(cairo, 1);
    // Half a pixel off, so that a line of one pixel covers whole ones.
    cairo_rectangle(cairo, area->x + mark.x + x_pad - 0.5, area->y + mark.y + y_pad - 0.5,
                    mark.width - 2 * x_pad + 1, mark.height - 2 * y_pad + 1);
    cairo_stroke(cairo);
    cairo_destroy(cairo);
}

void mark_class_init(gpointer klass, gpointer)
{
    pixbuf_class = GTK_CELL_RENDERER_CLASS(g_type_class_peek_parent(klass));
    GTK_CELL_RENDERER_CLASS(klass)->render = render_mark;
}

// A class of the parent's size that only draws in another way.
GType class_of(GType parent, const char *name, GClassInitFunc init)
{
    GTypeQuery query{};
    g_type_query(parent, &query);
    GTypeInfo info{};
    info.class_size = static_cast<guint16>(query.class_size);
    info.class_init = init;
    info.instance_size = static_cast<guint16>(query.instance_size);
    return g_type_register_static(parent, name, &info, GTypeFlags{});
}

} // namespace

namespace zel {

GtkCellRenderer *text_cell_new()
{
    static const GType type = class_of(GTK_TYPE_CELL_RENDERER_TEXT, "ZelTextCell", text_class_init);
    return GTK_CELL_RENDERER(g_object_new(type, nullptr));
}

GtkCellRenderer *ready_cell_new()
{
    static const GType type =
        class_of(GTK_TYPE_CELL_RENDERER_TOGGLE, "ZelReadyCell", ready_class_init);
    return GTK_CELL_RENDERER(g_object_new(type, nullptr));
}

GtkCellRenderer *mark_cell_new()
{
    static const GType type =
        class_of(GTK_TYPE_CELL_RENDERER_PIXBUF, "ZelMarkCell", mark_class_init);
    return GTK_CELL_RENDERER(g_object_new(type, nullptr));
}

} // namespace zel
