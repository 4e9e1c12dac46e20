// Another language's text below a translation, as help.

#include "config/ini.h"
#include "editor-fixture.h"
#include "editor/frame/edit-undo.h"
#include "editor/state/edit-history.h"

#include <gdk/gdkkeysyms.h>
#include <gmock/gmock.h>

#include <filesystem>

using namespace gui;
using testing::HasSubstr;
using testing::Not;

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

using names = std::vector<std::string>;

class Below : public Editor {
protected:
    Below() { write_file(source(), tongues); }

    static const zel::text_below &below(int field) { return panel()->below[field]; }
    // "language: text", or empty.
    static std::string seen(int field)
    {
        if (gtk_widget_get_visible(below(field).row) == 0)
            return "";
        return label(below(field).label) + ": " + text_of(below(field).view);
    }
    static std::string both() { return seen(TEXT_TRANS1) + "/" + seen(TEXT_TRANS2); }

    // The marked one has a star.
    static names entries(GtkWidget *menu)
    {
        names all;
        for (GtkWidget *item : find_all(menu, GTK_TYPE_RADIO_MENU_ITEM))
            all.push_back(std::string(gtk_menu_item_get_label(GTK_MENU_ITEM(item))) +
                          (gtk_check_menu_item_get_active(GTK_CHECK_MENU_ITEM(item)) ? "*" : ""));
        return all;
    }
    static void take(GtkWidget *menu, const std::string &name)
    {
        for (GtkWidget *item : find_all(menu, GTK_TYPE_RADIO_MENU_ITEM))
            if (name == gtk_menu_item_get_label(GTK_MENU_ITEM(item)))
                gtk_menu_item_activate(GTK_MENU_ITEM(item));
    }
    // The menu that a click with that button on the caption brings up; null for none.
    static GtkWidget *click_caption(int field, guint button = 3)
    {
        GtkWidget *caption =
            gtk_widget_get_ancestor(panel()->*zel::fields[field].label, GTK_TYPE_EVENT_BOX);
        GdkEvent *event = gdk_event_new(GDK_BUTTON_PRESS);
        event->button.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(caption)));
        event->button.button = button;
        event->button.time = GDK_CURRENT_TIME;
        gtk_widget_event(caption, event);
        gdk_event_free(event);
        GList *menus = gtk_menu_get_for_attach_widget(caption);
        return menus == nullptr ? nullptr : GTK_WIDGET(menus->data);
    }
    // Chooses in the caption's menu, which goes then; returns what it offered.
    static names choose_below(int field, const std::string &name)
    {
        GtkWidget *menu = click_caption(field);
        if (menu == nullptr)
            return {};
        const names offered = entries(menu);
        take(menu, name);
        gtk_menu_shell_deactivate(GTK_MENU_SHELL(menu));
        gtk_widget_destroy(menu);
        return offered;
    }
};

} // namespace

TEST_F(Below, TheCaptionsMenuOffersWhatIsNotShownAndTheTextFollowsTheItem)
{
    const std::string file = read_file(source());
    const std::string printed = run_editor(source(), [&] {
        EXPECT_EQ(both(), "/");
        EXPECT_EQ(click_caption(TEXT_TRANS2, 1), nullptr) << "the other button";
        EXPECT_EQ(choose_below(TEXT_TRANS2, "french"), (names{"None*", "french", "arabic"}));
        EXPECT_EQ(both(), "/french: Ouvrir");
        EXPECT_EQ(choose_below(TEXT_TRANS1, "arabic"), (names{"None*", "arabic"}));
        EXPECT_EQ(both(), "arabic: none/french: Ouvrir");
        EXPECT_FALSE(gtk_widget_get_sensitive(below(TEXT_TRANS1).view)) << "grey";
        edit_ctrl.next(editWin);
        EXPECT_EQ(both(), "arabic: إغلاق/french: none");
        EXPECT_EQ(choose_below(TEXT_TRANS2, "None"), (names{"None", "french*"}));
        EXPECT_EQ(both(), "arabic: إغلاق/");
        search("zzz");
        EXPECT_EQ(both(), "/") << "no item";
        EXPECT_EQ(lang_global.modified, 0);
        zel::edit_undo();
        EXPECT_EQ(status(), "Nothing to undo");
        search("");
        for (const edit_t *group : zel::each<edit_t>(def_group->groups))
            for (const item_t *item : zel::each<item_t>(group->items))
                EXPECT_EQ(zel_get_lang_entry(item->comments, "arabic"), nullptr);
        const auto *group = static_cast<edit_t *>(def_group->groups->data);
        EXPECT_EQ(zel_get_lang_entry(static_cast<item_t *>(group->items->data)->langs, "arabic"),
                  nullptr)
            << "looking made none";
    });
    EXPECT_EQ(read_file(source()), file);
}

TEST_F(Below, ItIsReadAndCopiedButNeitherTypedInNorOnTheWay)
{
    run_editor(source(), [&] {
        choose_below(TEXT_TRANS1, "french");
        GtkWidget *view = below(TEXT_TRANS1).view;
        settle(50);
        zel::text_focus_field(panel(), TEXT_TRANS1);
        key(mainWin, GDK_KEY_Tab);
        EXPECT_EQ(zel::text_focused_field(panel()), TEXT_COMMENT2) << "the next field";
        gtk_widget_grab_focus(view);
        EXPECT_TRUE(gtk_widget_is_focus(view));
        type(mainWin, "xyz");
        key(mainWin, GDK_KEY_a, GDK_CONTROL_MASK);
        key(mainWin, GDK_KEY_c, GDK_CONTROL_MASK);
        gchar *copied = gtk_clipboard_wait_for_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD));
        EXPECT_STREQ(copied, "Ouvrir");
        g_free(copied);
        EXPECT_EQ(text_of(view), "Ouvrir");
        EXPECT_EQ(lang_global.modified, 0);
        key(mainWin, GDK_KEY_Tab);
        EXPECT_EQ(zel::text_focused_field(panel()), TEXT_COMMENT2);
        EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(view)),
                     "Translation \"french\"");
    });
}

TEST_F(Below, TheFieldsMenuOffersItToo)
{
    const auto menu_of = [](GtkWidget *view) {
        GtkWidget *menu = gtk_menu_new();
        g_object_ref_sink(menu);
        g_signal_emit_by_name(view, "populate-popup", menu);
        GtkWidget *item = find_text(menu, "Show below");
        const names all =
            item == nullptr ? names{} : entries(gtk_menu_item_get_submenu(GTK_MENU_ITEM(item)));
        if (item != nullptr)
            take(gtk_menu_item_get_submenu(GTK_MENU_ITEM(item)), "arabic");
        g_object_unref(menu);
        return all;
    };
    run_editor(source(), [&] {
        EXPECT_EQ(menu_of(panel()->trans2_view), (names{"None*", "french", "arabic"}));
        EXPECT_EQ(seen(TEXT_TRANS2), "arabic: none");
        EXPECT_EQ(menu_of(below(TEXT_TRANS2).view), (names{"None", "french", "arabic*"}));
        EXPECT_EQ(menu_of(panel()->comment2_view), names{});
    });
    write_file(path("two.lang-src"), "define file \"e\" lang \"english\" 1 1 1\n"
                                     "define file \"g\" lang \"german\" 1 1 1\n"
                                     "GROUP \"g\" { ITEM \"i\" { USED YES } }\n");
    run_editor(path("two.lang-src"), [&] {
        EXPECT_EQ(menu_of(panel()->trans2_view), names{}) << "there is no third one";
        EXPECT_EQ(click_caption(TEXT_TRANS2), nullptr);
    });
}

TEST_F(Below, TheChoiceIsKeptAndRestsWhereTheLanguageIsShownOrMissing)
{
    run_editor(source(), [&] {
        choose_below(TEXT_TRANS1, "arabic");
        choose_below(TEXT_TRANS2, "french");
    });
    EXPECT_THAT(read_file("lang.lang-ini"),
                HasSubstr("[editor]\nbelow1= \"arabic\"\nbelow2= \"french\"\n"));
    run_editor(source(), [&] {
        EXPECT_EQ(both(), "arabic: none/french: Ouvrir");
        auto *german = static_cast<lang_t *>(g_list_nth_data(def_group->langs, 1));
        auto *french = static_cast<lang_t *>(g_list_nth_data(def_group->langs, 2));
        std::swap(german->edit, french->edit);
        zel::edit_reload();
        EXPECT_EQ(both(), "arabic: none/") << "French is one of the two";
        std::swap(german->edit, french->edit);
        zel::edit_reload();
        EXPECT_EQ(both(), "arabic: none/french: Ouvrir") << "and free again";
    });
    write_file("lang.lang-ini", "[editor]\nbelow1=\"french\"\nbelow2=\"french\"\nother=1\n");
    run_editor(source(), [&] { EXPECT_EQ(both(), "french: Ouvrir/") << "once is enough"; });
    EXPECT_THAT(read_file("lang.lang-ini"), HasSubstr("other=1"));
    write_file(path("danish.lang-src"), "define file \"e\" lang \"english\" 1 1 1\n"
                                        "define file \"d\" lang \"danish\" 1 1 1\n"
                                        "define file \"s\" lang \"swedish\" 1 1 0\n"
                                        "GROUP \"g\" { ITEM \"i\" { USED YES } }\n");
    run_editor(path("danish.lang-src"), [&] {
        EXPECT_EQ(both(), "/");
        EXPECT_EQ(choose_below(TEXT_TRANS2, ""), (names{"None*", "swedish"}));
    });
}

TEST_F(Below, UndoOfAnotherLanguageIsSeen)
{
    run_editor(source(), [&] {
        choose_below(TEXT_TRANS2, "french");
        auto *german = static_cast<lang_t *>(g_list_nth_data(def_group->langs, 1));
        auto *french = static_cast<lang_t *>(g_list_nth_data(def_group->langs, 2));
        std::swap(german->edit, french->edit);
        zel::edit_reload();
        translate(panel()->trans2_view, "Autre");
        zel_tab_edit_update(editWin);
        std::swap(german->edit, french->edit);
        zel::edit_reload();
        EXPECT_EQ(seen(TEXT_TRANS2), "french: Autre");
        while (zel::source_history().can_undo())
            zel::edit_undo();
        EXPECT_EQ(seen(TEXT_TRANS2), "french: Ouvrir");
    });
}

TEST_F(Below, FieldsKeepTheirLinesAndTheHelpTakesWhatIsLeft)
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
            choose_below(TEXT_TRANS1, "arabic");
            choose_below(TEXT_TRANS2, "french");
            settle(200);
            const int line = line_height(panel()->trans1_view);
            for (const int field : {TEXT_TRANS1, TEXT_TRANS2}) {
                EXPECT_GE(height_of(panel()->*zel::fields[field].view), 2 * line) << mode;
                EXPECT_GE(height_of(below(field).view), line) << mode;
                EXPECT_LT(height_of(below(field).view), 5 * line) << mode;
                GtkWidget *bar = gtk_scrolled_window_get_vscrollbar(
                    GTK_SCROLLED_WINDOW(gtk_widget_get_parent(below(field).view)));
                EXPECT_FALSE(gtk_widget_get_visible(bar) && height_of(below(field).view) < 2 * line)
                    << "a bar of a line's height, " << mode;
            }
            EXPECT_GE(height_of(panel()->comment1_view), line) << mode;
            for (const int field : {TEXT_COMMENT1, TEXT_TRANS1, TEXT_COMMENT2, TEXT_TRANS2}) {
                zel::text_focus_field(panel(), field);
                settle();
                EXPECT_TRUE(in_sight(panel()->*zel::fields[field].label)) << mode << field;
                EXPECT_TRUE(in_sight(panel()->*zel::fields[field].view)) << mode << field;
                if (field == TEXT_TRANS1 || field == TEXT_TRANS2) {
                    EXPECT_TRUE(in_sight(below(field).row)) << mode << field;
                }
            }
            choose_below(TEXT_TRANS1, "None");
            settle(100);
            if (mode != 2) {
                EXPECT_TRUE(in_sight(panel()->description_label)) << "nothing scrolls, " << mode;
            }
            choose_below(TEXT_TRANS1, "arabic");
            gtk_window_resize(GTK_WINDOW(mainWin), 1000, 900);
            settle(200);
            EXPECT_GE(height_of(below(TEXT_TRANS2).view), 4 * line) << mode;
            EXPECT_LT(height_of(below(TEXT_TRANS2).view), 5 * line) << mode;
            EXPECT_LT(height_of(below(TEXT_TRANS1).view), 2 * line) << mode;
            EXPECT_GE(height_of(panel()->trans2_view), 80) << mode;
            edit_ctrl.next(editWin);
            settle(100);
            EXPECT_LT(height_of(below(TEXT_TRANS2).view), 2 * line) << "a short text, " << mode;
        });
    }
}
