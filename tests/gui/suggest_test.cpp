// Help with a translation: suggestions, the other language's text and parts of it.

#include "editor-fixture.h"

#include <gdk/gdkkeysyms.h>

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
    static std::string german() { return text_of(panel()->trans2_view); }
    static void go_to(int row)
    {
        edit_ctrl.first(editWin);
        for (; row > 0; --row)
            edit_ctrl.next(editWin);
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

TEST_F(Suggest, WhatIsTypedIsSuggestedAtOnce)
{
    with_index([&] {
        go_to(4);
        translate(panel()->trans1_view, "Save all <b>%d</b> files");
        translate(panel()->trans2_view, "Alle %d");
        edit_ctrl.prev(editWin);
        EXPECT_EQ(suggestion(), "Alle %d (menu)");
        gtk_entry_set_text(GTK_ENTRY(ZEL_TAB_EDIT(editWin)->search_entry), "save");
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
