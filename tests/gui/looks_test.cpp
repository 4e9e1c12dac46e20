// Sizes and places of what one sees, in small and large windows and with large letters.

#include "config/ini.h"
#include "editor-fixture.h"
#include "editor/frame/edit-keys.h"
#include "editor/table/w_tab_widths.h"
#include "editor/toolkit/screen.h"
#include "editor/toolkit/theme.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace gui;

namespace {

class Looks : public Editor {
protected:
    static int lines_in(GtkWidget *view) { return height_of(view) / line_height(view); }
    static GtkWidget *panes() { return gtk_widget_get_ancestor(panel_widget(), GTK_TYPE_PANED); }
    static GtkWidget *panel_widget() { return tab()->text_widget; }
    static GtkAllocation place_of(GtkWidget *widget)
    {
        GtkAllocation place{};
        gtk_widget_get_allocation(widget, &place);
        return place;
    }
    static bool is_cut(GtkWidget *of)
    {
        return pango_layout_is_ellipsized(gtk_label_get_layout(GTK_LABEL(of))) != 0;
    }
    static int divider() { return gtk_paned_get_position(GTK_PANED(panes())); }
    // The share of the width that the list has.
    static double list_share() { return static_cast<double>(divider()) / place_of(panes()).width; }
    // The texts of a row as the list draws them, in the order of the columns.
    static std::vector<std::string> drawn_row(int row)
    {
        std::vector<std::string> texts;
        GtkTreeModel *model = gtk_tree_view_get_model(list());
        GtkTreeIter iter;
        gtk_tree_model_iter_nth_child(model, &iter, nullptr, row);
        for (int number = 0;; ++number) {
            GtkTreeViewColumn *column = gtk_tree_view_get_column(list(), number);
            if (column == nullptr)
                return texts;
            gtk_tree_view_column_cell_set_cell_data(column, model, &iter, FALSE, FALSE);
            GList *cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
            gchar *text = nullptr;
            if (GTK_IS_CELL_RENDERER_TEXT(cells->data))
                g_object_get(cells->data, "text", &text, nullptr);
            texts.emplace_back(text == nullptr ? "" : text);
            g_free(text);
            g_list_free(cells);
        }
    }
    static void expect_whole_titles(const char *font)
    {
        for (int number = 1; number < 6; ++number) {
            GtkWidget *title = gtk_tree_view_get_column(list(), number)->button;
            GtkRequisition wanted{};
            gtk_widget_size_request(title, &wanted);
            EXPECT_GE(place_of(title).width, wanted.width) << font << ", title " << number;
        }
    }
    static bool scrolls_sideways()
    {
        GtkAdjustment *across = gtk_tree_view_get_hadjustment(list());
        return gtk_adjustment_get_upper(across) > gtk_adjustment_get_page_size(across);
    }
    static void show_below(int field, const char *language)
    {
        ini_set_below(ini, static_cast<std::size_t>(field), language);
        zel::edit_reload();
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
    for (const char *font : {"Sans 10", other_font, "Sans 14"}) {
        for (const unsigned mode : {0U, 1U, 2U}) {
            SCOPED_TRACE(std::string(font) + ", mode " + std::to_string(mode));
            set_font(font);
            lang_global.editor_mode = mode;
            run_editor(source(), [&] {
                settle(100);
                for (GtkWidget *frame :
                     {panel()->lang1_frame, panel()->lang2_frame, panel_widget()})
                    EXPECT_EQ(gtk_widget_get_style(frame)->ythickness, 0) << "room for no line";
                for (GtkWidget *view : {panel()->comment1_view, panel()->comment2_view})
                    EXPECT_GE(lines_in(view), 1);
                for (GtkWidget *view : {panel()->trans1_view, panel()->trans2_view})
                    EXPECT_GE(lines_in(view), 2);
                if (std::string("Sans 14") == font) {
                    GtkWidget *item = gtk_tree_view_get_column(list(), 5)->button;
                    GtkWidget *scrolled = gtk_widget_get_parent(GTK_WIDGET(list()));
                    EXPECT_GE(place_of(scrolled).width - place_of(item).x, 50);
                } else {
                    EXPECT_TRUE(in_sight(panel()->description_label)) << "nothing scrolls";
                    EXPECT_EQ(divider(), 400);
                }
                EXPECT_TRUE(in_sight(panel()->trans2_view)) << "while the list has the keyboard";
                for (GtkWidget *caption : {panel()->comment2_label, panel()->trans2_label})
                    EXPECT_FALSE(is_cut(caption));
                if (mode == 1)
                    expect_whole_titles(font);
                for (const int field : {TEXT_TRANS2, TEXT_COMMENT1, TEXT_COMMENT2, TEXT_TRANS1}) {
                    zel::text_focus_field(panel(), field);
                    settle();
                    EXPECT_TRUE(in_sight(gtk_window_get_focus(GTK_WINDOW(mainWin)))) << field;
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

TEST_F(Looks, AFaintLabelFollowsTheThemeOfItsWindow)
{
    gtk_rc_parse_string("style \"red\" { fg[NORMAL] = \"#ff0000\" bg[NORMAL] = \"#000000\" }\n"
                        "widget \"red-window*\" style \"red\"");
    GtkWidget *faint = gtk_label_new("none");
    zel::show_faint(faint, true);
    GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_widget_set_name(window, "red-window");
    gtk_container_add(GTK_CONTAINER(window), faint);
    gtk_widget_show_all(window);
    const auto red = [faint] { return gtk_widget_get_style(faint)->fg[GTK_STATE_NORMAL].red; };
    EXPECT_NEAR(red(), 0.6 * 0xffff, 0x400);
    EXPECT_EQ(gtk_widget_get_style(faint)->fg[GTK_STATE_NORMAL].green, 0);
    zel::show_faint(faint, false);
    EXPECT_EQ(red(), 0xffff);
    gtk_widget_destroy(window);
}

TEST_F(Looks, ABareFrameDrawsNothingAroundItsContentInAnyTheme)
{
    GtkWidget *frame = gtk_frame_new(nullptr);
    zel::make_bare(frame);
    gtk_widget_set_name(frame, "as the theme likes"); // which may draw a shadow for none
    gtk_frame_set_shadow_type(GTK_FRAME(frame), GTK_SHADOW_IN);
    GtkWidget *content = gtk_label_new("");
    gtk_container_add(GTK_CONTAINER(frame), content);
    GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_widget_set_size_request(window, 90, 40);
    gtk_container_add(GTK_CONTAINER(window), frame);
    gtk_widget_show_all(window);
    const auto is_empty = [window] {
        settle(50);
        const std::string seen = pixels_of(gtk_widget_get_window(window), {0, 0, 90, 40});
        return seen.compare(3, seen.npos, seen, 0, seen.size() - 3) == 0; // all of one colour
    };
    EXPECT_TRUE(is_empty());
    gtk_label_set_text(GTK_LABEL(content), "content");
    EXPECT_FALSE(is_empty());
    gtk_widget_destroy(window);
}

TEST_F(Looks, AnEntryOnDarkGroundHasALine)
{
    const GdkColor dark{0, 0x2000, 0x2000, 0x2000};
    const GdkColor light{0, 0xffff, 0xffff, 0xffff};
    GtkWidget *entry = gtk_entry_new();
    zel::draw_line_in_dark(entry);
    GtkWidget *button = gtk_button_new(); // has the keyboard
    GtkWidget *box = gtk_hbox_new(FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), button, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), entry, TRUE, TRUE, 0);
    GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_container_add(GTK_CONTAINER(window), box);
    gtk_widget_modify_text(entry, GTK_STATE_NORMAL, &light);
    gtk_widget_set_size_request(button, 30, 80); // the entry's window is lower
    gtk_widget_show_all(window);
    const auto edge = [entry] {
        settle(50);
        GdkWindow *own = gtk_widget_get_window(entry);
        gint height = 0;
        gdk_drawable_get_size(own, nullptr, &height);
        const std::string pixel = pixels_of(own, {9, height - 1, 1, 1});
        return std::vector<int>{pixel.begin(), pixel.begin() + 3};
    };
    const std::vector<int> line{0x63, 0x63, 0x63};
    EXPECT_NE(edge(), line);
    gtk_widget_modify_base(entry, GTK_STATE_NORMAL, &dark);
    EXPECT_EQ(edge(), line);
    gtk_widget_destroy(window);
}

TEST_F(Looks, TheSmallestWindowShowsTheItems)
{
    write_file(source(), read_file(LANG_SOURCE_ROOT "/examples/notes.lang-src"));
    for (const char *font : {"Sans 10", "Sans 9"}) {
        set_font(font);
        run_editor(source(), [&] {
            settle(100);
            EXPECT_EQ(divider(), 400);
            EXPECT_FALSE(scrolls_sideways()) << font;
            const std::vector<std::string> row = drawn_row(0);
            EXPECT_EQ(row[2].size(), std::strlen("2024-03-04")) << row[2];
            EXPECT_EQ(row[5], "_File");
            expect_whole_titles(font);
        });
    }
}

TEST_F(Looks, ALongTextLeavesTheDividerWhereItIs)
{
    std::string text = notes;
    text.replace(text.find("{ \"Open\" }"), 10, "{ \"" + std::string(200, 'o') + " o\" }");
    write_file(source(), text);
    for (const int width : {800, 1280})
        run_editor("", [&] {
            resize(width, 800);
            answer_next(choose(source()));
            choose_entry("Load");
            settle(100);
            EXPECT_NEAR(list_share(), width == 800 ? 400 / 800.0 : 0.45, 0.02) << width;
        });
}

TEST_F(Looks, ALargeWindowShowsNamesWholeHoweverItBecameLarge)
{
    write_file(path("long.lang-src"), "define file \"e\" lang \"english\" 1 1 1\n"
                                      "GROUP \"a named group\" { ITEM \"short\" { USED YES }\n"
                                      "ITEM \"a name of some words\" { USED YES } }\n");
    const double shares[] = {0.45, 0.55, 0.55};
    for (const unsigned mode : {0U, 1U, 2U}) {
        lang_global.editor_mode = mode;
        run_editor(path("long.lang-src"), [&] {
            resize(1200, 700);
            EXPECT_NEAR(list_share(), shares[mode], 0.01);
            const int enlarged = divider();
            if (mode == 0) {
                EXPECT_FALSE(scrolls_sideways());
                GtkTreeModel *model = gtk_tree_view_get_model(list());
                GtkTreeIter iter;
                gtk_tree_model_iter_nth_child(model, &iter, nullptr, 1);
                for (int number = 4; number < 6; ++number)
                    EXPECT_EQ(zel::tab_hidden_text(list(), gtk_tree_view_get_column(list(), number),
                                                   &iter),
                              "");
            }
            answer_next(choose(path("long.lang-src")));
            choose_entry("Load");
            settle(100);
            EXPECT_EQ(divider(), enlarged) << "loaded into the large window";
        });
    }
}

TEST_F(Looks, WhatTheUserHasMovedStays)
{
    run_editor(source(), [&] {
        resize(1200, 700);
        const std::vector<std::string> row = drawn_row(0);
        EXPECT_EQ(row[2].size(), std::strlen("2024-03-04 10:11:12")) << "there is room";
        gboolean moved = FALSE;
        g_signal_emit_by_name(panes(), "move-handle", GTK_SCROLL_STEP_LEFT, &moved);
        gtk_paned_set_position(GTK_PANED(panes()), 300);
        settle(50);
        resize(1201, 700);
        EXPECT_NEAR(divider(), 300, 3);
        GtkTreeViewColumn *dragged = gtk_tree_view_get_column(list(), 4);
        dragged->use_resized_width = TRUE;
        dragged->resized_width = 33;
        gtk_paned_set_position(GTK_PANED(panes()), 500);
        settle(50);
        EXPECT_EQ(gtk_tree_view_column_get_width(gtk_tree_view_get_column(list(), 4)), 33);
    });
}

TEST_F(Looks, WhatCannotBeSeenInATextHasASign)
{
    run_editor(source(), [] {
        GtkWidget *view = panel()->trans2_view;
        const auto picture = [view](const char *shown) {
            gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)), shown, -1);
            settle(50);
            GdkPixmap *drawn = gtk_widget_get_snapshot(view, nullptr);
            const std::string pixels = pixels_of(drawn, {0, 0, 100, 20});
            g_object_unref(drawn);
            return pixels;
        };
        EXPECT_EQ(picture("ab cd"), picture("ab cd"));
        EXPECT_NE(picture("ab"), picture("ab  "));
        EXPECT_NE(picture("ab cd"), picture("ab\u00a0cd"));
        EXPECT_NE(picture("ab"), picture("ab\u2028"));
        gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)), "", -1);
    });
}

TEST_F(Looks, TheKeysArePutOnAScreenThatIsTooSmallForTheFont)
{
    run_editor(source(), [&] {
        set_font("Sans 40");
        settle(50);
        zel::show_keys();
        settle(100);
        GtkWidget *window = window_titled("Keys");
        ASSERT_NE(window, nullptr);
        const GdkRectangle screen = zel::work_area(window);
        EXPECT_LE(place_of(window).width, screen.width);
        EXPECT_LE(place_of(window).height, screen.height);
        gtk_dialog_response(GTK_DIALOG(window), GTK_RESPONSE_CLOSE);
    });
}

TEST_F(Looks, AFindingHasTheRoomThatItsCaptionLeaves)
{
    run_editor(source(), [&] {
        gtk_window_resize(GTK_WINDOW(mainWin), 1200, 800);
        GtkWidget *caption = panel()->trans2_label;
        translate(panel()->trans2_view, "%d <b> ");
        settle(100);
        GtkWidget *finding = panel()->finding2_label;
        ASSERT_NE(gtk_widget_get_visible(finding), 0);
        const int row = place_of(gtk_widget_get_parent(finding)).width;
        EXPECT_GT(place_of(finding).width, row / 2);
        EXPECT_FALSE(is_cut(caption));
        lang_global.modified = 0;
    });
}

TEST_F(Looks, FindingsThatAreCutAreToldInFull)
{
    lang_global.editor_mode = 1;
    run_editor(source(), [&] {
        edit_ctrl.next(editWin);
        translate(panel()->trans2_view, "%d <b> ");
        settle(100);
        GtkWidget *all = panel()->all_findings;
        ASSERT_NE(gtk_widget_get_visible(all), 0);
        const std::string told = label(find_type(all, GTK_TYPE_LABEL));
        EXPECT_EQ(told.substr(0, 8), "german: ");
        gchar *beside = gtk_widget_get_tooltip_text(panel()->finding2_label);
        EXPECT_GT(told.size(), std::strlen(beside)) << told;
        g_free(beside);
        const int column = place_of(gtk_widget_get_parent(all)).width;
        EXPECT_EQ(place_of(all).width, column);
        EXPECT_LE(place_of(find_type(all, GTK_TYPE_LABEL)).width, column) << "all can be read";
        gtk_window_resize(GTK_WINDOW(mainWin), 2400, 800);
        EXPECT_TRUE(wait_for([all] { return gtk_widget_get_visible(all) == 0; }));
        gtk_window_resize(GTK_WINDOW(mainWin), 800, 600);
        EXPECT_TRUE(wait_for([all] { return gtk_widget_get_visible(all) != 0; }));
        edit_ctrl.prev(editWin);
        EXPECT_EQ(gtk_widget_get_visible(all), 0) << "another item";
        lang_global.modified = 0;
    });
}

TEST_F(Looks, WhereNoPlaceIsToldTheFieldsHaveTheRoom)
{
    write_file(source(), "define file \"e\" lang \"english\" 1 1 1\nGROUP \"g\" {\n"
                         "ITEM \"a\" { USED YES }\n"
                         "ITEM \"b\" { USED YES { \"00031:src/window.c\" } } }\n");
    lang_global.editor_mode = 1;
    run_editor(source(), [&] {
        GtkWidget *column = gtk_widget_get_ancestor(panel()->used_in_view, GTK_TYPE_VBOX);
        gint asked = 0;
        gtk_widget_get_size_request(gtk_widget_get_parent(column), &asked, nullptr);
        EXPECT_EQ(asked, 220);
        const auto width = [column] {
            settle(50);
            return place_of(column).width;
        };
        const int without = width();
        EXPECT_LT(without, 110);
        EXPECT_FALSE(is_cut(panel()->used_in_label));
        edit_ctrl.next(editWin);
        EXPECT_GE(width(), 110);
        edit_ctrl.prev(editWin);
        EXPECT_EQ(width(), without);
        resize(1600, 800);
        EXPECT_EQ(width(), 220);
    });
}

TEST_F(Looks, RowsStandUnderTheirTitlesWhenColumnsGetOtherWidths)
{
    run_editor(source(), [&] {
        resize(1000, 700);
        GdkWindow *rows = gtk_tree_view_get_bin_window(list());
        const auto picture = [rows] {
            settle(50);
            return pixels_of(rows, {0, 0, 350, 40});
        };
        for (const int place : {600, 400}) {
            gtk_paned_set_position(GTK_PANED(panes()), place);
            const std::string seen = picture();
            gtk_widget_queue_draw(GTK_WIDGET(list()));
            EXPECT_TRUE(seen == picture()) << place;
        }
    });
}

TEST_F(Looks, BlanksBeforeATextLeaveItsRoom)
{
    write_file(source(), "define file \"e\" lang \"english\" 1 1 1\nGROUP \"g\" {\n"
                         "ITEM \"    a name\" { USED YES }\nITEM \"  b\" { USED YES } }\n");
    run_editor(source(), [&] {
        resize(1200, 700);
        GtkTreeModel *model = gtk_tree_view_get_model(list());
        GtkTreeViewColumn *column = gtk_tree_view_get_column(list(), 5);
        const char *told[] = {"    a name", ""};
        for (int row = 0; row < 2; ++row) {
            GtkTreeIter iter;
            gtk_tree_model_iter_nth_child(model, &iter, nullptr, row);
            EXPECT_EQ(zel::tab_hidden_text(list(), column, &iter), told[row]) << "the tooltip";
        }
    });
}

namespace {

// Four languages, of which English and German are edited.
constexpr char tongues[] = R"(version 1
define file "e" lang "english" 200 200 1
define file "g" lang "german" 200 200 1
define file "f" lang "french" 200 200 0
define file "a" lang "arabic" 200 200 0
GROUP "menu" {
  ITEM "Open" { USED YES LANG "english" { "Open" } LANG "french" { "Ou" "vrir" } }
  ITEM "Close" { USED YES LANG "english" { "Close" } LANG "french" { "  " } LANG "arabic" { "إغلاق" } }
}
)";

} // namespace

TEST_F(Looks, FieldsKeepTheirLinesAndTheHelpTakesWhatIsLeft)
{
    std::string text = tongues;
    std::string longer;
    for (int word = 0; word < 200; ++word)
        longer += "mot ";
    text.replace(text.find("\"Ou\" \"vrir\""), 11, "\"" + longer + "\"");
    write_file(source(), text);
    for (const auto &row : std::vector<std::pair<const char *, unsigned>>{
             {"Sans 10", 0}, {"Sans 10", 1}, {"Sans 10", 2}, {other_font, 0}, {other_font, 2}}) {
        const char *const font = row.first;
        const unsigned mode = row.second;
        SCOPED_TRACE(font);
        set_font(font);
        lang_global.editor_mode = mode;
        std::filesystem::remove("lang.lang-ini"); // with the size of the window
        run_editor(source(), [&] {
            show_below(TEXT_TRANS1, "arabic");
            show_below(TEXT_TRANS2, "french");
            settle(100);
            const int line = line_height(panel()->trans1_view);
            for (const int field : {TEXT_TRANS1, TEXT_TRANS2}) {
                EXPECT_GE(height_of(panel()->*zel::fields[field].view), 2 * line) << mode;
                EXPECT_GE(height_of(panel()->below[field].view), line) << mode;
                EXPECT_LT(height_of(panel()->below[field].view), 5 * line) << mode;
                GtkWidget *bar = gtk_scrolled_window_get_vscrollbar(
                    GTK_SCROLLED_WINDOW(gtk_widget_get_parent(panel()->below[field].view)));
                EXPECT_FALSE(gtk_widget_get_visible(bar) &&
                             height_of(panel()->below[field].view) < 2 * line)
                    << "a bar of a line's height, " << mode;
            }
            EXPECT_GE(height_of(panel()->comment1_view), line) << mode;
            for (const int field : {TEXT_COMMENT1, TEXT_TRANS1, TEXT_COMMENT2, TEXT_TRANS2}) {
                zel::text_focus_field(panel(), field);
                settle();
                EXPECT_TRUE(in_sight(panel()->*zel::fields[field].label)) << mode << field;
                EXPECT_TRUE(in_sight(panel()->*zel::fields[field].view)) << mode << field;
                if (field == TEXT_TRANS1 || field == TEXT_TRANS2) {
                    EXPECT_TRUE(in_sight(panel()->below[field].row)) << mode << field;
                }
            }
            show_below(TEXT_TRANS1, nullptr);
            settle(100);
            if (mode != 2) {
                EXPECT_TRUE(in_sight(panel()->description_label)) << "nothing scrolls, " << mode;
            }
            show_below(TEXT_TRANS1, "arabic");
            gtk_window_resize(GTK_WINDOW(mainWin), 1000, 900);
            settle(100);
            EXPECT_GE(height_of(panel()->below[TEXT_TRANS2].view), 4 * line) << mode;
            EXPECT_LT(height_of(panel()->below[TEXT_TRANS2].view), 5 * line) << mode;
            EXPECT_LT(height_of(panel()->below[TEXT_TRANS1].view), 2 * line) << mode;
            EXPECT_GE(height_of(panel()->trans2_view), 80) << mode;
            edit_ctrl.next(editWin);
            settle(100);
            EXPECT_LT(height_of(panel()->below[TEXT_TRANS2].view), 2 * line)
                << "a short text, " << mode;
        });
    }
}

namespace {

// Widths of a day, a group and an item, in a list of so many pixels.
constexpr struct {
    int room;
    int widths[3];
} lists[] = {
    {260, {90, 76, 94}}, // the group lacks few pixels and gets them first
    {240, {90, 70, 80}}, // nobody has them
    {238, {90, 76, 80}}, // it is scrolled anyway
    {209, {40, 76, 93}}, // the item is out of sight
};

TEST(ShareWidth, NamesAreInSightAndNotCutForAFewPixels)
{
    using zel::tab_cell;
    const std::vector<zel::column_need> needs{
        {tab_cell::date, 90, 150, 40}, {tab_cell::name, 70, 76}, {tab_cell::name, 80, 300}};
    for (const auto &[room, widths] : lists)
        EXPECT_EQ(zel::share_width(needs, room), std::vector<int>(widths, widths + 3)) << room;
}

} // namespace
