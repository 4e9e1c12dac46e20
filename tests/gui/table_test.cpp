#include "gui-support.h"

#include "app/global.h"
#include "editor/panel/w_text.h"
#include "editor/state/edit-state.h"
#include "editor/table/w_tab_edit.h"
#include "editor/table/w_tab_model.h"
#include "editor/toolkit/misc-row.h"
#include "source/group.h"
#include "source/lang-read.h"
#include "source/misc.h"
#include "support/string-copy.h"

#include <gdk/gdkkeysyms.h>
#include <gmock/gmock.h>

#include <ctime>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Two groups, an item that is not used, texts in two languages. Dates fall as positions rise.
constexpr const char *example = R"(version 1
default lang "english"
define file "en.lang" lang "english" 200 200 1
define file "fr.lang" lang "french" 200 200 0
define file "de.lang" lang "german" 200 200 1
GROUP "menu" {
  ITEM "Foo Bar" { CTIME 5000 READY 1 CHANGED USED YES { "00001:a.c" "00002:b.c" }
    LANG "english" { "open the file" } LANG "german" { "Datei" } }
  ITEM "spare" { CTIME 1 USED NO LANG "english" { "spare" } }
  ITEM "foo" { CTIME 4000 USED YES
    LANG "english" { "bar in the text" } LANG "german" { "0123456789012345678901234567890ÄÖ" } }
  ITEM "blank" { CTIME 3000 USED YES LANG "english" { "something" } LANG "german" { " " "\t\n" } }
}
GROUP "help" {
  ITEM "missing" { CTIME 2000 USED YES LANG "english" { "FOO lines\n" "and bar" } }
  ITEM "last" { CTIME 1000 USED YES LANG "english" { "end" } LANG "german" { "Ende" } }
}
)";

class Table : public gui::Test {
protected:
    ~Table() override
    {
        if (mainWin != nullptr)
            gtk_widget_destroy(mainWin);
        mainWin = nullptr;
        accel_group = nullptr;
        zel::edit_select_output_langs(nullptr);
        lang_free_group(&source);
    }

    // A window with the table, as the main window makes it, on the second page of a notebook.
    void open(const std::string &text, unsigned mode = 1)
    {
        gui::write_file("source.lang-src", text);
        source = lang_read_file("source.lang-src");
        ASSERT_NE(source, nullptr);
        lang_global.editor_mode = mode;
        mainWin = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        gtk_window_set_default_size(GTK_WINDOW(mainWin), 800, 600);
        accel_group = gtk_accel_group_new();
        gtk_window_add_accel_group(GTK_WINDOW(mainWin), accel_group);
        notebook = gtk_notebook_new();
        gtk_container_add(GTK_CONTAINER(mainWin), notebook);
        lang_global.shot_window = gtk_scrolled_window_new(nullptr, nullptr);
        table = zel_tab_edit_new();
        tab = ZEL_TAB_EDIT(table);
        ASSERT_EQ(zel_tab_edit_set(table, source), 1);
        gtk_notebook_append_page(GTK_NOTEBOOK(notebook), table, nullptr);
        gtk_notebook_append_page(GTK_NOTEBOOK(notebook), lang_global.shot_window, nullptr);
        gtk_widget_show_all(notebook);
        zel_tab_edit_first(table);
        gtk_widget_show(mainWin);
        gui::settle();
        text_panel = ZEL_TEXT(tab->text_widget);
    }

    GtkTreeModel *model() const { return gtk_tree_view_get_model(GTK_TREE_VIEW(tab->view)); }

    std::vector<std::string> column(int number) const
    {
        std::vector<std::string> cells;
        GtkTreeIter iter;
        for (bool row = gtk_tree_model_get_iter_first(model(), &iter) != 0; row;
             row = gtk_tree_model_iter_next(model(), &iter) != 0) {
            gchar *cell = nullptr;
            gtk_tree_model_get(model(), &iter, number, &cell, -1);
            cells.emplace_back(cell == nullptr ? "(null)" : cell);
            g_free(cell);
        }
        return cells;
    }

    std::vector<std::string> names() const { return column(COL_ITEM); }

    // The selected row's name, which is also what the text panel must show.
    std::string selected() const
    {
        GtkTreeIter iter;
        const bool row =
            gtk_tree_selection_get_selected(gtk_tree_view_get_selection(GTK_TREE_VIEW(tab->view)),
                                            nullptr, &iter) != 0;
        EXPECT_EQ(row, text_panel->item != nullptr);
        EXPECT_EQ(row, tab->selected_path != nullptr);
        if (!row)
            return "";
        item_t *item = nullptr;
        gtk_tree_model_get(model(), &iter, COL_RECORD, &item, -1);
        EXPECT_EQ(item, text_panel->item);
        GtkTreePath *path = gtk_tree_model_get_path(model(), &iter);
        EXPECT_EQ(gtk_tree_path_compare(path, tab->selected_path), 0);
        gtk_tree_path_free(path);
        return item->name;
    }

    void search(const char *text) const { gtk_entry_set_text(GTK_ENTRY(tab->search_entry), text); }

    static void set_text(GtkWidget *view, const char *text)
    {
        gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)), text, -1);
    }

    static std::string first_line(item_t *item, const char *lang)
    {
        const char *line = zel_get_first_lang_entry(item->langs, lang);
        return line == nullptr ? "(none)" : line;
    }

    void sort_by(const char *title) const
    {
        GList *columns = gtk_tree_view_get_columns(GTK_TREE_VIEW(tab->view));
        for (GtkTreeViewColumn *column : zel::each<GtkTreeViewColumn>(columns)) {
            if (g_strcmp0(gtk_tree_view_column_get_title(column), title) == 0)
                gtk_tree_view_column_clicked(column);
        }
        g_list_free(columns);
    }

    void click_ready_cell(const char *path) const
    {
        GtkTreeViewColumn *column = gtk_tree_view_get_column(GTK_TREE_VIEW(tab->view), 3);
        GList *cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
        g_signal_emit_by_name(cells->data, "toggled", path);
        g_list_free(cells);
    }

    bool button_ready() const
    {
        return gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(tab->ready_button)) != 0;
    }

    item_t *item(const char *group, const char *name) const
    {
        return get_item_ptr(source, group, name);
    }

    LangSource *source = nullptr;
    GtkWidget *notebook = nullptr;
    GtkWidget *table = nullptr;
    ZelTabEdit *tab = nullptr;
    Zeltext *text_panel = nullptr;
};

TEST_F(Table, ShowsEveryUsedItemAndSelectsTheFirst)
{
    open(example);
    EXPECT_THAT(names(), ElementsAre("Foo Bar", "foo", "blank", "missing", "last"));
    EXPECT_THAT(column(COL_GROUP), ElementsAre("menu", "menu", "menu", "help", "help"));
    EXPECT_THAT(column(COL_LANG1),
                ElementsAre("open the file", "bar in the text", "something", "FOO lines\n", "end"));
    // Cut after 32 characters, not bytes; a blank for what is missing.
    EXPECT_THAT(column(COL_LANG2),
                ElementsAre("Datei", "0123456789012345678901234567890Ä", " ", " ", "Ende"));
    EXPECT_EQ(selected(), "Foo Bar");
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(tab->info_label)), "5 Items");
    EXPECT_STREQ(gtk_tree_view_column_get_title(tab->lang1_column), "english");
    EXPECT_STREQ(gtk_tree_view_column_get_title(tab->lang2_column), "german");
    EXPECT_STREQ(lang_global.output_lang_2, "german");
    EXPECT_EQ(item("menu", "Foo Bar")->changed, 0U);
    EXPECT_EQ(item("help", "last")->posnr, 5);
    EXPECT_EQ(lang_global.modified, 0);

    GtkTreeIter iter;
    ASSERT_TRUE(gtk_tree_model_get_iter_first(tab->store, &iter));
    gboolean shown = FALSE;
    gboolean ready = FALSE;
    gint pos = 0;
    guint time = 0;
    gchar *date = nullptr;
    GdkPixbuf *icon = nullptr;
    LangSource *root = nullptr;
    gtk_tree_model_get(tab->store, &iter, COL_SHOWN, &shown, COL_ICON, &icon, COL_POS, &pos,
                       COL_TIME, &time, COL_DATE, &date, COL_READY, &ready, COL_SOURCE, &root, -1);
    char expected[32];
    const std::time_t stamp = 5000;
    std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S", std::localtime(&stamp));
    EXPECT_STREQ(date, expected);
    EXPECT_TRUE(shown && ready && pos == 1 && time == 5000U && root == source);
    EXPECT_EQ(icon, tab->pix_active);
    g_free(date);
    g_object_unref(icon);
}

TEST_F(Table, ModeZeroHasNoLanguageColumns)
{
    open(example, 0);
    EXPECT_EQ(tab->lang1_column, nullptr);
    EXPECT_THAT(column(COL_LANG1), testing::Each("(null)"));
    EXPECT_EQ(gtk_tree_view_get_column(GTK_TREE_VIEW(tab->view), 6), nullptr);
}

TEST_F(Table, NothingUsedIsAnEmptyList)
{
    open("GROUP \"g\" { ITEM \"i\" { USED NO } }\n");
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(tab->info_label)), "0 Items");
    for (auto *move : {zel_tab_edit_first, zel_tab_edit_prev, zel_tab_edit_next, zel_tab_edit_last,
                       zel_tab_edit_refresh, zel_tab_edit_empty})
        EXPECT_EQ(move(table), 1);
    EXPECT_EQ(selected(), "");
}

TEST_F(Table, AllWordsAreFoundInTheSameField)
{
    open(example);
    search("Foo bar");
    EXPECT_THAT(names(), ElementsAre("Foo Bar", "missing")) << "not one word here, one there";
    search("FILE\topen");
    EXPECT_THAT(names(), ElementsAre("Foo Bar"));
    search("datei");
    EXPECT_THAT(names(), ElementsAre("Foo Bar")) << "the second language, in any case";
    search("foo");
    EXPECT_THAT(names(), ElementsAre("Foo Bar", "foo", "missing"));
    search("foo ");
    EXPECT_THAT(names(), ElementsAre("Foo Bar", "foo", "missing")) << "an empty word is everywhere";
    search("nowhere");
    EXPECT_THAT(names(), IsEmpty());
    search("");
    EXPECT_EQ(names().size(), 5U);
    EXPECT_EQ(tab->search_words, nullptr);
}

TEST_F(Table, SearchStoresEditsAndLeavesNothingSelected)
{
    open(example);
    item_t *edited = item("menu", "Foo Bar");
    set_text(text_panel->trans2_view, "Akte");
    search("akte");
    EXPECT_THAT(names(), ElementsAre("Foo Bar")) << "what was typed is stored before the search";
    EXPECT_EQ(first_line(edited, "german"), "Akte");
    EXPECT_EQ(selected(), "");
    EXPECT_FALSE(gtk_widget_get_visible(text_panel->trans2_view));
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(text_panel->name_entry)), "");
    EXPECT_FALSE(button_ready());
    zel_tab_edit_next(table);
    EXPECT_EQ(selected(), "") << "there is no row to go on from";
    zel_tab_edit_first(table);
    EXPECT_EQ(selected(), "Foo Bar");
    EXPECT_EQ(text_of(text_panel->trans2_view), "Akte");
}

TEST_F(Table, FiltersUntranslatedAndOld)
{
    open(example);
    lang_global.only_untranslated = 1;
    zel_tab_edit_empty(table);
    EXPECT_THAT(names(), ElementsAre("blank", "missing"));
    EXPECT_EQ(selected(), "");
    search("some");
    EXPECT_THAT(names(), ElementsAre("blank"));
    search("");
    lang_global.only_untranslated = 0;
    lang_global.whatsnew_since = 3000;
    zel_tab_edit_whatsnew(table);
    EXPECT_THAT(names(), ElementsAre("Foo Bar", "foo", "blank"));
}

TEST_F(Table, MovesFollowTheOrderShown)
{
    open(example);
    zel_tab_edit_prev(table);
    EXPECT_EQ(selected(), "Foo Bar");
    sort_by("Date");
    EXPECT_THAT(names(), ElementsAre("last", "missing", "blank", "foo", "Foo Bar"));
    EXPECT_EQ(selected(), "Foo Bar") << "sorting keeps the selected item";
    zel_tab_edit_next(table);
    EXPECT_EQ(selected(), "Foo Bar") << "the last row stays selected";
    zel_tab_edit_prev(table);
    EXPECT_EQ(selected(), "foo");
    zel_tab_edit_first(table);
    EXPECT_EQ(selected(), "last");
    zel_tab_edit_next(table);
    EXPECT_EQ(selected(), "missing");
    search("foo");
    EXPECT_THAT(names(), ElementsAre("missing", "foo", "Foo Bar")) << "the order outlives a search";
    sort_by("Date");
    EXPECT_THAT(names(), ElementsAre("Foo Bar", "foo", "missing"));
    zel_tab_edit_last(table);
    EXPECT_EQ(selected(), "missing");
}

TEST_F(Table, ReadyFromTheButtonAndFromTheCell)
{
    open(example);
    zel_tab_edit_next(table);
    gtk_button_clicked(GTK_BUTTON(tab->ready_button));
    EXPECT_EQ(item("menu", "foo")->ready, 1);
    EXPECT_EQ(lang_global.modified, 1);

    lang_global.modified = 0;
    click_ready_cell("1");
    EXPECT_EQ(item("menu", "foo")->ready, 0);
    EXPECT_TRUE(button_ready()) << "the cell leaves the button as it is";
    EXPECT_EQ(lang_global.modified, 0);

    sort_by("Ready");
    EXPECT_THAT(names(), ElementsAre("foo", "blank", "missing", "last", "Foo Bar"));
    click_ready_cell("1");
    EXPECT_EQ(item("menu", "blank")->ready, 1) << "a path counts in the order shown";
    EXPECT_EQ(selected(), "foo");

    click_ready_cell("99");
    ASSERT_EQ(gui::warnings().size(), 1U);
    EXPECT_THAT(gui::warnings().front(), HasSubstr(": bad tree path?"));
    gui::warnings().clear();
}

TEST_F(Table, OnlyTheSelectedRowIsMarked)
{
    open(example);
    zel_tab_edit_last(table);
    const auto marked = [this] {
        std::vector<bool> rows;
        GtkTreeIter iter;
        for (int row = 0; gtk_tree_model_iter_nth_child(model(), &iter, nullptr, row) != 0; ++row) {
            GdkPixbuf *icon = nullptr;
            gtk_tree_model_get(model(), &iter, COL_ICON, &icon, -1);
            rows.push_back(icon == tab->pix_active);
            g_object_unref(icon);
        }
        return rows;
    };
    EXPECT_THAT(marked(), ElementsAre(false, false, false, false, true));
    search("foo");
    EXPECT_THAT(marked(), ElementsAre(false, false, false));
}

TEST_F(Table, OneGoesOnTypingInTheNextItem)
{
    open(example);
    gtk_widget_grab_focus(text_panel->trans2_view);
    gui::type(mainWin, "Akte ");
    zel_tab_edit_next(table);
    gui::settle();
    EXPECT_TRUE(gtk_widget_is_focus(text_panel->trans2_view));
    zel_tab_edit_next(table);
    gui::type(mainWin, "neu");
    zel_tab_edit_next(table);
    EXPECT_EQ(first_line(item("menu", "Foo Bar"), "german"), "DateiAkte ");
    EXPECT_EQ(misc_select_lang_entry(item("menu", "blank"), "german")->texts->next->next, nullptr);
    EXPECT_EQ(item("menu", "foo")->changed, 0U);
    EXPECT_TRUE(gtk_widget_is_focus(text_panel->trans2_view));

    search("foo"); // the views are gone: the list gets the keyboard
    EXPECT_TRUE(gtk_widget_is_focus(tab->view));
}

TEST_F(Table, WorksFromTheKeyboard)
{
    open(example);
    gtk_widget_grab_focus(text_panel->trans2_view);
    gui::key(mainWin, GDK_KEY_m, GDK_MOD1_MASK);
    EXPECT_EQ(item("menu", "Foo Bar")->ready, 0);
    EXPECT_TRUE(gtk_widget_is_focus(text_panel->trans2_view));
    gui::key(mainWin, GDK_KEY_Tab);
    EXPECT_FALSE(gtk_widget_is_focus(text_panel->trans2_view)) << "Tab leaves a text";
    gui::key(mainWin, GDK_KEY_ISO_Left_Tab, GDK_SHIFT_MASK);
    EXPECT_TRUE(gtk_widget_is_focus(text_panel->trans2_view));
    EXPECT_EQ(text_of(text_panel->trans2_view), "Datei");

    gtk_notebook_set_current_page(GTK_NOTEBOOK(notebook), 1);
    gui::settle();
    gui::key(mainWin, GDK_KEY_f, GDK_CONTROL_MASK);
    gui::settle();
    EXPECT_EQ(gtk_notebook_get_current_page(GTK_NOTEBOOK(notebook)), 0);
    EXPECT_TRUE(gtk_widget_is_focus(tab->search_entry));
    gui::type(mainWin, "foo lines");
    EXPECT_THAT(names(), ElementsAre("missing"));
    EXPECT_TRUE(gtk_widget_is_focus(tab->search_entry));
    gui::key(mainWin, GDK_KEY_Return);
    EXPECT_EQ(selected(), "missing");
    EXPECT_TRUE(gtk_widget_is_focus(text_panel->trans2_view))
        << "the language that is not the source's own";
    gui::type(mainWin, "da");
    gui::key(mainWin, GDK_KEY_f, GDK_CONTROL_MASK);
    gui::key(mainWin, GDK_KEY_Escape);
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(tab->search_entry)), "");
    EXPECT_EQ(names().size(), 5U);
    EXPECT_EQ(first_line(item("help", "missing"), "german"), "da");
}

TEST_F(Table, RefreshAfterAnImportDropsWhatThePanelHolds)
{
    open(example);
    search("last"); // with a single row the selection cannot move
    zel_tab_edit_first(table);
    set_text(text_panel->trans2_view, "stale");
    lang_entry_t *entry = misc_select_lang_entry(item("help", "last"), "german");
    free_lang_entry_text(entry->texts);
    entry->texts = g_list_append(nullptr, zel_strdup2("imported"));
    lang_global.importing = 1;
    zel_tab_edit_refresh(table);
    lang_global.importing = 0;
    EXPECT_EQ(first_line(item("help", "last"), "german"), "imported");
    EXPECT_EQ(text_of(text_panel->trans2_view), "imported");

    set_text(text_panel->trans2_view, "kept");
    zel_tab_edit_refresh(table);
    EXPECT_EQ(first_line(item("help", "last"), "german"), "kept");
}

TEST_F(Table, RefreshFollowsTheLanguagesOfTheSource)
{
    open(example);
    auto *german = static_cast<lang_t *>(g_list_nth_data(source->langs, 2));
    german->edit = 0;
    zel_tab_edit_last(table);
    zel_tab_edit_refresh(table);
    EXPECT_EQ(selected(), "Foo Bar");
    EXPECT_THAT(column(COL_LANG2), testing::Each(" "));
    EXPECT_STREQ(gtk_tree_view_column_get_title(tab->lang2_column), "");
    EXPECT_FALSE(gtk_widget_get_visible(text_panel->lang2_frame));
    EXPECT_TRUE(gtk_widget_get_visible(text_panel->lang1_frame));
}

TEST_F(Table, AGroupsPictureIsLoadedOnce)
{
    const std::string out = zel_test::capture_stdout([this] {
        open(example);
        zel_tab_edit_next(table);
        zel_tab_edit_last(table);
        zel_tab_edit_first(table);
    });
    const std::string dir =
        lang_global.src_dir == nullptr ? "" : std::string(lang_global.src_dir) + "/";
    EXPECT_EQ(out, "file >" + dir + "ScreenShots/menu.jpg<\nfile >" + dir +
                       "ScreenShots/help.jpg<\nfile >" + dir + "ScreenShots/menu.jpg<\n");
    ASSERT_NE(lang_global.shot_image, nullptr);
    EXPECT_TRUE(gtk_widget_get_visible(lang_global.shot_image));
    EXPECT_STREQ(tab->last_group, "menu");
    gtk_widget_destroy(table);
    EXPECT_EQ(lang_global.shot_image, nullptr);
}

TEST_F(Table, AGroupsPictureIsReadWhenItsPageIsSeenAndFitsThere)
{
    std::filesystem::create_directory("ScreenShots");
    GdkPixbuf *drawn = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, 2000, 1000);
    gdk_pixbuf_fill(drawn, 0x3d6fa8ff);
    ASSERT_TRUE(gdk_pixbuf_save(drawn, "ScreenShots/menu.jpg", "jpeg", nullptr, nullptr));
    g_object_unref(drawn);
    open(example);
    GtkImage *image = GTK_IMAGE(lang_global.shot_image);
    EXPECT_EQ(gtk_image_get_storage_type(image), GTK_IMAGE_EMPTY);
    const auto width = [image] {
        gui::settle();
        GdkPixbuf *shown = gtk_image_get_pixbuf(image);
        return shown == nullptr ? 0 : gdk_pixbuf_get_width(shown);
    };
    gtk_notebook_set_current_page(GTK_NOTEBOOK(notebook), 1);
    const int small = width();
    EXPECT_GT(small, 600);
    EXPECT_LT(small, 800);
    gtk_window_resize(GTK_WINDOW(mainWin), 1000, 700);
    EXPECT_TRUE(gui::wait_for([&] { return width() > 800; }));
    GtkWidget *page = gtk_widget_get_parent(GTK_WIDGET(image));
    for (const int wanted : {2000, width()}) {
        GdkEvent *click = gdk_event_new(GDK_BUTTON_PRESS);
        click->button.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(page)));
        click->button.button = 1;
        gtk_main_do_event(click);
        gdk_event_free(click);
        EXPECT_EQ(width(), wanted);
    }
    zel_tab_edit_last(table); // a group without one
    EXPECT_EQ(gtk_image_get_storage_type(GTK_IMAGE(lang_global.shot_image)), GTK_IMAGE_STOCK)
        << "the sign for a missing picture";
}

TEST_F(Table, BytesThatAreNoUtf8AreShownReplacedAndKept)
{
    const std::string text = "default lang \"english\"\n"
                             "define file \"e\" lang \"english\" 1 1 1\n"
                             "define file \"g\" lang \"german\" 1 1 1\n"
                             "GROUP \"g\xe4\" { ITEM \"i\xf6\" { USED YES { \"p\xfc\" }\n"
                             "DESCRIPTION \"d\xfc\"\n"
                             "LANG \"english\" { \"a\xff\" } LANG \"german\" { \"b\xff\" } }\n"
                             "ITEM \"plain\" { USED YES } }\n";
    const std::string out = zel_test::capture_stdout([&] { open(text, 2); });
    EXPECT_THAT(out, HasSubstr("pos=1 invalid utf8 group_name >g\xe4<"));
    EXPECT_EQ(names().front(), "i\xEF\xBF\xBD");
    EXPECT_EQ(column(COL_LANG1).front(), "a\xEF\xBF\xBD");
    EXPECT_EQ(text_of(text_panel->trans1_view), "a\xEF\xBF\xBD");
    EXPECT_EQ(text_of(text_panel->used_in_view), "p\xEF\xBF\xBD\n");
    item_t *item = text_panel->item;
    set_text(text_panel->trans2_view, "b");
    zel_tab_edit_next(table);
    gui::settle();
    EXPECT_EQ(first_line(item, "english"), "a\xff") << "not edited: stored as it was";
    EXPECT_EQ(first_line(item, "german"), "b");
    EXPECT_STREQ(item->name, "i\xf6");
}

TEST_F(Table, MayBeDestroyedAfterItsSource)
{
    open(example);
    set_text(text_panel->trans1_view, "pending");
    lang_free_group(&source);
    gtk_widget_destroy(table);
    gui::settle();
}

TEST_F(Table, RefusesWhatIsNoTable)
{
    open(example);
    edit_ctrl_t ctrls{};
    ASSERT_EQ(zel_tab_edit_get_ctrls(&ctrls), 1);
    int calls = 0;
    for (auto *operation :
         {ctrls.update, ctrls.first, ctrls.prev, ctrls.next, ctrls.last, ctrls.check_changed,
          ctrls.list_focus, ctrls.refresh, ctrls.whatsnew, ctrls.empty}) {
        EXPECT_EQ(operation(nullptr), 0);
        EXPECT_EQ(operation(notebook), 0);
        EXPECT_EQ(operation(table), 1);
        ++calls;
    }
    EXPECT_EQ(ctrls.set(nullptr, source), 0);
    EXPECT_EQ(ctrls.set(notebook, source), 0);
    ASSERT_EQ(gui::warnings().size(), static_cast<std::size_t>(2 * calls + 2));
    EXPECT_THAT(gui::warnings()[0], HasSubstr("widget != NULL"));
    EXPECT_THAT(gui::warnings()[1], HasSubstr("ZEL_IS_TAB_EDIT"));
    gui::warnings().clear();
}

TEST_F(Table, SelectsARowByItsIndex)
{
    open(example);
    GtkTreeView *view = GTK_TREE_VIEW(tab->view);
    EXPECT_EQ(misc_select_row(view, model(), 2, 5), 1);
    EXPECT_EQ(selected(), "blank");
    EXPECT_EQ(misc_select_row(view, model(), -1, 5), 0);
    EXPECT_EQ(misc_select_row(view, model(), 3, 3), 0);
    EXPECT_EQ(misc_select_row(view, model(), 5, 9), 0) << "the model has no such row";
    EXPECT_EQ(selected(), "blank");
}

} // namespace
