// What stands beside the work: the window's place, the keys, icons of boxes, what was found, and
// why the language dialog refuses a mark.

#include "editor-fixture.h"

#include "editor/frame/define.h"
#include "editor/frame/edit-keys.h"
#include "editor/frame/edit-place.h"
#include "editor/toolkit/lang-box.h"
#include "editor/toolkit/popup.h"

#include <gdk/gdkkeysyms.h>
#include <gmock/gmock.h>

using namespace gui;
using testing::HasSubstr;

namespace {

using Beside = Editor;

} // namespace

TEST_F(Beside, TheWindowOpensWhereAndAsLargeAsItWasLeft)
{
    run_editor(source(), [&] {
        settle(50);
        gtk_window_move(GTK_WINDOW(mainWin), 120, 90);
        gtk_window_resize(GTK_WINDOW(mainWin), 950, 700);
        settle(200);
    });
    EXPECT_THAT(read_file("lang.lang-ini"), HasSubstr("x=120\ny=90\nw=950\nh=700\n"));
    const auto expect_place = [](int x, int y, int width, int height) {
        settle(200);
        int is[4];
        gtk_window_get_position(GTK_WINDOW(mainWin), &is[0], &is[1]);
        gtk_window_get_size(GTK_WINDOW(mainWin), &is[2], &is[3]);
        EXPECT_THAT(is, testing::ElementsAre(x, y, width, height));
    };
    run_editor(source(), [&] { expect_place(120, 90, 950, 700); });
    EXPECT_THAT(read_file("lang.lang-ini"), HasSubstr("x=120\ny=90\nw=950\nh=700\n"));
}

TEST_F(Beside, AWindowFromALargerScreenFitsIntoThisOne)
{
    static constexpr GdkRectangle screen{0, 20, 1280, 1000};
    static constexpr GdkRectangle small{0, 0, 800, 600};
    constexpr struct {
        GdkRectangle kept;
        GdkRectangle wanted;
        const GdkRectangle *within = &screen;
    } rows[] = {
        {{10, 30, 900, 700}, {10, 30, 900, 700}},
        {{2000, 1500, 900, 700}, {380, 290, 900, 700}},
        {{0, 0, 3000, 2000}, {0, 20, 1280, 970}},
        {{-500, -500, 0, -7}, {0, 20, 1, 1}},
        {{0, 0, 800, 600}, {0, 0, 800, 570}, &small},
    };
    for (const auto &row : rows) {
        const GdkRectangle is = zel::place_within(row.kept, *row.within);
        EXPECT_THAT(
            (std::vector<int>{is.x, is.y, is.width, is.height}),
            testing::ElementsAre(row.wanted.x, row.wanted.y, row.wanted.width, row.wanted.height));
    }
}

TEST_F(Beside, CtrlQuestionShowsTheKeysOfTheManual)
{
    run_editor(source(), [&] {
        settle(50);
        key(mainWin, GDK_KEY_question, GDK_CONTROL_MASK | GDK_SHIFT_MASK);
        settle(50);
        GtkWidget *window = window_titled("Keys");
        ASSERT_NE(window, nullptr);
        EXPECT_NE(find_text(window, "undo, redo"), nullptr);
        key(window, GDK_KEY_Escape);
        settle(50);
        EXPECT_EQ(window_titled("Keys"), nullptr);
    });
    const std::string manual = read_file(LANG_SOURCE_ROOT "/data/doc/manual.md");
    std::string table = "\n# Keys\n\n| key | what it does |\n|---|---|\n";
    for (const zel::key_row &row : zel::editor_keys())
        table += std::string("| ") + row.keys + " | " + row.text + " |\n";
    EXPECT_THAT(manual, HasSubstr(table + "\n"));
}

TEST_F(Beside, ABoxBearsTheIconOfWhatItSays)
{
    std::string icons;
    const auto note_icon = [&icons](GtkWidget *box) {
        gchar *stock = nullptr;
        gtk_image_get_stock(GTK_IMAGE(ZEL_POPUP(box)->icon), &stock, nullptr);
        icons += std::string(stock) + " ";
        press("Ok")(box);
    };
    run_editor("", [&] {
        answer_next(note_icon);
        choose_entry("Save"); // "Nothing to do"
        answer_next(note_icon);
        press_tool("Help"); // there is no manual here
    });
    EXPECT_EQ(icons, "gtk-dialog-info gtk-dialog-error ");
}

TEST_F(Beside, WhatASearchOrFilterLeavesIsCounted)
{
    run_editor(source(), [&] {
        ZelTabEdit *tab = ZEL_TAB_EDIT(editWin);
        const auto found = [tab] {
            const std::string shown = label(tab->found_label);
            const char *heard = atk_object_get_name(gtk_widget_get_accessible(tab->found_label));
            EXPECT_TRUE(heard == nullptr || heard == shown) << heard; // else its own words
            return shown;
        };
        EXPECT_EQ(found(), "");
        gtk_entry_set_text(GTK_ENTRY(tab->search_entry), "clo");
        EXPECT_EQ(found(), "1 of 2");
        gtk_entry_set_text(GTK_ENTRY(tab->search_entry), "zzz");
        EXPECT_EQ(found(), "nothing found");
        gtk_entry_set_text(GTK_ENTRY(tab->search_entry), "");
        EXPECT_EQ(found(), "");
        choose_entry("Display not translated items");
        EXPECT_EQ(found(), "1 of 2");
        zel_tab_edit_first(editWin);
        translate(panel()->trans2_view, "auf");
        edit_ctrl.empty(editWin);
        EXPECT_EQ(found(), "all translated");
        EXPECT_EQ(label(tab->info_label), "2 Items");
    });
}

TEST_F(Beside, TheLanguageDialogSaysWhyAMarkIsRefusedAndWhatTheTimeIs)
{
    lang_global.editor_mode = 1;
    run_editor(source(), [&] {
        answer_next([](GtkWidget *dialog) {
            const auto tick = [](guint number, gboolean on) {
                auto *row = static_cast<define_row_t *>(g_list_nth_data(defineList, number));
                gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(row->edit_button), on);
            };
            GtkWidget *hint = find_text(
                dialog, "Two languages are edited at most: take the mark off another one first");
            ASSERT_NE(hint, nullptr);
            EXPECT_FALSE(gtk_widget_get_visible(hint));
            tick(2, TRUE);
            EXPECT_TRUE(gtk_widget_get_visible(hint));
            tick(1, FALSE);
            EXPECT_FALSE(gtk_widget_get_visible(hint));
            tick(2, TRUE);
            EXPECT_FALSE(gtk_widget_get_visible(hint));

            g_setenv("TZ", "UTC", TRUE);
            GtkWidget *spin = find_named(dialog, "whatsnew");
            gtk_spin_button_set_value(GTK_SPIN_BUTTON(spin), 1700000000);
            EXPECT_NE(find_text(dialog, "2023-11-14 22:13:20"), nullptr);
            gtk_spin_button_set_value(GTK_SPIN_BUTTON(spin), 0);
            EXPECT_EQ(find_text(dialog, "2023-11-14 22:13:20"), nullptr);
            EXPECT_FALSE(gtk_widget_get_visible(ZEL_POPUP(dialog)->icon_box));
            press("Close")(dialog);
        });
        choose_entry("Setting");
    });
}
