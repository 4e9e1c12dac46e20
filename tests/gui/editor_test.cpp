// What the scenes cannot tell: other processes and users, the window's parts, times.

#include "config/ini.h"
#include "editor/frame/define.h"
#include "editor/frame/edit-keys.h"
#include "editor/frame/edit-place.h"
#include "editor/frame/recovery.h"
#include "editor/frame/source-watch.h"
#include "recovery/place.h"
#include "recovery/source-lock.h"
#include "scene.h"
#include "source/group.h"
#include "source/misc.h"
#include "support/log.h"
#include "support/string-copy.h"

#include <gdk/gdkkeysyms.h>
#include <gdk/gdkx.h>
#include <gmock/gmock.h>

#include <ctime>
#include <filesystem>
#include <unistd.h>

using namespace gui;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

// Suites that the scenes have begun.
using Beside = Editor;
using Define = Editor;
using Hands = Editor;
using RecoveryWindow = Editor;
using Table = Editor;

std::vector<std::string> types_of_children(GtkWidget *container)
{
    std::vector<std::string> types;
    GList *children = gtk_container_get_children(GTK_CONTAINER(container));
    for (GtkWidget *child : zel::each<GtkWidget>(children))
        types.emplace_back(G_OBJECT_TYPE_NAME(child));
    g_list_free(children);
    return types;
}

class LongText : public Editor {
protected:
    // A source whose second item has that many letters without a break, in strings of so many.
    void write(int letters, int in_a_string)
    {
        std::string strings;
        for (int at = 0; at < letters; at += in_a_string) {
            strings += '"';
            for (int letter = at; letter < at + in_a_string && letter < letters; ++letter)
                strings += static_cast<char>('a' + letter * 7 % 26);
            strings += "\"\n";
        }
        write_file(source(), "define file \"e\" lang \"english\" 1 1 1\n"
                             "define file \"g\" lang \"german\" 1 1 1\n"
                             "GROUP \"g\" { ITEM \"short\" { USED YES }\n"
                             "ITEM \"long\" { USED YES LANG \"german\" {\n" +
                                 strings + "} } }\n");
    }
    // Seconds of the processor for showing it, and for typing a letter at its end.
    double seconds_for(int letters, int in_a_string)
    {
        write(letters, in_a_string);
        double seconds = 0;
        run_editor(source(), [&] {
            settle(50);
            const std::clock_t start = std::clock();
            edit_ctrl.next(editWin);
            zel::text_focus_field(panel(), TEXT_TRANS2);
            settle(0);
            type(mainWin, "x");
            settle(0);
            seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
            GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(panel()->trans2_view));
            EXPECT_EQ(gtk_text_buffer_get_char_count(buffer), letters + 1);
        });
        return seconds;
    }
};

} // namespace

TEST_F(Editor, WhatStandsBesideALineIsInItsFrame)
{
    run_editor(source(), [&] {
        EXPECT_THAT(types_of_children(gtk_bin_get_child(GTK_BIN(mainWin))),
                    ElementsAre("GtkMenuBar", "GtkToolbar", "GtkFrame", "GtkNotebook", "GtkFrame"));
        EXPECT_EQ(gtk_widget_get_ancestor(statusWin, GTK_TYPE_FRAME),
                  gtk_widget_get_ancestor(changed_sign, GTK_TYPE_FRAME));
        EXPECT_THAT(types_of_children(find_type(editWin, GTK_TYPE_VBOX)),
                    ElementsAre("GtkHBox", "GtkHPaned", "GtkFrame"));
    });
}

TEST_F(Editor, EveryControlHasANameToSay)
{
    lang_global.editor_mode = 2;
    run_editor(source(), [&] {
        for (GtkWidget *widget : find_all(mainWin, GTK_TYPE_WIDGET)) {
            GtkWidget *parent = gtk_widget_get_parent(widget);
            // What only holds others, and the toolkit's own parts.
            if (!gtk_widget_get_can_focus(widget) || GTK_IS_NOTEBOOK(widget) ||
                GTK_IS_PANED(widget) || GTK_IS_SCROLLED_WINDOW(widget) || GTK_IS_TOOLBAR(parent) ||
                GTK_IS_TREE_VIEW(parent))
                continue;
            const bool captioned =
                GTK_IS_BUTTON(widget) && gtk_button_get_label(GTK_BUTTON(widget)) != nullptr;
            AtkObject *said = gtk_widget_get_accessible(widget);
            const gchar *name = atk_object_get_name(said);
            AtkRelationSet *relations = atk_object_ref_relation_set(said);
            const bool bound = atk_relation_set_contains(relations, ATK_RELATION_LABELLED_BY);
            g_object_unref(relations);
            EXPECT_TRUE(captioned || bound || (name != nullptr && *name != '\0'))
                << G_OBJECT_TYPE_NAME(widget) << " in a " << G_OBJECT_TYPE_NAME(parent);
        }
    });
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

TEST_F(RecoveryWindow, AFolderThatMayNotBeWrittenIsTold)
{
    zel::recovery_interval = 20;
    const bool is_root = geteuid() == 0; // whom no mode stops
    run_editor(source(), [&] {
        fs::permissions(zel::recovery_folder(), fs::perms(0500));
        ASSERT_TRUE(!is_root || seteuid(65534) == 0);
        translate(panel()->trans2_view, "auf");
        EXPECT_TRUE(wait_for([] {
            return status() == "No recovery file can be written, save often: Permission denied";
        }));
        ASSERT_TRUE(!is_root || seteuid(0) == 0);
        fs::permissions(zel::recovery_folder(), fs::perms(0700));
        translate(panel()->trans2_view, "aufs");
        EXPECT_TRUE(wait_for(zel::recovery_is_up_to_date)) << "as soon as it can be";
        EXPECT_EQ(recovery_files(source()).size(), 1U);
    });
    // The toolkit may have written its list of used files as the user that may not.
    std::erase_if(warnings(), [](const std::string &text) {
        return text.find("recently-used") != std::string::npos;
    });
}

TEST_F(RecoveryWindow, TheSecondEditorIsTold)
{
    zel::source_lock first;
    ASSERT_TRUE(first.take(zel::recovery_folder(), zel::absolute_path(source().c_str())));
    run_editor("", [&] {
        std::string seen;
        answer_next(choose(source()));
        answer_next(see(&seen, press("Ok")));
        choose_entry("Load");
        EXPECT_THAT(seen, HasSubstr("process " + std::to_string(getpid())));
        EXPECT_NE(editWin, nullptr) << "one may go on";
        first.release();
        answer_next(choose(source()));
        choose_entry("Load");
        EXPECT_FALSE(first.take(zel::recovery_folder(), zel::watched_path()));
    });
    EXPECT_TRUE(first.take(zel::recovery_folder(), zel::absolute_path(source().c_str())));
}

TEST_F(Define, ManyLanguagesScrollAndCloseStaysInSight)
{
    std::string text = notes;
    for (int number = 0; number < 60; ++number)
        text += "define file \"f\" lang \"language " + std::to_string(number) + "\" 1 1 0\n";
    write_file(source(), text);
    lang_global.editor_mode = 1;
    const auto look = [](GtkWidget *dialog) {
        settle(50);
        gint width = 0;
        gint height = 0;
        gtk_window_get_size(GTK_WINDOW(defineWin), &width, &height);
        EXPECT_LT(height, gdk_screen_get_height(gtk_widget_get_screen(defineWin)) - 20);
        GtkAllocation close{};
        gtk_widget_get_allocation(find_text(defineWin, "Close"), &close);
        EXPECT_LT(close.y + close.height, height);

        const auto in_sight = [](GtkWidget *widget) {
            GtkWidget *viewport = gtk_widget_get_ancestor(widget, GTK_TYPE_VIEWPORT);
            gint x = 0;
            gint y = 0;
            gtk_widget_translate_coordinates(widget, viewport, 0, 0, &x, &y);
            GtkAllocation shown{};
            gtk_widget_get_allocation(viewport, &shown);
            return y >= 0 && y + 10 < shown.height && x >= 0 && x + 10 < shown.width;
        };
        const auto row = [](guint number) {
            return static_cast<define_row_t *>(g_list_nth_data(defineList, number));
        };
        GtkWidget *last = row(62)->edit_button;
        EXPECT_FALSE(in_sight(last));
        gtk_widget_grab_focus(last);
        settle();
        EXPECT_TRUE(in_sight(last)) << "what has the keyboard is scrolled to";
        gtk_button_clicked(GTK_BUTTON(find_text(defineWin, "Add")));
        settle();
        EXPECT_TRUE(in_sight(row(63)->name_entry));
        press("Close")(dialog);
    };
    run_editor(source(), [&] {
        answer_next(look);
        choose_entry("Setting");
    });
}

TEST_F(Define, ItsEndIsLoggedOnEveryWayOutAndItGoesWithTheWindowAboveIt)
{
    ini = ini_new("lang.lang-ini");
    source_guard read;
    zel_test::capture_stdout([&] { read.reset(lang_read_file(source().c_str())); });
    GtkWidget *above = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_widget_show(above);
    const auto with_above = [&](GtkWidget *) { gtk_widget_destroy(above); };
    for (const answer_fn &way :
         {press("Close"), close_window(), answer_fn(gtk_widget_destroy), answer_fn(with_above)}) {
        fs::remove("log");
        LogOpen("log", LOG_OPEN_NEW, "test");
        answer_next(way);
        zel_test::capture_stdout([&] { EXPECT_EQ(define_open(above, read.get()), 0); });
        LogClose();
        EXPECT_THAT(read_file("log"), HasSubstr("default_destroy: msg_box: g_main_loop_quit\n"));
        EXPECT_EQ(defineWin, nullptr);
        EXPECT_EQ(defineList, nullptr);
    }
    ini_free(ini);
    ini = nullptr;
}

TEST_F(Table, RefreshAfterAnImportDropsWhatThePanelHolds)
{
    run_editor(source(), [&] {
        search("close"); // with a single row the selection cannot move
        edit_ctrl.first(editWin);
        translate(panel()->trans2_view, "stale");
        item_t *item = panel()->item;
        lang_entry_t *entry = misc_select_lang_entry(item, "german");
        free_lang_entry_text(entry->texts);
        entry->texts = g_list_append(nullptr, zel_strdup2("imported"));
        lang_global.importing = 1;
        edit_ctrl.refresh(editWin);
        lang_global.importing = 0;
        EXPECT_STREQ(zel_get_first_lang_entry(item->langs, "german"), "imported");
        EXPECT_EQ(german(), "imported");
        translate(panel()->trans2_view, "kept");
        edit_ctrl.refresh(editWin);
        EXPECT_STREQ(zel_get_first_lang_entry(item->langs, "german"), "kept");
    });
}

TEST_F(Table, AGroupsPictureIsReadWhenItsPageIsSeenAndFitsThere)
{
    fs::create_directory("ScreenShots");
    GdkPixbuf *drawn = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, 2000, 1000);
    gdk_pixbuf_fill(drawn, 0x3d6fa8ff);
    ASSERT_TRUE(gdk_pixbuf_save(drawn, "ScreenShots/menu.jpg", "jpeg", nullptr, nullptr));
    g_object_unref(drawn);
    write_file(source(), std::string(notes) + "GROUP \"help\" { ITEM \"last\" { USED YES } }\n");
    run_editor(source(), [&] {
        settle();
        GtkImage *image = GTK_IMAGE(lang_global.shot_image);
        EXPECT_EQ(gtk_image_get_storage_type(image), GTK_IMAGE_EMPTY);
        const auto width = [image] {
            settle();
            GdkPixbuf *shown = gtk_image_get_pixbuf(image);
            return shown == nullptr ? 0 : gdk_pixbuf_get_width(shown);
        };
        gtk_notebook_set_current_page(GTK_NOTEBOOK(gtk_widget_get_parent(editBox)), 1);
        const int small = width();
        EXPECT_GT(small, 600);
        EXPECT_LT(small, 800);
        gtk_window_resize(GTK_WINDOW(mainWin), 1000, 700);
        EXPECT_TRUE(wait_for([&] { return width() > 800; }));
        GtkScrolledWindow *scrolled = GTK_SCROLLED_WINDOW(lang_global.shot_window);
        for (GtkWidget *bar : {gtk_scrolled_window_get_hscrollbar(scrolled),
                               gtk_scrolled_window_get_vscrollbar(scrolled)})
            EXPECT_FALSE(gtk_widget_get_visible(bar));
        GtkWidget *page = gtk_widget_get_parent(GTK_WIDGET(image));
        for (const int wanted : {2000, width()}) {
            GdkEvent *click = gdk_event_new(GDK_BUTTON_PRESS);
            click->button.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(page)));
            click->button.button = 1;
            gtk_main_do_event(click);
            gdk_event_free(click);
            EXPECT_EQ(width(), wanted);
        }
        edit_ctrl.last(editWin); // a group without one
        EXPECT_EQ(gtk_image_get_storage_type(GTK_IMAGE(lang_global.shot_image)), GTK_IMAGE_STOCK)
            << "the sign for a missing picture";
    });
}

TEST_F(Table, FieldsOfTwoLanguagesWithOneNameLoseTheirEntryTogether)
{
    write_file(source(), R"(define file "a" lang "x" 1 1 1 define file "b" lang "x" 1 1 1
                            GROUP "g" { ITEM "i" { USED YES } })");
    run_editor(source(), [] {
        edit_more.put_away(editWin);
        EXPECT_EQ(panel()->trans2_entry, nullptr);
        edit_more.bring_back(editWin);
        EXPECT_EQ(panel()->trans2_entry, panel()->trans1_entry);
    });
}

TEST_F(Table, MayBeDestroyedAfterItsSource)
{
    run_editor("", [&] {
        LangSource *read = lang_read_file(source().c_str());
        GtkWidget *table = zel_tab_edit_new();
        g_object_ref_sink(table);
        zel_tab_edit_set(table, read);
        zel_tab_edit_first(table);
        translate(ZEL_TEXT(ZEL_TAB_EDIT(table)->text_widget)->trans1_view, "pending");
        lang_free_group(&read);
        gtk_widget_destroy(table);
        g_object_unref(table);
        settle();
    });
}

TEST_F(Table, RefusesWhatIsNoTableNorPanel)
{
    lang_global.editor_mode = 1;
    run_editor(source(), [&] {
        edit_ctrl_t ctrls{};
        ASSERT_EQ(zel_tab_edit_get_ctrls(&ctrls), 1);
        std::vector<std::function<int(GtkWidget *)>> operations{
            ctrls.update,
            ctrls.first,
            ctrls.prev,
            ctrls.next,
            ctrls.last,
            ctrls.check_changed,
            ctrls.list_focus,
            ctrls.refresh,
            ctrls.whatsnew,
            ctrls.empty,
            [&](GtkWidget *widget) { return ctrls.set(widget, def_group); }};
        const std::size_t of_table = operations.size();
        item_t *item = panel()->item;
        item->used_in = g_list_append(item->used_in, nullptr);
        operations.insert(
            operations.end(),
            {[](GtkWidget *widget) { return zel_text_set_pos(widget, 1); },
             [](GtkWidget *widget) { return zel_text_set_group_name(widget, nullptr); },
             [&](GtkWidget *widget) { return zel_text_set(widget, def_group, item, 1); },
             zel_text_update});
        for (std::size_t number = 0; number < operations.size(); ++number) {
            EXPECT_EQ(operations[number](nullptr), 0);
            EXPECT_EQ(operations[number](statusWin), 0);
            ASSERT_EQ(warnings().size(), 2U);
            EXPECT_THAT(warnings()[0], HasSubstr("widget != NULL"));
            EXPECT_THAT(warnings()[1],
                        HasSubstr(number < of_table ? "ZEL_IS_TAB_EDIT" : "ZEL_IS_TEXT"));
            warnings().clear();
            EXPECT_EQ(operations[number](number < of_table ? editWin : tab()->text_widget), 1);
        }
        EXPECT_EQ(identity(), "unknown group:Open");
        EXPECT_EQ(text_of(panel()->used_in_view), "\n");
    });
}

// The toolkit alone needs fifteen times as long for four times the letters.
TEST_F(LongText, AnUnbrokenLineIsShownInLinearTime)
{
    for (const int in_a_string : {32000, 100}) {
        const double some = seconds_for(4000, in_a_string);
        const double many = seconds_for(16000, in_a_string);
        EXPECT_LT(many, 8 * some) << some << " s, in strings of " << in_a_string;
    }
}
