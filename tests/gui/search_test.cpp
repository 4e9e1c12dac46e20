// What a search does beside filtering the list.

#include "editor-fixture.h"

#include <gdk/gdkkeysyms.h>
#include <gmock/gmock.h>

using namespace gui;
using testing::ElementsAre;

namespace {

constexpr char capitals[] = R"(version 1
define file "english.lang" lang "english" 200 200 1
define file "german.lang" lang "german" 200 200 1
GROUP "g" {
  ITEM "open" { USED YES LANG "english" { "open" } LANG "german" { "öffnen" } }
  ITEM "opener" { USED YES LANG "english" { "opener" } LANG "german" { "Dosenöffner" } }
  ITEM "street" { USED YES LANG "english" { "street" } LANG "german" { "Straße an Straße" } }
}
)";

class Search : public Editor {
protected:
    Search() { write_file(source(), capitals); }

    static GtkEntry *entry() { return GTK_ENTRY(tab()->search_entry); }
    static bool in_entry()
    {
        return gtk_window_get_focus(GTK_WINDOW(mainWin)) == tab()->search_entry;
    }
    static std::vector<std::string> hits() { return tagged(panel()->trans2_view, "search-hit"); }
};

} // namespace

TEST_F(Search, EscapeBringsBackTheItemFromBefore)
{
    run_editor(source(), [&] {
        settle(50);
        edit_ctrl.next(editWin);
        key(mainWin, GDK_KEY_f, GDK_CONTROL_MASK);
        type(mainWin, "stre");
        EXPECT_EQ(rows(), 1);
        EXPECT_EQ(name(), "");
        edit_ctrl.first(editWin);
        EXPECT_EQ(name(), "street");
        type(mainWin, "e");
        key(mainWin, GDK_KEY_Escape);
        EXPECT_EQ(rows(), 3);
        EXPECT_EQ(name(), "opener") << "not the one looked at in the search";
        EXPECT_TRUE(in_entry());
        type(mainWin, "x");
        key(mainWin, GDK_KEY_BackSpace);
        EXPECT_EQ(name(), "");
        key(mainWin, GDK_KEY_Escape);
        EXPECT_EQ(name(), "opener");
        key(mainWin, GDK_KEY_Return);
        EXPECT_EQ(name(), "opener") << "Return in an empty search";
        EXPECT_FALSE(in_entry());
    });
}

TEST_F(Search, LettersTypedInTheListBelongToTheSearch)
{
    run_editor(source(), [&] {
        // A list without the keyboard moves no cursor.
        ASSERT_TRUE(wait_for([] { return gtk_window_is_active(GTK_WINDOW(mainWin)) != 0; }));
        gtk_widget_grab_focus(tab()->view);
        type(mainWin, "st");
        EXPECT_STREQ(gtk_entry_get_text(entry()), "st");
        EXPECT_TRUE(in_entry());
        EXPECT_EQ(rows(), 1);
        gtk_widget_grab_focus(tab()->view);
        type(mainWin, "r");
        EXPECT_STREQ(gtk_entry_get_text(entry()), "str") << "added, not instead";
        gtk_widget_grab_focus(tab()->view);
        key(mainWin, GDK_KEY_Down);
        key(mainWin, GDK_KEY_space);
        EXPECT_STREQ(gtk_entry_get_text(entry()), "str") << "the list's own keys";
        EXPECT_EQ(name(), "street");
    });
}

TEST_F(Search, MarksItsHitsAndTakesCapitalsOfAllScriptsAsEqualInASecondTry)
{
    run_editor(source(), [&] {
        settle(50);
        search("ÖFF");
        EXPECT_EQ(rows(), 2);
        edit_ctrl.last(editWin);
        EXPECT_EQ(name(), "opener");
        EXPECT_THAT(hits(), ElementsAre("öff"));
        search("öff");
        EXPECT_EQ(rows(), 2) << "the first try";
        search("STRASSE");
        EXPECT_EQ(rows(), 1);
        edit_ctrl.first(editWin);
        EXPECT_THAT(hits(), ElementsAre("Straße", "Straße"));
        zel::text_focus_field(panel(), TEXT_TRANS2);
        key(mainWin, GDK_KEY_BackSpace);
        EXPECT_THAT(hits(), ElementsAre("Straße"));
        search("");
        edit_ctrl.first(editWin);
        EXPECT_THAT(hits(), testing::IsEmpty());
    });
}
