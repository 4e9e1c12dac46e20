// The main window: what it shows, and what its menus and buttons do to files.

#include "config/ini.h"
#include "editor-fixture.h"

#include <gdk/gdkkeysyms.h>
#include <gmock/gmock.h>

#include <cstring>
#include <filesystem>

using namespace gui;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

constexpr const char *nothing = "Nothing to do\nOk";

std::vector<std::string> types_of_children(GtkWidget *container)
{
    std::vector<std::string> types;
    GList *children = gtk_container_get_children(GTK_CONTAINER(container));
    for (GtkWidget *child : zel::each<GtkWidget>(children))
        types.emplace_back(G_OBJECT_TYPE_NAME(child));
    g_list_free(children);
    return types;
}

} // namespace

TEST_F(Editor, WithoutASourceEverythingSaysNothingToDo)
{
    lang_global.editor_mode = 1;
    const std::string printed = run_editor("", [&] {
        EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(mainWin)),
                     "Tarvik language editor version 1.4");
        for (const char *entry : {"Save", "Save as", "Export to language files (*.lang)",
                                  "Import language file (*.lang)",
                                  "Save selected language file(*.lang-src)", "Setting"}) {
            EXPECT_EQ(box_of([&] { choose_entry(entry); }), nothing) << entry;
            EXPECT_EQ(status(), "Nothing to do") << entry;
        }
        for (const char *entry : {"First", "Previous", "Next", "Last"})
            choose_entry(entry);
        zel::edit_status("");
        choose_entry("Display not translated items");
        EXPECT_EQ(status(), "Nothing to do");
        press_tool("Display only not translated items");
        EXPECT_FALSE(gtk_check_menu_item_get_active(GTK_CHECK_MENU_ITEM(empty_menu)));
        EXPECT_FALSE(gtk_toggle_tool_button_get_active(GTK_TOGGLE_TOOL_BUTTON(empty_tool)));
        EXPECT_EQ(lang_global.only_untranslated, 0);
        EXPECT_EQ(lang_global.save_selected_only, 0);
        EXPECT_TRUE(fs::exists("lang.lang-ini.lock"));
    });
    EXPECT_THAT(printed, HasSubstr("lang_write_cfg: >lang.lang-ini.tmp<>lang.lang-ini<\n"));
    EXPECT_FALSE(fs::exists("lang.lang-ini.lock"));
    EXPECT_THAT(read_file("lang.lang-ini"),
                testing::MatchesRegex(
                    "version=0\n\n\\[language\\]\nlanguageFile= \"english.lang\"\ndstDir=\n"
                    "\n\\[mainWin\\]\nx=[0-9]+\ny=[0-9]+\nw=800\nh=600\n"
                    "\n\\[defineWin\\]\nx=-1\ny=-1\n"));
    EXPECT_EQ(ini, nullptr);
}

TEST_F(Editor, MenusAndToolbarFollowTheMode)
{
    run_editor("", [&] {
        EXPECT_THAT(menu_texts(mainWin),
                    ElementsAre("_File", "Load", "Save", "Save as", "-", "Exit programm", "_Move",
                                "First", "Previous", "Next", "Last", "_Export",
                                "Export to language files (*.lang)", "Ex_tras",
                                "Display not translated items", "_Setup", "Setting"));
        EXPECT_EQ(find_all(mainWin, GTK_TYPE_TOOL_BUTTON).size(), 13U);
        EXPECT_EQ(find_all(mainWin, GTK_TYPE_SEPARATOR_TOOL_ITEM).size(), 12U);
        GtkWidget *posnr = tool_button(mainWin, "Display position number");
        EXPECT_EQ(lang_global.posnr, 1);
        EXPECT_TRUE(gtk_toggle_tool_button_get_active(GTK_TOGGLE_TOOL_BUTTON(posnr)));
        gtk_toggle_tool_button_set_active(GTK_TOGGLE_TOOL_BUTTON(posnr), FALSE);
        EXPECT_EQ(lang_global.posnr, 0);
    });
    lang_global.editor_mode = 2;
    lang_global.posnr = 0;
    run_editor("", [&] {
        EXPECT_THAT(menu_texts(mainWin),
                    testing::IsSupersetOf({"_Export/Import", "Import language file (*.lang)",
                                           "Save selected language file(*.lang-src)"}));
        EXPECT_EQ(find_all(mainWin, GTK_TYPE_TOOL_BUTTON).size(), 15U);
        EXPECT_EQ(find_all(mainWin, GTK_TYPE_SEPARATOR_TOOL_ITEM).size(), 17U);
        EXPECT_EQ(lang_global.posnr, 0);
    });
}

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

TEST_F(Editor, LoadFillsTheWindowAndAFailedLoadEmptiesIt)
{
    write_file(path("bad.lang-src"), "nonsense {\n");
    run_editor("", [&] {
        answer_next(choose(source()));
        choose_entry("Load");
        ASSERT_NE(editWin, nullptr);
        EXPECT_EQ(label(lang_global.file_label), source());
        EXPECT_EQ(label(lang_global.create_date_label), "2024-03-04");
        EXPECT_EQ(label(lang_global.mtime_label), "Unknown");
        EXPECT_EQ(lang_global.start_dir, folder);
        EXPECT_EQ(identity(), "(1)  menu:Open");
        EXPECT_EQ(lang_global.modified, 0);

        translate(panel()->trans2_view, "getippt");
        EXPECT_EQ(lang_global.modified, 1);
        answer_next(respond(GTK_RESPONSE_NO));
        choose_entry("Load");
        EXPECT_EQ(lang_global.modified, 1);

        answer_next(close_window());
        answer_next(choose(path("bad.lang-src")));
        press_tool("Load (Ctrl+O)");
        EXPECT_EQ(def_group, nullptr);
        EXPECT_EQ(editWin, nullptr);
        for (GtkWidget *value :
             {lang_global.file_label, lang_global.create_date_label, lang_global.mtime_label})
            EXPECT_EQ(label(value), "");
        EXPECT_EQ(box_of([] { choose_entry("Save"); }), nothing);
    });
    EXPECT_EQ(read_file(source()), notes);
}

TEST_F(Editor, AFileThatCannotBeReadEndsTheEditorAndOnlyIt)
{
    // The second one would end a command.
    for (const char *text : {"nonsense\n", "group \"g\" { used maybe }\n"}) {
        write_file(path("bad.lang-src"), text);
        const std::string printed = run_editor(path("bad.lang-src"), nullptr);
        EXPECT_THAT(printed, testing::EndsWith("Error in language file\n"));
        EXPECT_FALSE(fs::exists("lang.lang-ini.lock"));
        EXPECT_FALSE(fs::exists("lang.lang-ini"));
        EXPECT_EQ(mainWin, nullptr);
    }
}

TEST_F(Editor, SaveWritesWhatWasTypedAndKeepsTheOldFile)
{
    run_editor(source(), [&] {
        translate(panel()->trans2_view, "\xc3\x96"
                                        "ffnen\nzweite Zeile\n \n");
        EXPECT_EQ(box_of([] { press_tool("Save (Ctrl+S)"); }), "Write file successfull\nOk");
        EXPECT_EQ(lang_global.modified, 0);
        EXPECT_THAT(texts_of(source()), HasSubstr("menu:Open german=\xc3\x96"
                                                  "ffnen\n|zweite Zeile|\n"));

        fs::create_hard_link(source(), "other name");
        box_of([] { choose_entry("Save"); });
        EXPECT_EQ(status(), source() + ": the file has other names, which keep the old text");

        // No temporary file can be made where the editor works.
        fs::create_directories("lang.tmp/in the way");
        translate(panel()->trans2_view, "anders");
        EXPECT_EQ(box_of([] { choose_entry("Save"); }), "Error write file\nOk");
        EXPECT_THAT(status(), testing::StartsWith(source() + ": ")) << "and why";
        EXPECT_EQ(lang_global.modified, 1);
        fs::remove_all("lang.tmp");
    });
    std::vector<std::string> backups;
    for (const auto &entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".bak")
            backups.push_back(read_file(entry.path()));
    }
    EXPECT_THAT(backups, testing::Contains(notes));
}

TEST_F(Editor, SaveAsWritesAnotherFileAndStaysWithTheOld)
{
    run_editor(source(), [&] {
        EXPECT_STREQ(lang_global.output_lang_1, "english");
        translate(panel()->trans2_view, "auf");
        answer_next(type_name(folder, "copy"));
        EXPECT_EQ(box_of([] { choose_entry("Save as"); }), "Write file successfull\nOk");
        EXPECT_EQ(def_file, source());
        EXPECT_EQ(lang_global.modified, 0);
        EXPECT_EQ(lang_global.output_lang_1, nullptr);
        EXPECT_EQ(lang_global.output_lang_2, nullptr);

        answer_next(respond(GTK_RESPONSE_CANCEL));
        lang_global.modified = 1;
        choose_entry("Save as");
        EXPECT_EQ(lang_global.modified, 1);
    });
    EXPECT_THAT(texts_of(path("copy.lang-src")), HasSubstr("menu:Open german=auf|\n"));
    EXPECT_EQ(read_file(source()), notes);
}

TEST_F(Editor, SaveSelectedWritesOneFilePerPairWithTheFirstLanguage)
{
    lang_global.editor_mode = 1;
    run_editor(source(), [&] {
        fs::create_directory("out");
        answer_next(choose(path("out")));
        lang_global.modified = 1;
        EXPECT_EQ(box_of([] { choose_entry("Save selected language file(*.lang-src)"); }),
                  "Write file/s successfull\nOk");
        EXPECT_EQ(lang_global.modified, 1);
        EXPECT_EQ(lang_global.save_selected_only, 0);
        EXPECT_EQ(lang_global.output_lang_1, nullptr);

        // No first language.
        for (lang_t *lang : zel::each<lang_t>(def_group->langs))
            lang->edit = 0;
        EXPECT_EQ(box_of([] { press_tool("Save selected languages (*.lang-src)"); }),
                  "Please select first language\nOk");
        EXPECT_EQ(status(), "Please select first language");
    });
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator("out"))
        names.push_back("DATE" +
                        entry.path().filename().string().substr(sizeof "2024-05-01-13-45" - 1));
    EXPECT_THAT(names, testing::UnorderedElementsAre("DATE-english-german-out.lang-src",
                                                     "DATE-english-french-out.lang-src"));
    for (const auto &entry : fs::directory_iterator("out")) {
        const std::string texts = texts_of(entry.path());
        const bool french = entry.path().string().find("french") != std::string::npos;
        EXPECT_EQ(texts.find("german=") == std::string::npos, french) << texts;
        EXPECT_THAT(texts, HasSubstr("menu:Close english=Close|\n"));
    }
}

TEST_F(Editor, ExportAsksForTheFolderOnce)
{
    const std::string printed = run_editor(source(), [&] {
        answer_next(respond(GTK_RESPONSE_CANCEL));
        EXPECT_EQ(box_of([] { choose_entry("Export to language files (*.lang)"); }),
                  "ERROR: No destination directory\nOk");
        EXPECT_EQ(status(), "ERROR: No destination directory");
        EXPECT_EQ(ini->dstDir, nullptr);

        fs::create_directory("out");
        translate(panel()->trans2_view, "auf");
        answer_next(choose(path("out")));
        const std::string box = "Path: " + path("out") +
                                "\nWriting language files successfull\nPlease select \"[your "
                                "language]-edit\" in kvo-config or restart KVO\nOk";
        EXPECT_EQ(box_of([] { press_tool("Export to language files (*.lang)"); }), box);
        EXPECT_EQ(status(), "Writing language files successfull");
        EXPECT_EQ(label(lang_global.export_path_label), path("out"));
        EXPECT_EQ(box_of([] { choose_entry("Export to language files (*.lang)"); }), box);

        // A folder that is not there.
        fs::remove_all("out");
        write_file("out", "");
        EXPECT_EQ(box_of([] { choose_entry("Export to language files (*.lang)"); }),
                  "ERROR: writing language files\nOk");
        fs::rename("out", "file");
    });
    EXPECT_THAT(printed,
                HasSubstr("Writing language files successfull\npath: >" + path("out") + "<\n"));
    EXPECT_THAT(read_file("lang.lang-ini"), HasSubstr("dstDir= \"" + path("out") + "\"\n"));
}

TEST_F(Editor, ImportTakesTheTextsOfACompiledFile)
{
    lang_global.editor_mode = 1;
    write_file(path("german.lang"), "FORMAT UTF8\nLANGUAGE \"german\"\n"
                                    "\"menu\"\n");
    const std::string printed = run_editor(source(), [&] {
        // A file of our own export, its text changed.
        fs::create_directory("out");
        answer_next(choose(path("out")));
        box_of([] { choose_entry("Export to language files (*.lang)"); });
        std::string compiled = read_file(path("out/german-edit/german.lang"));
        const std::size_t at = compiled.find("Schlie\xc3\x9f"
                                             "en");
        ASSERT_NE(at, std::string::npos) << compiled;
        compiled.replace(at,
                         std::strlen("Schlie\xc3\x9f"
                                     "en"),
                         "Zu");
        write_file(path("changed.lang"), compiled);

        lang_global.modified = 0;
        choose_entry("Last");
        answer_next(choose(path("changed.lang")));
        choose_entry("Import language file (*.lang)");
        EXPECT_EQ(lang_global.modified, 1);
        EXPECT_EQ(lang_global.importing, 0);
        EXPECT_EQ(box_of([] { choose_entry("Save"); }), "Write file successfull\nOk");
        EXPECT_THAT(texts_of(source()), HasSubstr("menu:Close german=Zu|\n"));

        lang_global.modified = 0;
        write_file(path("broken.lang"), "}{");
        answer_next(choose(path("broken.lang")));
        answer_next(press("Ok"));
        choose_entry("Import language file (*.lang)");
        EXPECT_THAT(status(), testing::StartsWith("ERROR: "));
        EXPECT_EQ(lang_global.modified, 0);
    });
    EXPECT_THAT(printed, HasSubstr("------------------------- import\n"));
    EXPECT_THAT(printed, HasSubstr(" lang=german\n"));
}

TEST_F(Editor, KeysMoveSaveAndAskBeforeTheEnd)
{
    run_editor(source(), [&] {
        settle(100);
        key(mainWin, GDK_KEY_End, GDK_MOD1_MASK); // the last item, not the export
        EXPECT_EQ(identity(), "(2)  menu:Close");
        key(mainWin, GDK_KEY_Up, GDK_MOD1_MASK);
        EXPECT_EQ(identity(), "(1)  menu:Open");
        key(mainWin, GDK_KEY_Down, GDK_MOD1_MASK);
        EXPECT_EQ(identity(), "(2)  menu:Close");
        key(mainWin, GDK_KEY_Home, GDK_MOD1_MASK);
        EXPECT_EQ(identity(), "(1)  menu:Open");
        EXPECT_EQ(lang_global.modified, 0);
        key(mainWin, GDK_KEY_m, GDK_MOD1_MASK);
        EXPECT_EQ(lang_global.modified, 1);
        EXPECT_EQ(box_of([] { key(mainWin, GDK_KEY_s, GDK_CONTROL_MASK); }),
                  "Write file successfull\nOk");
        EXPECT_EQ(lang_global.modified, 0);
        EXPECT_THAT(read_file(source()), HasSubstr("READY     1"));

        lang_global.modified = 1;
        answer_next([](GtkWidget *dialog) {
            EXPECT_NE(find_text(dialog, "Discard changes ?"), nullptr);
            GtkWidget *no = gtk_window_get_default_widget(GTK_WINDOW(dialog));
            EXPECT_EQ(gtk_dialog_get_response_for_widget(GTK_DIALOG(dialog), no), GTK_RESPONSE_NO);
            gtk_window_activate_default(GTK_WINDOW(dialog));
        });
        key(mainWin, GDK_KEY_x, GDK_MOD1_MASK);
        EXPECT_NE(def_group, nullptr);
        EXPECT_NE(ini, nullptr);

        answer_next([](GtkWidget *dialog) {
            GtkWidget *question = find_text(dialog, "Discard changes ?");
            gtk_widget_grab_focus(question);
            gtk_label_select_region(GTK_LABEL(question), 0, 0);
            for (int words = 0; words < 3; ++words)
                key(dialog, GDK_KEY_Right, GDK_CONTROL_MASK);
            settle(); // drawn with its caret
            key(dialog, GDK_KEY_Escape);
        });
        close_window()(mainWin);
        EXPECT_NE(mainWin, nullptr);
        EXPECT_NE(def_group, nullptr);
    });
}

TEST_F(Editor, DigitsBecomeThoseOfArabicOnlyWhenAskedFor)
{
    run_editor(source(), [&] {
        settle(50);
        const auto typed = [](guint bits) {
            lang_global.digit_keys = bits;
            GtkWidget *entry = ZEL_TAB_EDIT(editWin)->search_entry;
            gtk_entry_set_text(GTK_ENTRY(entry), "");
            gtk_widget_grab_focus(entry);
            key(mainWin, GDK_KEY_0);
            key(mainWin, GDK_KEY_9);
            lang_global.digit_keys = 0;
            return std::string(gtk_entry_get_text(GTK_ENTRY(entry)));
        };
        EXPECT_EQ(typed(0).find("\xd9"), std::string::npos);
        EXPECT_EQ(typed(1), "\xd9\xa0\xd9\xa9");
        EXPECT_EQ(typed(2), "\xdb\xb0\xdb\xb9");
        EXPECT_EQ(typed(3), "\xd9\xa0\xd9\xa9");
    });
}

TEST_F(Editor, HelpSaysWhenThereIsNoManual)
{
    run_editor("", [&] {
        lang_global.doc_dir = strdup("/nowhere");
        EXPECT_EQ(box_of([] { press_tool("Help"); }), "Error: Manual not found.\nOk");
        free(lang_global.doc_dir);
        lang_global.doc_dir = nullptr;
    });
}

TEST_F(Editor, BytesThatAreNotUtf8AreShownAndKept)
{
    lang_global.editor_mode = 2;
    std::string text = notes;
    text.replace(text.find("\"2024-03-04\""), 12, "\"\xff\xfe\"");
    while (text.find("german") != std::string::npos)
        text.replace(text.find("german"), 6, "\xe4\xf6");
    write_file(path("b\xff.lang-src"), text);
    run_editor("", [&] {
        answer_next(choose(path("b\xff.lang-src")));
        choose_entry("Load");
        EXPECT_EQ(label(lang_global.create_date_label), "\xef\xbf\xbd\xef\xbf\xbd");
        EXPECT_THAT(label(lang_global.file_label), testing::EndsWith("b\xef\xbf\xbd.lang-src"));
        answer_next(press("Close"));
        choose_entry("Setting");
        EXPECT_EQ(lang_global.modified, 0);
        lang_global.modified = 1;
        EXPECT_EQ(box_of([] { choose_entry("Save"); }), "Write file successfull\nOk");
    });
    EXPECT_THAT(read_file(path("b\xff.lang-src")), HasSubstr("\"\xe4\xf6\""));
    EXPECT_THAT(read_file(path("b\xff.lang-src")), HasSubstr("\"\xff\xfe\""));
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
