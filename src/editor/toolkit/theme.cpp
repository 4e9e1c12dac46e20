#include "editor/toolkit/theme.h"

#include "support/guard.h"

#include <gtk/gtk.h>

#include <memory>

namespace {

// Holds in every theme: the toolbar fits into 800 pixels, a frame without a line takes no room, and
// the thin line under a misspelt word stands out from its ground.
constexpr char common_rc[] = R"(
style "lang-toolbar" {
  GtkToolbar::space-size = 7
  GtkToolbar::internal-padding = 1
}
widget "*.main-toolbar" style "lang-toolbar"

style "lang-bare" {
  xthickness = 0
  ythickness = 0
}
widget "*.bare-frame" style "lang-bare"

style "lang-light-text" {
  GtkTextView::error-underline-color = "#c00000"
}
widget "*.light-text" style "lang-light-text"

style "lang-dark-text" {
  GtkTextView::error-underline-color = "#ff9a9a"
}
widget "*.dark-text" style "lang-dark-text"
)";

// The toolkit's default is raw: black double edges, and a selected row that turns grey as soon as
// the user types somewhere else. It draws an edge darker than the ground on two sides and lighter,
// which nobody sees, on the others: frames of text get a ground that both stand out from.
constexpr char own_rc[] = R"(
gtk-button-images = 1
gtk-menu-images = 1

style "lang-default" {
  xthickness = 1
  ythickness = 1
  bg[NORMAL] = "#f0f0ee"
  bg[PRELIGHT] = "#f8f8f7"
  bg[ACTIVE] = "#dcdcd8"
  bg[INSENSITIVE] = "#f0f0ee"
  bg[SELECTED] = "#3d6fa8"
  fg[SELECTED] = "#ffffff"
  fg[INSENSITIVE] = "#8a8a86"
  text[INSENSITIVE] = "#6a6a66"
  base[INSENSITIVE] = "#f6f6f4"
  base[SELECTED] = "#3d6fa8"
  text[SELECTED] = "#ffffff"
  base[ACTIVE] = "#cfddee"
  text[ACTIVE] = "#000000"
  GtkWidget::focus-line-width = 1
  GtkWidget::focus-line-pattern = "\1\1"
  GtkWidget::focus-padding = 0
  GtkWidget::separator-height = 1
  GtkWidget::separator-width = 1
  GtkWidget::wide-separators = 0
  GtkButton::default-border = { 0, 0, 0, 0 }
  GtkButton::default-outside-border = { 0, 0, 0, 0 }
  GtkButton::inner-border = { 3, 3, 2, 2 }
  GtkCheckButton::indicator-size = 13
  GtkPaned::handle-size = 6
  GtkScrollbar::slider-width = 13
  GtkScrollbar::stepper-size = 13
  GtkScrolledWindow::scrollbar-spacing = 0
  GtkTreeView::vertical-separator = 2
  GtkTreeView::horizontal-separator = 6
  GtkTreeView::odd-row-color = "#f4f6f9"
  GtkTreeView::even-row-color = "#ffffff"
  GtkNotebook::tab-overlap = 1
  GtkToolbar::shadow-type = GTK_SHADOW_NONE
  GtkMenuBar::shadow-type = GTK_SHADOW_NONE
  GtkMenuBar::internal-padding = 1
}
class "GtkWidget" style "lang-default"

style "lang-menu" {
  bg[PRELIGHT] = "#3d6fa8"
  fg[PRELIGHT] = "#ffffff"
}
class "GtkMenuItem" style "lang-menu"
widget_class "*<GtkMenuItem>*" style "lang-menu"

style "lang-line" {
  bg[NORMAL] = "#a4a4a0"
  bg[INSENSITIVE] = "#b8b8b4"
}
widget "*.line-frame" style "lang-line"

style "lang-entry" {
  bg[NORMAL] = "#a4a4a0"
  bg[INSENSITIVE] = "#b8b8b4"
  GtkEntry::inner-border = { 4, 4, 3, 3 }
}
class "GtkEntry" style "lang-entry"

style "lang-menu-item" {
  ythickness = 3
}
class "GtkMenuItem" style "lang-menu-item"

style "lang-status" {
  base[NORMAL] = "#f0f0ee"
  GtkEntry::inner-border = { 2, 2, 1, 1 }
}
widget "*.status" style "lang-status"

style "lang-tooltip" {
  xthickness = 5
  ythickness = 3
  bg[NORMAL] = "#fbf8dc"
  fg[NORMAL] = "#000000"
}
widget "gtk-tooltip*" style "lang-tooltip"
)";

bool user_has_theme()
{
    gchar *name = nullptr;
    g_object_get(gtk_settings_get_default(), "gtk-theme-name", &name, nullptr);
    const std::unique_ptr<gchar, zel::release<g_free>> theme(name);
    return theme && zel::has_theme(theme.get());
}

// The toolkit's default draws the outer edges of tabs with the black of the style, which no
// resource file can change: the widget gets a style of its own with another line colour.
void give_soft_edges(GtkWidget *widget, gpointer)
{
    GtkStyle *own = gtk_style_copy(gtk_widget_get_style(widget));
    gtk_widget_set_style(widget, own);
    g_object_unref(own);
    // Attaching may have made another style of the copy: ask the widget for it.
    GtkStyle *style = gtk_widget_get_style(widget);
    GdkGCValues line{};
    gdk_color_parse("#a4a4a0", &line.foreground);
    gdk_colormap_alloc_color(style->colormap, &line.foreground, FALSE, TRUE);
    // The style will release what stands there: the old one is released here, the new one by it.
    gtk_gc_release(style->black_gc);
    style->black_gc = gtk_gc_get(style->depth, style->colormap, &line, GDK_GC_FOREGROUND);
}

GdkColor between(const GdkColor &one, const GdkColor &other, int percent_of_other)
{
    const auto mixed = [percent_of_other](int a, int b) {
        return static_cast<guint16>(a + (b - a) * percent_of_other / 100);
    };
    return {0, mixed(one.red, other.red), mixed(one.green, other.green),
            mixed(one.blue, other.blue)};
}

constexpr const char *faint_key = "zel-faint"; // where a label keeps how it is shown
enum faintness { plain = 1, faint, changing };

// Handler of "style-set": a label gets the theme's colours when it is put into its window, and
// others when the user changes the theme.
void make_faint(GtkWidget *label, GtkStyle *, gpointer)
{
    const int wanted = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(label), faint_key));
    // Changing the colour below sends this signal again.
    if (wanted == changing)
        return;
    g_object_set_data(G_OBJECT(label), faint_key, GINT_TO_POINTER(changing));
    // Our own colour must be out before the theme's is read, else each call would fade it further.
    gtk_widget_modify_fg(label, GTK_STATE_NORMAL, nullptr);
    gtk_widget_ensure_style(label);
    const GtkStyle *style = gtk_widget_get_style(label);
    const GdkColor colour = between(style->fg[GTK_STATE_NORMAL], style->bg[GTK_STATE_NORMAL], 40);
    if (wanted == faint)
        gtk_widget_modify_fg(label, GTK_STATE_NORMAL, &colour);
    g_object_set_data(G_OBJECT(label), faint_key, GINT_TO_POINTER(wanted));
}

gboolean draw_line_when_dark(GtkWidget *frame, GdkEventExpose *event, gpointer)
{
    if (!zel::is_dark(frame) || event->window != gtk_widget_get_window(frame) ||
        gtk_widget_has_focus(frame))
        return FALSE;
    const GtkStyle *style = gtk_widget_get_style(frame);
    const GdkColor line = between(style->base[GTK_STATE_NORMAL], style->text[GTK_STATE_NORMAL], 30);
    GtkAllocation place{};
    gtk_widget_get_allocation(frame, &place);
    if (gtk_widget_get_has_window(frame) != 0) { // an entry's is no higher than it asks for
        place.x = place.y = 0;
        gdk_drawable_get_size(event->window, &place.width, &place.height);
    }
    cairo_t *cairo = gdk_cairo_create(event->window);
    gdk_cairo_region(cairo, event->region);
    cairo_clip(cairo);
    gdk_cairo_set_source_color(cairo, &line);
    cairo_set_line_width(cairo, 1);
    cairo_rectangle(cairo, place.x + 0.5, place.y + 0.5, place.width - 1, place.height - 1);
    cairo_stroke(cairo);
    cairo_destroy(cairo);
    return FALSE;
}

// Draws what is in a frame without its own lines: some themes have them for frames without a
// shadow, too, and here they would go through the text.
gboolean draw_content_only(GtkWidget *frame, GdkEventExpose *event, gpointer)
{
    if (GtkWidget *content = gtk_bin_get_child(GTK_BIN(frame)))
        gtk_container_propagate_expose(GTK_CONTAINER(frame), content, event);
    return TRUE;
}

} // namespace

namespace zel {

bool has_theme(const char *name)
{
    // The toolkit's built-in default counts as no theme: our own styles replace it.
    if (name[0] == '\0' || g_strcmp0(name, "Raleigh") == 0)
        return false;
    using glib_string = std::unique_ptr<gchar, release<g_free>>;
    const glib_string shared(gtk_rc_get_theme_dir());
    const glib_string own(g_build_filename(g_get_home_dir(), ".themes", nullptr));
    for (const gchar *folder : {own.get(), shared.get()}) {
        const glib_string file(g_build_filename(folder, name, "gtk-2.0", "gtkrc", nullptr));
        if (g_file_test(file.get(), G_FILE_TEST_EXISTS))
            return true;
    }
    return false;
}

bool is_dark(GtkWidget *view)
{
    const GdkColor &base = gtk_widget_get_style(view)->base[GTK_STATE_NORMAL];
    return base.red + base.green + base.blue < 3 * 0x8000;
}

PangoAttribute *red_letters(GtkWidget *view)
{
    constexpr guint16 full = 0xffff;
    return is_dark(view) ? pango_attr_foreground_new(full, 0x7000, 0x7000)
                         : pango_attr_foreground_new(0xb000, 0, 0);
}

void draw_line_in_dark(GtkWidget *field)
{
    // After the toolkit's own handler, whose edge the line covers.
    g_signal_connect_after(field, "expose-event", G_CALLBACK(draw_line_when_dark), nullptr);
}

GtkWidget *make_line_frame()
{
    GtkWidget *frame = gtk_frame_new(nullptr);
    gtk_frame_set_shadow_type(GTK_FRAME(frame), GTK_SHADOW_IN);
    gtk_widget_set_name(frame, "line-frame");
    draw_line_in_dark(frame);
    return frame;
}

void make_bare(GtkWidget *frame)
{
    gtk_frame_set_shadow_type(GTK_FRAME(frame), GTK_SHADOW_NONE);
    gtk_widget_set_name(frame, "bare-frame");
    g_signal_connect(frame, "expose-event", G_CALLBACK(draw_content_only), nullptr);
}

void show_faint(GtkWidget *label, bool is_faint)
{
    gpointer before = g_object_get_data(G_OBJECT(label), faint_key);
    gpointer wanted = GINT_TO_POINTER(is_faint ? faint : plain);
    // Setting a colour lays out the window, also when it is the same.
    if (before == wanted)
        return;
    // The first call connects the handler: the key is set from then on.
    if (before == nullptr)
        g_signal_connect(label, "style-set", G_CALLBACK(make_faint), nullptr);
    g_object_set_data(G_OBJECT(label), faint_key, wanted);
    make_faint(label, nullptr, nullptr);
}

void soften_edges(GtkWidget *widget)
{
    if (!user_has_theme())
        // After the style is attached: before, it has no colours that could be exchanged.
        g_signal_connect_after(widget, "realize", G_CALLBACK(give_soft_edges), nullptr);
}

void apply_theme()
{
    static bool applied;
    if (applied)
        return;
    applied = true;
    // Of two styles that match, the later one wins: the common ones hold in every theme.
    if (!user_has_theme())
        gtk_rc_parse_string(own_rc);
    gtk_rc_parse_string(common_rc);
}

} // namespace zel
