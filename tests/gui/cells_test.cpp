#include "gui-support.h"

#include "editor/table/list-cells.h"
#include "editor/toolkit/text-runs.h"

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
    const auto compare = [&](int width, const char *text, int flags) {
        for (const PangoEllipsizeMode mode :
             {PANGO_ELLIPSIZE_NONE, PANGO_ELLIPSIZE_MIDDLE, PANGO_ELLIPSIZE_END}) {
            for (GtkCellRenderer *cell : {ours, theirs})
                g_object_set(cell, "ellipsize", mode, "single-paragraph-mode", TRUE, "weight",
                             width == 61 ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL, "underline",
                             width == 61 ? PANGO_UNDERLINE_ERROR : PANGO_UNDERLINE_NONE, "xalign",
                             width == 400 ? 1.0 : 0.0, nullptr);
            g_object_set(ours, "text", text, nullptr);
            g_object_set(theirs, "text", zel::shown_in_runs(text).c_str(), nullptr);
            EXPECT_TRUE(picture_of(ours, width, flags) == picture_of(theirs, width, flags))
                << width << " " << text << " " << mode << " " << flags;
        }
    };
    // The first font comes twice: layouts that were kept follow their widget.
    for (const char *font : {"Sans 9", "Sans 14", "Sans 9"}) {
        PangoFontDescription *wanted = pango_font_description_from_string(font);
        gtk_widget_modify_font(window, wanted);
        pango_font_description_free(wanted);
        for (const GtkTextDirection direction : {GTK_TEXT_DIR_LTR, GTK_TEXT_DIR_RTL}) {
            gtk_widget_set_direction(window, direction);
            for (const int flags : {0, static_cast<int>(GTK_CELL_RENDERER_SELECTED)})
                for (const int width : {3, 60, 61, 400})
                    for (const char *text : {"", "Save the notes as", "שלום %d עולם"})
                        compare(width, text, flags);
        }
    }
    g_object_unref(ours);
    g_object_unref(theirs);
}

TEST_F(Cells, RowsOfAllTextsAreAlike)
{
    GtkCellRenderer *cell = GTK_CELL_RENDERER(g_object_ref_sink(zel::text_cell_new()));
    std::vector<gint> heights;
    for (const char *text : {"plain", "\u0e17\u0e35\u0e48", "\u65b0\u3057\u3044", "\u2026"}) {
        g_object_set(cell, "text", text, "underline", PANGO_UNDERLINE_ERROR, nullptr);
        gtk_cell_renderer_get_size(cell, window, nullptr, nullptr, nullptr, nullptr,
                                   &heights.emplace_back());
    }
    g_object_unref(cell);
    EXPECT_EQ(std::count(heights.begin(), heights.end(), heights[0]), 4) << heights[1];
}

TEST_F(Cells, TheMarkOfARowIsSeenOnItsOwnColour)
{
    const GdkColor blue{0, 0, 0, 0xffff};
    gtk_widget_modify_base(window, GTK_STATE_NORMAL, &blue);
    GdkPixbuf *mark = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, 12, 12);
    gdk_pixbuf_fill(mark, 0x0000ff00);
    GtkCellRenderer *cell = GTK_CELL_RENDERER(g_object_ref_sink(zel::mark_cell_new()));
    const std::string ground = picture_of(cell, 20);
    g_object_set(cell, "pixbuf", mark, nullptr);
    EXPECT_TRUE(picture_of(cell, 20) == ground) << "this is what the line is for";
    const std::string seen = picture_of(cell, 20, GTK_CELL_RENDERER_SELECTED);
    const auto bright = std::count(seen.begin(), seen.end(), '\xff') -
                        std::count(ground.begin(), ground.end(), '\xff');
    EXPECT_EQ(bright, 2 * 4 * 13) << "red and green of the line around";
    g_object_unref(cell);
    g_object_unref(mark);
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
