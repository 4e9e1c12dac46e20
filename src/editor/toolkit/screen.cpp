#include "editor/toolkit/screen.h"

#include <algorithm>

namespace {

// Reads the window manager's area of the first desktop; false when it sets none.
bool managed_area(GdkScreen *screen, GdkRectangle &area)
{
    GdkAtom type = GDK_NONE;
    gint format = 0;
    gint length = 0;
    guchar *data = nullptr;
    if (gdk_property_get(gdk_screen_get_root_window(screen),
                         gdk_atom_intern_static_string("_NET_WORKAREA"),
                         gdk_atom_intern_static_string("CARDINAL"), 0, 4 * sizeof(long), FALSE,
                         &type, &format, &length, &data) == 0)
        return false;
    // The toolkit hands over values of 32 bits as longs, and counts their length in bytes.
    const bool whole = format == 32 && length >= static_cast<gint>(4 * sizeof(long));
    if (whole) {
        const long *values = reinterpret_cast<const long *>(data);
        area = {static_cast<gint>(values[0]), static_cast<gint>(values[1]),
                static_cast<gint>(values[2]), static_cast<gint>(values[3])};
    }
    g_free(data);
    return whole;
}

GdkRectangle area_of(GdkScreen *screen, gint monitor)
{
    GdkRectangle area{};
    gdk_screen_get_monitor_geometry(screen, monitor, &area);
    GdkRectangle managed{};
    GdkRectangle both{};
    // The manager's area spans all monitors: only its part on this one counts. A manager that sets
    // an area beside the monitor is not believed.
    if (managed_area(screen, managed) && gdk_rectangle_intersect(&area, &managed, &both) != 0)
        return both;
    return area;
}

} // namespace

namespace zel {

GdkRectangle work_area(GtkWidget *widget)
{
    GdkScreen *screen = gtk_widget_get_screen(widget);
    GdkWindow *window = gtk_widget_get_window(widget);
    // A widget that was never shown has no window yet.
    const gint monitor = window == nullptr ? 0 : gdk_screen_get_monitor_at_window(screen, window);
    return area_of(screen, monitor);
}

GdkRectangle work_area_at(GtkWidget *widget, int x, int y)
{
    GdkScreen *screen = gtk_widget_get_screen(widget);
    return area_of(screen, gdk_screen_get_monitor_at_point(screen, x, y));
}

} // namespace zel
