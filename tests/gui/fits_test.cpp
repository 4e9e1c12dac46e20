#include "editor-fixture.h"

#include "editor/edit-keys.h"
#include "editor/screen.h"

namespace {

class Fits : public gui::Editor {
protected:
    static GtkAllocation place_of(GtkWidget *widget)
    {
        GtkAllocation place{};
        gtk_widget_get_allocation(widget, &place);
        return place;
    }

    static void set_font(const char *name)
    {
        gtk_settings_set_string_property(gtk_settings_get_default(), "gtk-font-name", name, "test");
        gui::settle(50);
    }
};

TEST_F(Fits, TheKeysArePutOnAScreenThatIsTooSmallForTheFont)
{
    gui::run_editor(source(), [&] {
        set_font("Sans 40");
        zel::show_keys();
        gui::settle(100);
        GtkWidget *window = gui::window_titled("Keys");
        ASSERT_NE(window, nullptr);
        const GdkRectangle screen = zel::work_area(window);
        EXPECT_LE(place_of(window).width, screen.width);
        EXPECT_LE(place_of(window).height, screen.height);
        gtk_dialog_response(GTK_DIALOG(window), GTK_RESPONSE_CLOSE);
        set_font("Sans 10");
    });
}

TEST_F(Fits, AFindingHasTheRoomThatItsCaptionLeaves)
{
    gui::run_editor(source(), [&] {
        gtk_window_resize(GTK_WINDOW(mainWin), 1200, 800);
        GtkWidget *caption = panel()->trans2_label;
        translate(panel()->trans2_view, "%d <b> ");
        gui::settle(100);
        GtkWidget *finding = panel()->finding2_label;
        ASSERT_NE(gtk_widget_get_visible(finding), 0);
        const int row = place_of(gtk_widget_get_parent(finding)).width;
        EXPECT_GT(place_of(finding).width, row / 2);
        EXPECT_FALSE(pango_layout_is_ellipsized(gtk_label_get_layout(GTK_LABEL(caption))));
        lang_global.modified = 0;
    });
}

} // namespace
