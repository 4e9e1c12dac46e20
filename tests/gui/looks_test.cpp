// Sizes and places of what one sees, in small and large windows and with large letters.

#include "editor-fixture.h"
#include "editor/theme.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace gui;

namespace {

class Looks : public Editor {
protected:
    ~Looks() override { set_font("Sans 10"); }

    static void set_font(const char *font)
    {
        gtk_settings_set_string_property(gtk_settings_get_default(), "gtk-font-name", font, "test");
    }
    static int height_of(GtkWidget *widget)
    {
        GtkAllocation place{};
        gtk_widget_get_allocation(widget, &place);
        return place.height;
    }
    static int lines_in(GtkWidget *view)
    {
        PangoLayout *layout = gtk_widget_create_pango_layout(view, "Ag");
        int line = 0;
        pango_layout_get_pixel_size(layout, nullptr, &line);
        g_object_unref(layout);
        return height_of(view) / line;
    }
    // Whether all of the widget is seen in what scrolls around it.
    static bool in_sight(GtkWidget *widget)
    {
        GtkWidget *viewport = gtk_widget_get_ancestor(widget, GTK_TYPE_VIEWPORT);
        gint x = 0;
        gint y = 0;
        gtk_widget_translate_coordinates(widget, viewport, 0, 0, &x, &y);
        return y >= 0 && y + height_of(widget) <= height_of(viewport);
    }
    static void resize(int width, int height)
    {
        gtk_window_resize(GTK_WINDOW(mainWin), width, height);
        wait_for([&] {
            gint w = 0;
            gtk_window_get_size(GTK_WINDOW(mainWin), &w, nullptr);
            return w == width;
        });
        settle(100);
    }
};

} // namespace

TEST_F(Looks, EveryFieldHasItsLinesInTheSmallestWindow)
{
    for (const char *font : {"Sans 10", "Sans 14"}) {
        for (const unsigned mode : {0U, 1U, 2U}) {
            set_font(font);
            lang_global.editor_mode = mode;
            run_editor(source(), [&] {
                settle(200);
                for (GtkWidget *view : {panel()->comment1_view, panel()->comment2_view})
                    EXPECT_GE(lines_in(view), 1) << font << ", mode " << mode;
                for (GtkWidget *view : {panel()->trans1_view, panel()->trans2_view})
                    EXPECT_GE(lines_in(view), 2) << font << ", mode " << mode;
                if (std::string("Sans 10") == font) {
                    EXPECT_TRUE(in_sight(panel()->trans2_view)) << "nothing scrolls, mode " << mode;
                }
                for (const int field : {TEXT_TRANS2, TEXT_COMMENT1, TEXT_COMMENT2, TEXT_TRANS1}) {
                    zel::text_focus_field(panel(), field);
                    settle();
                    GtkWidget *view = gtk_window_get_focus(GTK_WINDOW(mainWin));
                    EXPECT_TRUE(in_sight(view)) << font << ", mode " << mode << ", " << field;
                }
            });
        }
    }
}

TEST_F(Looks, TranslationsGetTheRoomOfALargeWindow)
{
    run_editor(source(), [&] {
        resize(1200, 900);
        EXPECT_EQ(height_of(panel()->comment1_view), 60);
        EXPECT_EQ(height_of(panel()->comment2_view), 60);
        EXPECT_GT(height_of(panel()->trans1_view), 120);
        EXPECT_NEAR(height_of(panel()->trans1_view), height_of(panel()->trans2_view), 1);
    });
}

TEST_F(Looks, AThemeWithoutAPartForTheToolkitIsNone)
{
    std::string home = std::string(g_get_home_dir()) + "/.themes";
    std::filesystem::create_directories(home + "/with-part/gtk-2.0");
    write_file(home + "/with-part/gtk-2.0/gtkrc", "");
    std::filesystem::create_directories(home + "/without/gtk-3.0");
    EXPECT_TRUE(zel::has_theme("with-part"));
    EXPECT_FALSE(zel::has_theme("without"));
    EXPECT_FALSE(zel::has_theme("nowhere"));
    EXPECT_FALSE(zel::has_theme("Raleigh"));
    EXPECT_FALSE(zel::has_theme(""));
}
