// Undo and redo in the window: by keys and from the menus, over items, filters, marks, imports and
// languages.

#include "editor-fixture.h"

#include "editor/frame/define.h"
#include "editor/table/w_tab_work.h"

#include <gdk/gdkkeysyms.h>
#include <gmock/gmock.h>

#include <filesystem>

using namespace gui;
using testing::HasSubstr;

namespace {

class Undo : public Editor {
protected:
    static int caret()
    {
        GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(panel()->trans2_view));
        GtkTextIter at;
        gtk_text_buffer_get_iter_at_mark(buffer, &at, gtk_text_buffer_get_insert(buffer));
        return gtk_text_iter_get_offset(&at);
    }
    static void undo() { key(mainWin, GDK_KEY_z, GDK_CONTROL_MASK); }
    static void redo() { key(mainWin, GDK_KEY_Z, GDK_CONTROL_MASK | GDK_SHIFT_MASK); }
};

} // namespace

TEST_F(Undo, TypingGoesBackInWordsAcrossItemsWithTheCaret)
{
    run_editor(source(), [&] {
        type_german("auf und");
        go_to(1);
        type_german("!");
        EXPECT_EQ(german(), "Schlie\u00dfen!");
        go_to(0);
        undo();
        EXPECT_THAT(identity(), HasSubstr("Close"));
        EXPECT_EQ(german(), "Schlie\u00dfen");
        EXPECT_EQ(caret(), 9);
        EXPECT_TRUE(gtk_widget_is_focus(panel()->trans2_view));
        undo();
        EXPECT_THAT(identity(), HasSubstr("Open"));
        EXPECT_EQ(german(), "auf ");
        EXPECT_EQ(caret(), 4);
        EXPECT_EQ(lang_global.modified, 1);
        undo();
        EXPECT_EQ(german(), "");
        EXPECT_EQ(lang_global.modified, 0) << "as it was loaded";
        EXPECT_FALSE(gtk_widget_get_visible(changed_sign));
        undo();
        EXPECT_EQ(status(), "Nothing to undo");
        redo();
        redo();
        EXPECT_EQ(german(), "auf und");
        redo();
        redo();
        EXPECT_EQ(status(), "Nothing to redo");
        EXPECT_EQ(german(), "Schlie\u00dfen!");
    });
}

TEST_F(Undo, AllUndoneAndSavedTheFileHoldsWhatItHeld)
{
    const auto saved = [&] {
        box_of([] { choose_entry("Save"); });
        return texts_of(source()) +
               (read_file(source()).find("CHANGED") == std::string::npos ? "" : "CHANGED");
    };
    const std::string before = texts_of(source());
    run_editor(source(), [&] {
        type_german("auf");
        translate(panel()->comment1_view, "a remark");
        go_to(1);
        go_to(0);
        EXPECT_THAT(saved(), HasSubstr("auf"));
        EXPECT_EQ(lang_global.modified, 0);
        undo();
        EXPECT_EQ(lang_global.modified, 1) << "another state than what was saved";
        undo();
        EXPECT_EQ(saved(), before) << "no empty entry is left behind, nor a mark";
    });
}

TEST_F(Undo, AHiddenItemIsShownAgain)
{
    run_editor(source(), [&] {
        ASSERT_TRUE(wait_for([] { return !label(tab()->work->progress_label()).empty(); }));
        const std::string progress = label(tab()->work->progress_label());
        type_german("auf");
        EXPECT_NE(label(tab()->work->progress_label()), progress);
        go_to(1);
        choose_entry("Display not translated items");
        search("Close");
        undo();
        EXPECT_THAT(identity(), HasSubstr("Open"));
        EXPECT_EQ(german(), "");
        EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(tab()->search_entry)), "");
        EXPECT_EQ(label(tab()->work->progress_label()), progress);
        redo();
        go_to(1);
        edit_ctrl.empty(editWin); // the item has its text now, and goes
        undo();
        EXPECT_THAT(identity(), HasSubstr("Open"));
        EXPECT_EQ(lang_global.only_untranslated, 0);
    });
}

TEST_F(Undo, ReadyMarksComeBackAndTheCellOnesChangeNothing)
{
    run_editor(source(), [&] {
        GtkToggleButton *ready = GTK_TOGGLE_BUTTON(tab()->ready_button);
        gtk_toggle_button_set_active(ready, TRUE);
        go_to(1);
        undo();
        EXPECT_THAT(identity(), HasSubstr("Open"));
        EXPECT_EQ(panel()->item->ready, 0);
        EXPECT_EQ(gtk_toggle_button_get_active(ready), FALSE);
        EXPECT_EQ(lang_global.modified, 0);
        redo();
        EXPECT_EQ(panel()->item->ready, 1);
        EXPECT_EQ(lang_global.modified, 1);

        undo();
        GList *cells = gtk_cell_layout_get_cells(
            GTK_CELL_LAYOUT(gtk_tree_view_get_column(GTK_TREE_VIEW(tab()->view), 3)));
        g_signal_emit_by_name(cells->data, "toggled", "1");
        g_list_free(cells);
        EXPECT_EQ(lang_global.modified, 0);
        undo();
        EXPECT_THAT(identity(), HasSubstr("Close"));
        EXPECT_EQ(panel()->item->ready, 0);
        EXPECT_EQ(lang_global.modified, 0);
    });
}

TEST_F(Undo, AnImportAndTheLanguagesAreTakenBackWhole)
{
    lang_global.editor_mode = 1;
    std::filesystem::create_directory("out");
    run_editor(source(), [&] {
        const std::string before = texts_of(source());
        const auto languages = [] {
            std::string all;
            for (const lang_t *lang : zel::each<lang_t>(def_group->langs))
                all += std::string(lang->name) + (lang->edit != 0 ? "* " : " ");
            return all;
        };
        answer_next(choose(path("out")));
        box_of([] { choose_entry("Export to language files (*.lang)"); });
        std::string compiled = read_file(path("out/german-edit/german.lang"));
        compiled.replace(compiled.find("Schlie"), 6, "Schloss ");
        compiled.replace(compiled.find("LANGUAGE \"german"), 16, "LANGUAGE \"danish");
        write_file(path("changed.lang"), compiled);

        type_german("auf");
        answer_next(choose(path("changed.lang")));
        choose_entry("Import language file (*.lang)");
        answer_next([](GtkWidget *dialog) {
            const auto *row = static_cast<define_row_t *>(defineList->data);
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(row->edit_button), FALSE);
            gtk_entry_set_text(GTK_ENTRY(row->name_entry), "British");
            press("Close")(dialog);
        });
        choose_entry("Setting");
        EXPECT_EQ(languages(), "British german* french danish ");
        undo();
        EXPECT_EQ(languages(), "english* german* french danish ");
        EXPECT_THAT(gtk_label_get_text(GTK_LABEL(panel()->trans1_label)), HasSubstr("english"));
        undo();
        EXPECT_EQ(languages(), "english* german* french ");
        EXPECT_THAT(identity(), HasSubstr("Close")) << "where the import changed a text";
        go_to(0);
        EXPECT_EQ(german(), "auf") << "typed before the import, and kept";
        redo();
        redo();
        EXPECT_EQ(languages(), "British german* french danish ");
        box_of([] { choose_entry("Save"); });
        EXPECT_THAT(texts_of(source()), HasSubstr("menu:Close danish=Schloss "));
        for (int step = 0; step < 3; ++step)
            undo();
        box_of([] { choose_entry("Save"); });
        EXPECT_EQ(texts_of(source()), before);
    });
}

TEST_F(Undo, TheMenuOfAFieldOffersWhatThereIs)
{
    run_editor(source(), [&] {
        const auto entries = [] {
            GtkWidget *menu = gtk_menu_new();
            g_object_ref_sink(menu);
            g_signal_emit_by_name(panel()->trans2_view, "populate-popup", menu);
            std::string all;
            for (GtkWidget *item : find_all(menu, GTK_TYPE_IMAGE_MENU_ITEM))
                all += std::string(gtk_menu_item_get_label(GTK_MENU_ITEM(item))) +
                       (gtk_widget_get_sensitive(item) != 0 ? " " : "(off) ");
            for (GtkWidget *item : find_all(menu, GTK_TYPE_IMAGE_MENU_ITEM)) {
                if (gtk_widget_get_sensitive(item) != 0)
                    gtk_menu_item_activate(GTK_MENU_ITEM(item));
            }
            g_object_unref(menu);
            return all;
        };
        EXPECT_EQ(entries(), "Undo(off) Redo(off) ");
        type_german("auf");
        EXPECT_EQ(entries(), "Undo Redo(off) ");
        EXPECT_EQ(german(), "");
        EXPECT_EQ(entries(), "Undo(off) Redo ");
        EXPECT_EQ(german(), "auf");
    });
}
