// Help with a translation: suggestions, the other language's text and parts of it.

#include "editor-fixture.h"

#include <gdk/gdkkeysyms.h>

#include <filesystem>

using namespace gui;

namespace {

constexpr char alike[] = R"(version 1
define file "english.lang" lang "english" 200 200 1
define file "german.lang" lang "german" 200 200 1
GROUP "file-action" {
  ITEM "save" { USED YES LANG "english" { "Save" } LANG "german" { "Speichern" } }
  ITEM "all" { USED YES LANG "english" { "Save all files" } LANG "german" { "Alle sichern" } }
}
GROUP "menu" {
  ITEM "save" { USED YES LANG "english" { "Save" } }
  ITEM "some" { USED YES LANG "english" { "Save all <b>%d</b> files" } }
  ITEM "other" { USED YES LANG "english" { "Zoom" } }
}
)";

class Suggest : public Editor {
protected:
    Suggest() { write_file(source(), alike); }

    static std::string suggestion()
    {
        GtkWidget *line = panel()->suggestion2_label;
        return gtk_widget_get_visible(line) != 0 ? label(line) : "hidden";
    }
    // Runs it with the third item shown, once the index is built.
    void with_index(const std::function<void()> &act)
    {
        run_editor(source(), [&] {
            go_to(2);
            EXPECT_TRUE(wait_for([] { return suggestion() == "Speichern (file-action)"; }))
                << suggestion();
            act();
        });
    }
};

} // namespace

TEST_F(Suggest, TheSameOrASimilarTextIsTakenByKey)
{
    with_index([&] {
        EXPECT_FALSE(gtk_widget_get_visible(panel()->suggestion1_label)) << "the original's";
        zel::text_focus_field(panel(), TEXT_TRANS1);
        key(mainWin, GDK_KEY_space, GDK_CONTROL_MASK);
        EXPECT_EQ(german(), "Speichern") << "into the translation, also from the other field";
        EXPECT_EQ(zel::text_focused_field(panel()), TEXT_TRANS2);
        EXPECT_EQ(lang_global.modified, 1);
        edit_ctrl.next(editWin);
        EXPECT_EQ(suggestion(), "Alle sichern (file-action) ~ Save all files");
        edit_ctrl.next(editWin);
        EXPECT_EQ(suggestion(), "");
        key(mainWin, GDK_KEY_space, GDK_CONTROL_MASK);
        EXPECT_EQ(german(), "");
        EXPECT_EQ(status(), "No suggestion");
    });
}

TEST_F(Suggest, WhatStandsInTheFieldAlreadyIsNot)
{
    with_index([&] {
        key(mainWin, GDK_KEY_space, GDK_CONTROL_MASK);
        EXPECT_EQ(german(), "Speichern");
        EXPECT_EQ(suggestion(), "");
        zel::text_focus_field(panel(), TEXT_TRANS2);
        type(mainWin, "!");
        EXPECT_EQ(suggestion(), "Speichern (file-action)") << german();
        key(mainWin, GDK_KEY_BackSpace);
        EXPECT_EQ(suggestion(), "");
        key(mainWin, GDK_KEY_space, GDK_CONTROL_MASK);
        EXPECT_EQ(status(), "No suggestion");
        edit_ctrl.first(editWin);
        EXPECT_EQ(suggestion(), "") << "the other item has the same text now";
    });
}

TEST_F(Suggest, AnEmptyLineTakesNoRoomThatTheFieldsLack)
{
    with_index([&] {
        GtkWidget *line = panel()->suggestion2_label;
        go_to(4);
        gtk_window_resize(GTK_WINDOW(mainWin), 800, 900);
        settle(100);
        EXPECT_EQ(suggestion(), "");
        EXPECT_GT(height_of(line), 10) << "the fields keep their places from item to item";
        gtk_window_resize(GTK_WINDOW(mainWin), 800, 600);
        set_font("Sans 14");
        settle(100);
        EXPECT_LE(height_of(line), 1);
        go_to(2);
        settle(100);
        EXPECT_GT(height_of(line), 10);
    });
}

TEST_F(Suggest, WhatIsTypedIsSuggestedAtOnce)
{
    with_index([&] {
        go_to(4);
        translate(panel()->trans1_view, "Save all <b>%d</b> files");
        translate(panel()->trans2_view, "Alle %d");
        edit_ctrl.prev(editWin);
        EXPECT_EQ(suggestion(), "Alle %d (menu)");
        search("save");
        EXPECT_EQ(suggestion(), "hidden") << "no item is shown";
    });
}

TEST_F(Suggest, TheOtherLanguagesTextAndItsPartsAreCopied)
{
    run_editor(source(), [&] {
        go_to(3);
        settle(50);
        zel::text_focus_field(panel(), TEXT_TRANS2);
        type(mainWin, "Alle ");
        for (const guint digit : {GDK_KEY_2, GDK_KEY_1, GDK_KEY_3})
            key(mainWin, digit, GDK_CONTROL_MASK);
        EXPECT_EQ(german(), "Alle %d<b></b>");
        key(mainWin, GDK_KEY_4, GDK_CONTROL_MASK);
        EXPECT_EQ(german(), "Alle %d<b></b>");
        EXPECT_NE(status(), "");
        key(mainWin, GDK_KEY_b, GDK_CONTROL_MASK);
        EXPECT_EQ(german(), "Save all <b>%d</b> files");
        EXPECT_EQ(status(), "");
        translate(panel()->trans2_view, "x");
        zel::text_focus_field(panel(), TEXT_TRANS1);
        key(mainWin, GDK_KEY_b, GDK_CONTROL_MASK);
        EXPECT_EQ(text_of(panel()->trans1_view), "x") << "into the field that is typed in";
    });
    run_editor("", [&] {
        for (const guint pressed : {GDK_KEY_b, GDK_KEY_1, GDK_KEY_space})
            key(mainWin, pressed, GDK_CONTROL_MASK);
    });
}

namespace {

class SuggestNeighbour : public Suggest {
protected:
    SuggestNeighbour()
    {
        write_file(path("other.lang-src"),
                   "GROUP \"tools\" {\n"
                   "  ITEM \"1\" { USED YES LANG \"english\" { \"Save\" }"
                   " LANG \"german\" { \"Sichern\" } }\n"
                   "  ITEM \"2\" { USED YES LANG \"english\" { \"Zoom\" }"
                   " LANG \"german\" { \"Gr\xc3\xb6\xc3\x9f"
                   "er\" } }\n"
                   "  ITEM \"3\" { USED YES LANG \"english\" { \"Save all files\" }"
                   " LANG \"german\" { \"Andere\" } }\n"
                   "}\n");
    }
    static constexpr const char *found = "Gr\xc3\xb6\xc3\x9f"
                                         "er (tools, other.lang-src)";
};

} // namespace

TEST_F(SuggestNeighbour, HelpsWhereTheSourceHasNothingAsGood)
{
    const std::string printed = run_editor(source(), [&] {
        go_to(4);
        EXPECT_TRUE(wait_for([] { return suggestion() == found; })) << suggestion();
        EXPECT_EQ(lang_global.modified, 0);
        const LangSource *shown = def_group;
        EXPECT_EQ(g_list_length(shown->groups), 2U);
        EXPECT_EQ(std::string(lang_global.src_dir), folder);
        key(mainWin, GDK_KEY_space, GDK_CONTROL_MASK);
        EXPECT_EQ(german(), "Gr\xc3\xb6\xc3\x9f"
                            "er");
        go_to(2);
        EXPECT_EQ(suggestion(), "Speichern (file-action)") << "the source's own comes first";
        edit_ctrl.next(editWin);
        EXPECT_EQ(suggestion(), "Alle sichern (file-action) ~ Save all files");
    });
    EXPECT_EQ(printed.find("other"), std::string::npos) << printed;
    EXPECT_FALSE(std::filesystem::exists(path("other.lang-src.lock")));
}

TEST_F(SuggestNeighbour, IsReadWhenNobodyTypes)
{
    run_editor(source(), [&] {
        go_to(4);
        zel::text_focus_field(panel(), TEXT_TRANS2);
        // On a machine that is held up this long, the editor may read between two keys.
        constexpr gint64 pause = 200000; // twice that is less than the editor waits
        key(mainWin, GDK_KEY_Left);
        gint64 last = g_get_monotonic_time();
        bool is_quick = suggestion() != found;
        for (int pressed = 0; pressed < 50 && is_quick; ++pressed) {
            key(mainWin, GDK_KEY_Left);
            settle(20);
            const gint64 now = g_get_monotonic_time();
            is_quick = now - last < pause;
            last = now;
            if (is_quick) {
                EXPECT_EQ(suggestion(), "");
            }
        }
        EXPECT_TRUE(wait_for([] { return suggestion() == found; })) << suggestion();
    });
}
