// The language dialog.

#include "app/global.h"
#include "config/ini.h"
#include "editor/frame/define.h"
#include "editor/state/edit-state.h"
#include "gui-support.h"
#include "support/log.h"
#include "support/string-copy.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace gui;
using testing::ElementsAre;
namespace fs = std::filesystem;

namespace {

class Define : public Test {
protected:
    Define()
    {
        ini = ini_new("lang.lang-ini");
        lang_global.editor_mode = 1;
        for (const char *name : {"english", "german", "french"})
            add_lang(name);
    }
    ~Define() override
    {
        ini_free(ini);
        ini = nullptr;
    }

    lang_t *add_lang(const char *name)
    {
        lang_t *lang = alloc_lang();
        lang->name = zel_strdup(name);
        lang->file = zel_strdup((std::string(name) + ".lang").c_str());
        source->langs = g_list_append(source->langs, lang);
        return lang;
    }
    void mark(std::vector<int> edit) const
    {
        for (std::size_t i = 0; i < edit.size(); ++i)
            lang(i)->edit = edit[i];
    }
    lang_t *lang(std::size_t number) const
    {
        return static_cast<lang_t *>(g_list_nth_data(source->langs, static_cast<guint>(number)));
    }
    std::vector<int> marks() const
    {
        std::vector<int> edit;
        for (const lang_t *each : zel::each<lang_t>(source->langs))
            edit.push_back(each->edit);
        return edit;
    }
    static define_row_t *row(guint number)
    {
        return static_cast<define_row_t *>(g_list_nth_data(defineList, number));
    }
    static void tick(guint number)
    {
        GtkToggleButton *button = GTK_TOGGLE_BUTTON(row(number)->edit_button);
        gtk_toggle_button_set_active(button, !gtk_toggle_button_get_active(button));
    }

    // Opens the dialog, lets the function act, and answers.
    std::string open(const std::function<void()> &act, answer_fn then = press("Close"))
    {
        answer_next([&act, then](GtkWidget *dialog) {
            act();
            then(dialog);
        });
        std::string printed =
            zel_test::capture_stdout([&] { EXPECT_EQ(define_open(nullptr, source.get()), 0); });
        if (HasFailure()) // what failed stands among it
            std::fputs(printed.c_str(), stderr);
        return printed;
    }

    source_guard source{lang_alloc_group()};
};

} // namespace

TEST_F(Define, TwoLanguagesAtMostAreMarked)
{
    mark({1, 1, 0});
    open([&] {
        tick(2);
        EXPECT_THAT(marks(), ElementsAre(1, 1, 0));
        EXPECT_FALSE(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(row(2)->edit_button)));
        tick(0);
        tick(2);
        EXPECT_THAT(marks(), ElementsAre(0, 1, 1));
        tick(0);
        EXPECT_THAT(marks(), ElementsAre(1, 1, 0));
    });
    EXPECT_EQ(lang_global.modified, 1);
    EXPECT_EQ(defineWin, nullptr);
    EXPECT_EQ(defineList, nullptr);
}

TEST_F(Define, LookingChangesNothing)
{
    source->whatsnew = 1234567890;
    zel::replace_string(lang(2)->name, zel_strdup("fran\xe7"
                                                  "ais")); // not UTF-8
    open([&] {
        EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(row(2)->name_entry)), "fran\xef\xbf\xbd"
                                                                        "ais");
        EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(row(2)->file_entry)), "french.lang");
        EXPECT_THAT(label_texts(defineWin),
                    testing::IsSupersetOf(
                        {"language", "filename", "edit?", "Export path", "Whatsnew time"}));
    });
    EXPECT_STREQ(lang(2)->name, "fran\xe7"
                                "ais");
    EXPECT_EQ(source->whatsnew, 1234567890);
    EXPECT_EQ(lang_global.modified, 0);
}

TEST_F(Define, LanguagesAreAddedAndRenamedAtTheEnd)
{
    open([&] {
        GtkWidget *add = find_text(defineWin, "Add");
        gtk_button_clicked(GTK_BUTTON(add));
        gtk_button_clicked(GTK_BUTTON(add));
        EXPECT_EQ(g_list_length(source->langs), 5U);
        gtk_entry_set_text(GTK_ENTRY(row(3)->name_entry), "dansk");
        gtk_entry_set_text(GTK_ENTRY(row(3)->file_entry), "dansk.lang");
        gtk_entry_set_text(GTK_ENTRY(row(0)->name_entry), "englisch");
        EXPECT_STREQ(lang(0)->name, "english");
    });
    EXPECT_STREQ(lang(0)->name, "englisch");
    EXPECT_STREQ(lang(3)->name, "dansk");
    EXPECT_STREQ(lang(3)->file, "dansk.lang");
    EXPECT_EQ(lang(4)->name, nullptr);
    EXPECT_EQ(lang(4)->edit, 0);
    EXPECT_EQ(lang_global.modified, 1);
}

TEST_F(Define, TheNormalModeOnlyMarks)
{
    lang_global.editor_mode = 0;
    open([&] {
        EXPECT_FALSE(gtk_widget_get_sensitive(row(0)->name_entry));
        EXPECT_FALSE(gtk_widget_get_sensitive(row(0)->file_entry));
        EXPECT_TRUE(gtk_widget_get_sensitive(row(0)->edit_button));
        EXPECT_EQ(find_text(defineWin, "Add"), nullptr);
        EXPECT_EQ(find_text(defineWin, "Whatsnew time"), nullptr);
    });
}

TEST_F(Define, ExportPathIsBrowsedForAndTakenAtTheClose)
{
    fs::create_directory("out");
    std::string printed = open([&] {
        answer_next(choose(path("out")));
        gtk_button_clicked(GTK_BUTTON(find_text(defineWin, "Browse")));
        EXPECT_EQ(ini->dstDir, path("out"));
        EXPECT_NE(find_text(defineWin, path("out")), nullptr);
    });
    EXPECT_EQ(printed, "dst dir >" + path("out") + "<\n");
    zel::replace_string(ini->dstDir, zel_strdup("/\xff")); // a folder that cannot be shown
    printed =
        open([&] { gtk_entry_set_text(GTK_ENTRY(row(0)->name_entry), "taken"); }, close_window());
    EXPECT_EQ(printed, "dst dir >/\xff<\n");
    EXPECT_STREQ(ini->dstDir, "/\xff");
    EXPECT_STREQ(lang(0)->name, "taken");
}

TEST_F(Define, WhatsnewTimeIsStoredAlsoWithoutReturn)
{
    open([&] {
        GtkWidget *spin = find_named(defineWin, "whatsnew");
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(spin), 4294967296.0);
        EXPECT_EQ(source->whatsnew, 4294967296);
        gtk_entry_set_text(GTK_ENTRY(spin), "1700000000");
    });
    EXPECT_EQ(source->whatsnew, 1700000000);
    EXPECT_EQ(lang_global.modified, 1);
}

TEST_F(Define, RemembersWhereItStood)
{
    open([&] {
        gtk_window_move(GTK_WINDOW(defineWin), 123, 77);
        EXPECT_TRUE(wait_for([] { return ini->define_x == 123 && ini->define_y == 77; }))
            << ini->define_x << " " << ini->define_y;
    });
}

TEST_F(Define, ManyLanguagesScrollAndCloseStaysInSight)
{
    for (int number = 0; number < 60; ++number)
        add_lang(("language " + std::to_string(number)).c_str());
    open([&] {
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
        GtkWidget *last = row(62)->edit_button;
        EXPECT_FALSE(in_sight(last));
        gtk_widget_grab_focus(last);
        settle();
        EXPECT_TRUE(in_sight(last)) << "what has the keyboard is scrolled to";
        gtk_button_clicked(GTK_BUTTON(find_text(defineWin, "Add")));
        settle();
        EXPECT_TRUE(in_sight(row(63)->name_entry));
    });
}

TEST_F(Define, ItsEndIsLoggedOnEveryWayOut)
{
    for (const answer_fn &way : {press("Close"), close_window(), answer_fn(gtk_widget_destroy)}) {
        fs::remove("log");
        LogOpen("log", LOG_OPEN_NEW, "test");
        open([] {}, way);
        LogClose();
        EXPECT_THAT(read_file("log"),
                    testing::HasSubstr("default_destroy: msg_box: g_main_loop_quit\n"));
    }
}

TEST_F(Define, GoesWithTheWindowAboveIt)
{
    GtkWidget *above = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_widget_show(above);
    answer_next([&](GtkWidget *) {
        gtk_entry_set_text(GTK_ENTRY(row(1)->name_entry), "deutsch");
        gtk_widget_destroy(above);
    });
    EXPECT_EQ(define_open(above, source.get()), 0);
    EXPECT_STREQ(lang(1)->name, "deutsch");
    EXPECT_EQ(defineWin, nullptr);
}
