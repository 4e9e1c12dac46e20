// Working in the editor by mouse and keyboard: where the keyboard goes, what a click marks, which
// keys are the editor's own.

#include "editor-fixture.h"

#include <gdk/gdkkeysyms.h>
#include <gdk/gdkx.h>
#include <gmock/gmock.h>

#include <filesystem>

using namespace gui;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

class Hands : public Editor {
protected:
    static GtkWidget *notebook() { return gtk_widget_get_parent(editBox); }

    static void look_at_page(int page)
    {
        gtk_notebook_set_current_page(GTK_NOTEBOOK(notebook()), page);
        settle(50);
    }
    // Something passes over the tab of the edit page, so that its label is drawn again.
    static void redraw_tab()
    {
        gtk_widget_queue_draw(lang_global.edit_tab_label);
        settle(50);
    }
    static bool has_focus(GtkWidget *widget)
    {
        return gtk_window_get_focus(GTK_WINDOW(mainWin)) == widget;
    }
    static std::string search_text() { return gtk_entry_get_text(GTK_ENTRY(tab()->search_entry)); }
    static bool a_menu_is_open()
    {
        for (GtkWidget *item : find_all(mainWin, GTK_TYPE_MENU_ITEM)) {
            GtkWidget *menu = gtk_menu_item_get_submenu(GTK_MENU_ITEM(item));
            if (menu != nullptr && gtk_widget_get_visible(menu))
                return true;
        }
        return false;
    }
    // A press and release of the first button in the middle of a cell of the list.
    static void click_cell(int row, int column)
    {
        GtkTreeView *view = GTK_TREE_VIEW(tab()->view);
        GtkTreePath *path = gtk_tree_path_new_from_indices(row, -1);
        GdkRectangle cell{};
        gtk_tree_view_get_cell_area(view, path, gtk_tree_view_get_column(view, column), &cell);
        gtk_tree_path_free(path);
        for (const GdkEventType kind : {GDK_BUTTON_PRESS, GDK_BUTTON_RELEASE}) {
            GdkEvent *event = gdk_event_new(kind);
            event->button.window = GDK_WINDOW(g_object_ref(gtk_tree_view_get_bin_window(view)));
            event->button.send_event = TRUE;
            event->button.x = cell.x + cell.width * 0.5;
            event->button.y = cell.y + cell.height * 0.5;
            event->button.button = 1;
            event->button.device = gdk_device_get_core_pointer();
            gtk_main_do_event(event);
            gdk_event_free(event);
        }
        settle();
    }
    static std::vector<std::string> names()
    {
        std::vector<std::string> shown;
        GtkTreeModel *model = tab()->sort_model;
        GtkTreeIter iter;
        for (int row = 0; gtk_tree_model_iter_nth_child(model, &iter, nullptr, row) != 0; ++row) {
            item_t *item = nullptr;
            gtk_tree_model_get(model, &iter, COL_RECORD, &item, -1);
            shown.emplace_back(item->name);
        }
        return shown;
    }
};

constexpr int ready_column = 3;

// Four items, one of them ready.
constexpr char four[] = R"(version 1
define file "english.lang" lang "english" 200 200 1
define file "german.lang" lang "german" 200 200 1
GROUP "g" {
  ITEM "a" { USED YES LANG "english" { "a" } LANG "german" { "A" } }
  ITEM "b" { USED YES READY 1 LANG "english" { "b" } LANG "german" { "B" } }
  ITEM "c" { USED YES LANG "english" { "c" } LANG "german" { "C" } }
  ITEM "d" { USED YES LANG "english" { "d" } }
}
)";

} // namespace

TEST_F(Hands, NoLetterIsLostWhenTheTabIsDrawn)
{
    run_editor(source(), [&] {
        settle(50);
        zel::text_focus_field(panel(), TEXT_TRANS2);
        type(mainWin, "au");
        redraw_tab();
        type(mainWin, "f");
        EXPECT_EQ(text_of(panel()->trans2_view), "auf");

        gtk_widget_grab_focus(tab()->search_entry);
        type(mainWin, "close");
        gtk_editable_set_position(GTK_EDITABLE(tab()->search_entry), 1);
        redraw_tab();
        type(mainWin, "h");
        EXPECT_EQ(search_text(), "chlose") << "neither selected nor the caret moved";

        gtk_widget_grab_focus(notebook());
        redraw_tab();
        EXPECT_TRUE(has_focus(tab()->view)) << "who chose the page by its tab is in the list";
    });
}

TEST_F(Hands, AltMMarksAndOpensNoMenu)
{
    run_editor("", [&] {
        settle(50);
        key(mainWin, GDK_KEY_m, GDK_MOD1_MASK);
        EXPECT_FALSE(a_menu_is_open()) << "without a source";
        answer_next(choose(source()));
        choose_entry("Load");
        settle(50);
        look_at_page(1);
        key(mainWin, GDK_KEY_m, GDK_MOD1_MASK);
        EXPECT_EQ(panel()->item->ready, 1) << "from the other page";
        EXPECT_EQ(status(), "Ready, but the text is missing: \"german\"");
        look_at_page(0);
        translate(panel()->trans2_view, "auf");
        key(mainWin, GDK_KEY_m, GDK_MOD1_MASK);
        EXPECT_EQ(panel()->item->ready, 0);
        zel::edit_status("");
        key(mainWin, GDK_KEY_m, GDK_MOD1_MASK);
        EXPECT_EQ(panel()->item->ready, 1);
        EXPECT_EQ(status(), "") << "what was typed counts before it is stored";

        search("nowhere");
        key(mainWin, GDK_KEY_m, GDK_MOD1_MASK);
        EXPECT_FALSE(a_menu_is_open()) << "without an item";
        key(mainWin, GDK_KEY_e, GDK_MOD1_MASK);
        EXPECT_TRUE(a_menu_is_open()) << "other letters open theirs";
        gtk_menu_shell_deactivate(GTK_MENU_SHELL(find_type(mainWin, GTK_TYPE_MENU_BAR)));
    });
}

// As it is when a key is looked at after another program has had the keyboard.
TEST_F(Hands, AMenuThatTheServerRefusesTakesNoInput)
{
    run_editor(source(), [&] {
        ASSERT_TRUE(wait_for([] { return gtk_window_is_active(GTK_WINDOW(mainWin)) != 0; }));
        GdkDisplay *other = gdk_display_open(gdk_display_get_name(gdk_display_get_default()));
        Display *server = GDK_DISPLAY_XDISPLAY(other);
        for (const auto &[pressed, modifiers] :
             {std::pair<guint, int>{GDK_KEY_f, GDK_MOD1_MASK}, {GDK_KEY_Menu, 0}}) {
            ASSERT_EQ(XGrabKeyboard(server, DefaultRootWindow(server), False, GrabModeAsync,
                                    GrabModeAsync, CurrentTime),
                      GrabSuccess);
            zel::text_focus_field(panel(), TEXT_TRANS2);
            key(mainWin, pressed, modifiers);
            warnings().clear(); // here the key is released before anything is done
            settle(100);        // a field's menu asks the clipboard first
            XUngrabKeyboard(server, CurrentTime);
            XSync(server, False);
            EXPECT_EQ(gtk_grab_get_current(), nullptr) << pressed;
            EXPECT_FALSE(a_menu_is_open());
            type_german("x");
        }
        EXPECT_EQ(german(), "xx");
        key(mainWin, GDK_KEY_f, GDK_MOD1_MASK);
        EXPECT_TRUE(a_menu_is_open());
        gtk_menu_shell_cancel(GTK_MENU_SHELL(find_type(mainWin, GTK_TYPE_MENU_BAR)));
        gdk_display_close(other);
    });
}

TEST_F(Hands, MarkingKeepsTheRowsAndTheSelection)
{
    write_file(source(), four);
    run_editor(source(), [&] {
        settle(50);
        const std::vector<std::string> order = {"a", "c", "d", "b"};
        GtkTreeSortable *list = GTK_TREE_SORTABLE(tab()->sort_model);
        gtk_tree_sortable_set_sort_column_id(list, COL_READY, GTK_SORT_ASCENDING);
        ASSERT_EQ(names(), order);
        EXPECT_EQ(identity(), "(1)  g:a");
        click_cell(1, ready_column);
        EXPECT_EQ(identity(), "(1)  g:a") << "the click marks another item than the selected one";
        EXPECT_EQ(names(), order);
        key(mainWin, GDK_KEY_m, GDK_MOD1_MASK);
        EXPECT_EQ(names(), order);
        key(mainWin, GDK_KEY_Down, GDK_MOD1_MASK);
        EXPECT_EQ(identity(), "(3)  g:c");
        EXPECT_EQ(panel()->item->ready, 1);
        gtk_tree_sortable_set_sort_column_id(list, COL_READY, GTK_SORT_DESCENDING);
        EXPECT_THAT(names(), ElementsAre("a", "b", "c", "d"));
        EXPECT_EQ(identity(), "(3)  g:c");
    });
}

TEST_F(Hands, TheFilterIsOneSettingAlsoAfterAFailedLoad)
{
    write_file(path("bad.lang-src"), "nonsense {\n");
    run_editor(source(), [&] {
        choose_entry("Display not translated items");
        EXPECT_EQ(rows(), 1);
        EXPECT_TRUE(gtk_toggle_tool_button_get_active(GTK_TOGGLE_TOOL_BUTTON(empty_tool)));
        gtk_toggle_tool_button_set_active(GTK_TOGGLE_TOOL_BUTTON(empty_tool), FALSE);
        EXPECT_EQ(rows(), 2);
        EXPECT_FALSE(gtk_check_menu_item_get_active(GTK_CHECK_MENU_ITEM(empty_menu)));
        EXPECT_EQ(lang_global.only_untranslated, 0);
        choose_entry("Display not translated items");
        answer_next(choose(path("bad.lang-src")));
        choose_entry("Load");
        choose_entry("Display not translated items");
        EXPECT_EQ(lang_global.only_untranslated, 0);
        EXPECT_FALSE(gtk_toggle_tool_button_get_active(GTK_TOGGLE_TOOL_BUTTON(empty_tool)));
        answer_next(choose(source()));
        choose_entry("Load");
        EXPECT_EQ(names().size(), 2U);
    });
}

TEST_F(Hands, ACancelledChooserLeavesTheNameOfTheSource)
{
    const std::string name = path("back\\slash.lang-src");
    write_file(name, notes);
    lang_global.editor_mode = 1;
    run_editor(name, [&] {
        for (const char *entry : {"Save as", "Import language file (*.lang)"}) {
            answer_next(respond(GTK_RESPONSE_CANCEL));
            choose_entry(entry);
            EXPECT_EQ(def_file, name) << entry;
        }
    });
}

TEST_F(Hands, SaveAsTakesEveryPathThatNeedsNoEnding)
{
    const std::string ending = ".lang-src";
    std::string deep = folder;
    while (deep.size() + 200 < 2047 - ending.size())
        deep += "/" + std::string(180, 'd');
    fs::create_directories(deep);
    const std::string longest(2047 - deep.size() - 1 - ending.size(), 'n');
    run_editor(source(), [&] {
        answer_next(type_name(deep, longest + ending));
        EXPECT_EQ(box_of([] { choose_entry("Save as"); }), "Write file successfull\nOk");
        EXPECT_TRUE(fs::exists(deep + "/" + longest + ending));
        const std::string other(longest.size(), 'm');
        answer_next(type_name(deep, other));
        EXPECT_EQ(box_of([] { choose_entry("Save as"); }), "Write file successfull\nOk");
        EXPECT_TRUE(fs::exists(deep + "/" + other + ending));
        answer_next(type_name(deep, other + "m"));
        EXPECT_EQ(box_of([] { choose_entry("Save as"); }), "Error write file\nOk");
    });
}

TEST_F(Hands, ARenamedLanguageIsFollowedAtOnce)
{
    write_file(source(), four);
    lang_global.editor_mode = 1;
    run_editor(source(), [&] {
        edit_ctrl.last(editWin);
        translate(panel()->trans1_view, "typed before");
        answer_next([](GtkWidget *dialog) {
            gtk_entry_set_text(GTK_ENTRY(find_text(dialog, "german")), "deutsch");
            press("Close")(dialog);
        });
        choose_entry("Setting");
        EXPECT_STREQ(gtk_tree_view_column_get_title(tab()->lang2_column), "deutsch");
        EXPECT_EQ(label(panel()->trans2_label), "Translation \"deutsch\"");
        EXPECT_EQ(identity(), "(4)  g:d") << "one stays where one was";
        EXPECT_EQ(text_of(panel()->trans1_view), "typed before");
        GtkTreeIter iter;
        gchar *text = nullptr;
        gtk_tree_model_get_iter_first(tab()->sort_model, &iter);
        gtk_tree_model_get(tab()->sort_model, &iter, COL_LANG2, &text, -1);
        EXPECT_STREQ(text, " ") << "no text in a language of that name";
        g_free(text);
    });
}
