#include "editor/frame/edit-place.h"

#include "config/ini.h"
#include "editor/toolkit/screen.h"

#include <algorithm>

namespace {

constexpr int nowhere = -1; // in the settings: the centre
constexpr int room_of_title = 30;
constexpr int least_width = 800;
constexpr int least_height = 600;

bool is_maximized(GtkWidget *window)
{
    return (gdk_window_get_state(gtk_widget_get_window(window)) &
            (GDK_WINDOW_STATE_MAXIMIZED | GDK_WINDOW_STATE_FULLSCREEN |
             GDK_WINDOW_STATE_ICONIFIED)) != 0;
}

// Keeps the window's place in the settings. A window that fills the screen, or is an icon, has no
// place of its own.
gboolean on_configure(GtkWidget *window, GdkEvent *, gpointer)
{
    if (ini == nullptr || is_maximized(window))
        return FALSE;
    gint x = 0;
    gint y = 0;
    gint width = 0;
    gint height = 0;
    gtk_window_get_position(GTK_WINDOW(window), &x, &y);
    gtk_window_get_size(GTK_WINDOW(window), &width, &height);
    // A window at the screen's edge may be at -1, which would say "nowhere" in the settings.
    ini->main_x = std::max(x, 0);
    ini->main_y = std::max(y, 0);
    ini->main_w = width;
    ini->main_h = height;
    return FALSE;
}

} // namespace

namespace zel {

GdkRectangle place_within(GdkRectangle place, const GdkRectangle &area)
{
    place.width = std::clamp(place.width, 1, std::max(area.width, 1));
    place.height = std::clamp(place.height, 1, std::max(area.height - room_of_title, 1));
    place.x = std::clamp(place.x, area.x, area.x + area.width - place.width);
    place.y = std::clamp(place.y, area.y,
                         std::max(area.y, area.y + area.height - room_of_title - place.height));
    return place;
}

void keep_window_place(GtkWidget *window)
{
    const GdkRectangle least = place_within({0, 0, least_width, least_height}, work_area(window));
    gtk_widget_set_size_request(window, least.width, least.height);
    if (ini == nullptr)
        return;
    GtkWindow *const top = GTK_WINDOW(window);
    const bool has_place = ini->main_x > nowhere && ini->main_y > nowhere;
    const GdkRectangle kept{std::max(ini->main_x, 0), std::max(ini->main_y, 0), ini->main_w,
                            ini->main_h};
    // The settings may come from a larger screen, or from a monitor that is switched off now.
    const GdkRectangle area = has_place ? work_area_at(window, kept.x, kept.y) : work_area(window);
    const GdkRectangle place = place_within(kept, area);
    gtk_window_set_default_size(top, place.width, place.height);
    if (has_place) {
        // The window was made to appear in the centre, which would override the move.
        gtk_window_set_position(top, GTK_WIN_POS_NONE);
        gtk_window_move(top, place.x, place.y);
    }
    g_signal_connect(window, "configure-event", G_CALLBACK(on_configure), nullptr);
}

} // namespace zel
