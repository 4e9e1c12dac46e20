#include "editor/toolkit/measure.h"

#include "editor/toolkit/kept.h"

#include <string>

namespace {

struct kept_sizes {
    guint font_of_text = 0; // the context's number of changes, which is never 0
    std::string text;
    int width = 0;
    guint font = 0;
    zel::font_size size{};
};

kept_sizes &sizes_of(GtkWidget *widget) { return zel::kept_at<kept_sizes>(widget, "zel-sizes"); }

} // namespace

namespace zel {

int width_in_line(GtkWidget *widget, const char *text)
{
    kept_sizes &kept = sizes_of(widget);
    const guint font = pango_context_get_serial(gtk_widget_get_pango_context(widget));
    if (kept.font_of_text == font && kept.text == text)
        return kept.width;
    PangoLayout *layout = gtk_widget_create_pango_layout(widget, text);
    pango_layout_get_pixel_size(layout, &kept.width, nullptr);
    g_object_unref(layout);
    kept.font_of_text = font;
    kept.text = text;
    return kept.width;
}

font_size font_size_of(GtkWidget *widget)
{
    kept_sizes &kept = sizes_of(widget);
    PangoContext *context = gtk_widget_get_pango_context(widget);
    const guint font = pango_context_get_serial(context);
    if (kept.font == font)
        return kept.size;
    PangoFontMetrics *metrics =
        pango_context_get_metrics(context, gtk_widget_get_style(widget)->font_desc, nullptr);
    const int ascent = pango_font_metrics_get_ascent(metrics);
    kept.size = {ascent + pango_font_metrics_get_descent(metrics), ascent,
                 pango_font_metrics_get_approximate_char_width(metrics)};
    pango_font_metrics_unref(metrics);
    kept.font = font;
    return kept.size;
}

} // namespace zel
