// What is typed outlives the editor; what another program writes is not written over unasked.

#include "editor-fixture.h"
#include "editor/frame/recovery.h"
#include "editor/frame/source-watch.h"
#include "recovery/place.h"
#include "recovery/recovery-file.h"
#include "recovery/source-lock.h"

#include <gdk/gdkkeysyms.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <unistd.h>

using namespace gui;
using testing::HasSubstr;
using testing::Not;

namespace {

namespace fs = std::filesystem;

class RecoveryWindow : public Editor {
protected:
    RecoveryWindow() { zel::recovery_interval = 20; }

    auto files() const
    {
        return zel::find_recovery_files(zel::recovery_folder(),
                                        zel::absolute_path(source().c_str()));
    }

    // Types it and waits until it is in the recovery file.
    static void type_and_wait(const char *text)
    {
        translate(panel()->trans2_view, text);
        EXPECT_TRUE(wait_for(zel::recovery_is_up_to_date));
    }

    // An editor that ends without being asked, with that text: what it has written stays.
    void die_with(const char *text)
    {
        run_editor(source(), [&] {
            type_and_wait(text);
            ASSERT_EQ(files().size(), 1U);
            const std::string path = files()[0].path;
            fs::rename(path, path + ".kept.lang-src");
        });
        EXPECT_EQ(files().size(), 1U);
    }

    void load() const
    {
        answer_next(choose(source()));
        choose_entry("Load");
    }

    // Loads the source, and sees the question that comes up.
    std::string load_and_answer(int answer) const
    {
        std::string seen;
        answer_next(choose(source()));
        answer_next(see(&seen, respond(answer)));
        choose_entry("Load");
        EXPECT_EQ(answers_left(), 0U);
        return seen;
    }

    static bool says_that_nothing_is_kept(const char *why = "")
    {
        return status() == std::string("No recovery file can be written, save often") + why;
    }

    static void come_back()
    {
        GdkEvent *event = gdk_event_new(GDK_FOCUS_CHANGE);
        event->focus_change.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(mainWin)));
        event->focus_change.in = TRUE;
        gtk_main_do_event(event);
        gdk_event_free(event);
    }
};

} // namespace

TEST_F(RecoveryWindow, WhatWasTypedComesBackAndGoesIntoTheSource)
{
    die_with("auf");
    EXPECT_THAT(texts_of(source()), Not(HasSubstr("auf"))) << "the source is left alone";
    const std::string path = files()[0].path;
    EXPECT_THAT(texts_of(path), HasSubstr("menu:Open german=auf|\n"));
    EXPECT_THAT(read_file(path), Not(HasSubstr("COMMENT"))) << "looking makes no entries";
    run_editor("", [&] {
        answer_next(choose(source()));
        answer_next([](GtkWidget *dialog) {
            gtk_button_clicked(GTK_BUTTON(
                gtk_widget_get_ancestor(find_text(dialog, "Show them"), GTK_TYPE_BUTTON)));
            settle();
            GtkWidget *list = find_named(dialog, "recovered-texts");
            if (list == nullptr) {
                ADD_FAILURE() << "no list";
                close_window()(dialog);
                return;
            }
            GtkTreeModel *rows = gtk_tree_view_get_model(GTK_TREE_VIEW(list));
            GtkTreeIter first;
            ASSERT_TRUE(gtk_tree_model_get_iter_first(rows, &first));
            EXPECT_EQ(gtk_tree_model_iter_n_children(rows, nullptr), 1);
            gchar *where = nullptr;
            gchar *text = nullptr;
            gtk_tree_model_get(rows, &first, 0, &where, 2, &text, -1);
            EXPECT_STREQ(where, "menu:Open, german");
            EXPECT_STREQ(text, "auf");
            g_free(where);
            g_free(text);
            gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_YES);
        });
        choose_entry("Load");
        EXPECT_EQ(lang_global.modified, 1);
        EXPECT_TRUE(wait_for(zel::recovery_is_up_to_date));
        EXPECT_EQ(files().size(), 1U) << "it is this session's now";
        EXPECT_NE(files()[0].path, path);
        box_of([] { choose_entry("Save"); });
        EXPECT_TRUE(files().empty());
        load();
    });
    EXPECT_THAT(texts_of(source()), HasSubstr("menu:Open german=auf|\n"));
    EXPECT_THAT(read_file(source()), HasSubstr("    CHANGED\n"));
}

TEST_F(RecoveryWindow, IsOfferedOnceMoreAfterNoAndThenGoes)
{
    die_with("auf");
    run_editor("", [&] {
        EXPECT_THAT(load_and_answer(GTK_RESPONSE_NO),
                    testing::AllOf(HasSubstr("1 text differs"), HasSubstr("second")));
        EXPECT_EQ(files().size(), 1U);
        EXPECT_EQ(lang_global.modified, 0);
        write_file(source(), std::string(notes) + "/* more */\n");
        EXPECT_THAT(load_and_answer(GTK_RESPONSE_DELETE_EVENT),
                    testing::AllOf(HasSubstr("has been changed since"), HasSubstr("No removes")));
        EXPECT_TRUE(files().empty());
        load();
    });
}

TEST_F(RecoveryWindow, GoesWithDiscardedChangesAndIsMadeAgainForLaterOnes)
{
    run_editor(source(), [&] {
        type_and_wait("auf");
        answer_next(respond(GTK_RESPONSE_YES));
        answer_next(respond(GTK_RESPONSE_CANCEL)); // of the chooser: the changes are still there
        choose_entry("Load");
        EXPECT_TRUE(wait_for([&] { return zel::recovery_is_up_to_date() && !files().empty(); }));
        answer_next(respond(GTK_RESPONSE_YES));
        load();
        EXPECT_TRUE(files().empty());
        type_and_wait("zu");
        EXPECT_EQ(files().size(), 1U);
        key(mainWin, GDK_KEY_z, GDK_CONTROL_MASK);
        EXPECT_EQ(lang_global.modified, 0);
        EXPECT_TRUE(wait_for([&] { return files().empty(); })) << "nothing is unsaved";
        type_and_wait("zu");
        EXPECT_THAT(texts_of(files()[0].path), HasSubstr("menu:Open german=zu|\n"));
    });
}

TEST_F(RecoveryWindow, IsThereAtOnceWhereGivenUpChangesStay)
{
    zel::recovery_interval = 60 * 1000;
    run_editor(source(), [&] {
        translate(panel()->trans2_view, "auf");
        answer_next(respond(GTK_RESPONSE_YES));
        answer_next(respond(GTK_RESPONSE_CANCEL));
        choose_entry("Load");
        EXPECT_TRUE(wait_for([&] { return !files().empty(); }));
    });
}

TEST_F(RecoveryWindow, AHomeThatCannotBeWrittenHurtsNothing)
{
    const std::string home = zel::recovery_folder();
    fs::remove_all(home);
    write_file(home, "a file in its place");
    run_editor(source(), [&] {
        translate(panel()->trans2_view, "auf");
        EXPECT_TRUE(wait_for([] { return says_that_nothing_is_kept(); }));
        box_of([] { choose_entry("Save"); });
    });
    fs::remove(home);
    EXPECT_THAT(texts_of(source()), HasSubstr("menu:Open german=auf|\n"));
}

TEST_F(RecoveryWindow, AFolderThatMayNotBeWrittenIsTold)
{
    const bool is_root = geteuid() == 0; // whom no mode stops
    run_editor(source(), [&] {
        fs::permissions(zel::recovery_folder(), fs::perms(0500));
        ASSERT_TRUE(!is_root || seteuid(65534) == 0);
        translate(panel()->trans2_view, "auf");
        EXPECT_TRUE(wait_for([] { return says_that_nothing_is_kept(": Permission denied"); }));
        ASSERT_TRUE(!is_root || seteuid(0) == 0);
        fs::permissions(zel::recovery_folder(), fs::perms(0700));
        type_and_wait("aufs"); // as soon as it can be
        EXPECT_EQ(files().size(), 1U);
    });
    // The toolkit may have written its list of used files as the user that may not.
    std::erase_if(warnings(), [](const std::string &text) {
        return text.find("recently-used") != std::string::npos;
    });
}

TEST_F(RecoveryWindow, AnotherProgramsTextIsNotWrittenOverUnasked)
{
    const std::string theirs = std::string(notes) + "/* theirs */\n";
    run_editor(source(), [&] {
        translate(panel()->trans2_view, "auf");
        write_file(source(), theirs);
        come_back();
        EXPECT_THAT(status(), testing::EndsWith(": changed by another program"));

        std::string seen;
        answer_next(see(&seen, respond(GTK_RESPONSE_NO)));
        choose_entry("Save");
        EXPECT_THAT(seen, HasSubstr("changed by another program since it was loaded"));
        EXPECT_EQ(read_file(source()), theirs);
        EXPECT_EQ(lang_global.modified, 1);
        EXPECT_EQ(status(), "Nothing was saved");

        answer_next(respond(GTK_RESPONSE_APPLY));
        answer_next(type_name(folder, "mine.lang-src"));
        answer_next(press("Ok"));
        choose_entry("Save");
        EXPECT_EQ(read_file(source()), theirs);
        EXPECT_THAT(texts_of("mine.lang-src"), HasSubstr("menu:Open german=auf|\n"));

        // They save once more while the question is there: yes was about the text before.
        answer_next([&](GtkWidget *dialog) {
            write_file(source(), theirs + "/* again */\n");
            respond(GTK_RESPONSE_YES)(dialog);
        });
        answer_next(respond(GTK_RESPONSE_NO));
        choose_entry("Save");
        EXPECT_EQ(read_file(source()), theirs + "/* again */\n");

        answer_next(respond(GTK_RESPONSE_YES));
        box_of([] { choose_entry("Save"); });
        EXPECT_THAT(texts_of(source()), HasSubstr("menu:Open german=auf|\n"));
        box_of([] { choose_entry("Save"); }); // it is ours now
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
        load();
        EXPECT_FALSE(first.take(zel::recovery_folder(), zel::watched_path()));
    });
    EXPECT_TRUE(first.take(zel::recovery_folder(), zel::absolute_path(source().c_str())));
}
