#include "gui-support.h"

#include "editor/list-cells.h"
#include "editor/text-runs.h"

#include <algorithm>

namespace {

constexpr int height = 24;

// A cell as a widget with light letters on dark ground draws it.
class Cells : public gui::Test {
protected:
    Cells()
    {
        const GdkColor dark{0, 0x2000, 0x2000, 0x2000};
        const GdkColor light{0, 0xffff, 0xffff, 0xffff};
        for (const GtkStateType state : {GTK_STATE_NORMAL, GTK_STATE_ACTIVE}) {
            gtk_widget_modify_base(window, state, &dark);
            gtk_widget_modify_text(window, state, &light);
        }
        gtk_widget_show(window);
    }
    ~Cells() override { gtk_widget_destroy(window); }

    std::string picture_of(GtkCellRenderer *cell, int width, int flags = 0)
    {
        GdkPixmap *pixmap = gdk_pixmap_new(gtk_widget_get_window(window), width, height, -1);
        gdk_draw_rectangle(pixmap, gtk_widget_get_style(window)->base_gc[GTK_STATE_NORMAL], TRUE, 0,
                           0, width, height);
        GdkRectangle area{0, 0, width, height};
        gtk_cell_renderer_render(cell, pixmap, window, &area, &area, &area,
                                 static_cast<GtkCellRendererState>(flags));
        const std::string out = gui::pixels_of(pixmap, area);
        g_object_unref(pixmap);
        return out;
    }

    GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
};

TEST_F(Cells, ATextIsDrawnAsByTheToolkit)
{
    GtkCellRenderer *ours = GTK_CELL_RENDERER(g_object_ref_sink(zel::text_cell_new()));
    GtkCellRenderer *theirs = GTK_CELL_RENDERER(g_object_ref_sink(gtk_cell_renderer_text_new()));
    for (const int width : {3, 60, 61, 400})
        for (const char *text : {"", "Save the notes as", "שלום %d עולם"})
            for (const PangoEllipsizeMode mode :
                 {PANGO_ELLIPSIZE_NONE, PANGO_ELLIPSIZE_MIDDLE, PANGO_ELLIPSIZE_END}) {
                for (GtkCellRenderer *cell : {ours, theirs})
                    g_object_set(cell, "ellipsize", mode, "single-paragraph-mode", TRUE, nullptr);
                g_object_set(ours, "text", text, nullptr);
                g_object_set(theirs, "text", zel::shown_in_runs(text).c_str(), nullptr);
                EXPECT_TRUE(picture_of(ours, width) == picture_of(theirs, width))
                    << width << " " << text << " " << mode;
            }
    g_object_unref(ours);
    g_object_unref(theirs);
}

TEST_F(Cells, ReadyMarksDifferAndAreSeenOnDarkGround)
{
    GtkCellRenderer *cell = GTK_CELL_RENDERER(g_object_ref_sink(zel::ready_cell_new()));
    for (const int flags : {0, static_cast<int>(GTK_CELL_RENDERER_SELECTED)}) {
        std::string seen[2];
        for (const bool ready : {false, true}) {
            g_object_set(cell, "radio", ready ? TRUE : FALSE, nullptr);
            seen[ready] = picture_of(cell, 40, flags);
            const auto bright = std::count_if(seen[ready].begin(), seen[ready].end(), [](char c) {
                return static_cast<unsigned char>(c) > 0xc0;
            });
            EXPECT_GT(bright, 3 * 20) << ready << flags;
        }
        EXPECT_FALSE(seen[0] == seen[1]);
    }
    g_object_unref(cell);
}

} // namespace
