// Walks through every window and dialog of the editor and saves a picture of each.
//   gui_tour FOLDER SOURCE MODE WIDTH HEIGHT [WORK-FOLDER]
// The pictures are FOLDER/mMODE-WIDTH-NAME.png, cut to the windows that are open, and those of a
// dialog by itself FOLDER/mMODE-WIDTH-NAME-alone.png. The source is copied into the work folder,
// whose path the pictures show, before it is touched; without one a temporary folder is made.

#include "app/global.h"
#include "config/ini.h"
#include "editor/frame/edit-keys.h"
#include "editor/frame/edit-undo.h"
#include "editor/frame/recovery.h"
#include "editor/panel/w_text.h"
#include "editor/state/edit-state.h"
#include "editor/table/w_tab_edit.h"
#include "editor/table/w_tab_work.h"
#include "gui-support.h"
#include "recovery/place.h"

#include <gdk/gdkkeysyms.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

namespace fs = std::filesystem;
using namespace gui;

std::string prefix;
int width;
int height;

// A window's place on the screen, with its frame.
GdkRectangle frame_of(GtkWidget *window)
{
    GdkRectangle frame{};
    gdk_window_get_frame_extents(gtk_widget_get_window(window), &frame);
    return frame;
}

GdkRectangle frame_of_all()
{
    GdkRectangle all{};
    GList *windows = gtk_window_list_toplevels();
    for (GList *node = windows; node != nullptr; node = node->next) {
        if (gtk_widget_get_mapped(GTK_WIDGET(node->data)) == 0)
            continue;
        const GdkRectangle one = frame_of(GTK_WIDGET(node->data));
        if (all.width == 0)
            all = one;
        else
            gdk_rectangle_union(&all, &one, &all);
    }
    g_list_free(windows);
    return all;
}

GdkPixbuf *picture(GtkWidget *window = nullptr)
{
    settle(250);
    GdkWindow *root = gdk_get_default_root_window();
    GdkRectangle screen{};
    gdk_drawable_get_size(root, &screen.width, &screen.height);
    GdkRectangle part = window != nullptr ? frame_of(window) : frame_of_all();
    gdk_rectangle_intersect(&part, &screen, &part);
    return gdk_pixbuf_get_from_drawable(nullptr, root, nullptr, part.x, part.y, 0, 0, part.width,
                                        part.height);
}

void save(GdkPixbuf *pixels, const std::string &name)
{
    gdk_pixbuf_save(pixels, (prefix + name + ".png").c_str(), "png", nullptr, nullptr);
    g_object_unref(pixels);
}

void snap(const char *name) { save(picture(), name); }

// A dialog comes up: its pictures, then the answer.
void picture_of_dialog(const char *name, const answer_fn &then)
{
    answer_next([name, then](GtkWidget *dialog) {
        snap(name);
        save(picture(dialog), std::string(name) + "-alone");
        then(dialog);
    });
}

void activate(const char *entry)
{
    gtk_menu_item_activate(GTK_MENU_ITEM(menu_entry(mainWin, entry)));
}

void show_menus()
{
    GtkWidget *bar = find_type(mainWin, GTK_TYPE_MENU_BAR);
    int number = 1;
    for (GtkWidget *title : find_all(bar, GTK_TYPE_MENU_ITEM)) {
        gtk_menu_shell_select_item(GTK_MENU_SHELL(bar), title);
        snap(("menu-" + std::to_string(number++)).c_str());
        gtk_menu_shell_deactivate(GTK_MENU_SHELL(bar));
        settle();
    }
}

void show_third_languages()
{
    ini_set_below(ini, 0, "japanese");
    ini_set_below(ini, 1, "arabic");
    zel::edit_reload();
    snap("below");
    ini_set_below(ini, 0, nullptr);
    zel::edit_reload();
    snap("below-one");
    ini_set_below(ini, 1, nullptr);
    zel::edit_reload();
}

void show_list_and_text()
{
    ZelTabEdit *table = ZEL_TAB_EDIT(editWin);
    snap("main");
    edit_ctrl.next(editWin);
    zel::text_focus_field(ZEL_TEXT(table->text_widget), TEXT_TRANS2);
    snap("typing");
    show_third_languages();
    gtk_entry_set_text(GTK_ENTRY(table->search_entry), "not");
    gtk_widget_grab_focus(table->search_entry);
    gtk_editable_set_position(GTK_EDITABLE(table->search_entry), -1);
    snap("search");
    edit_ctrl.first(editWin);
    snap("search-hits");
    gtk_entry_set_text(GTK_ENTRY(table->search_entry), "");
    activate("Display not translated items");
    snap("untranslated");
    activate("Display not translated items");
    edit_ctrl.first(editWin);
}

GtkWidget *translation() { return ZEL_TEXT(ZEL_TAB_EDIT(editWin)->text_widget)->trans2_view; }

void type_text(const char *text)
{
    gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(translation())), text, -1);
}

// The menu of the field that is typed in, once it is up.
void show_field_menu()
{
    gboolean shown = FALSE;
    g_signal_connect_after(translation(), "populate-popup",
                           G_CALLBACK(+[](GtkTextView *, GtkMenu *menu, gpointer) {
                               g_object_set_data(G_OBJECT(mainWin), "field-menu", menu);
                           }),
                           nullptr);
    gtk_widget_grab_focus(translation());
    g_signal_emit_by_name(translation(), "popup-menu", &shown);
    snap("field-menu");
    if (gpointer menu = g_object_get_data(G_OBJECT(mainWin), "field-menu"))
        gtk_menu_shell_deactivate(GTK_MENU_SHELL(menu));
    settle();
}

// What is told while one translates: findings, suggestions, the keys.
void show_work()
{
    GtkWidget *filter = ZEL_TAB_EDIT(editWin)->work->findings_filter();
    edit_ctrl.first(editWin);
    settle(1500); // until what is alike is known
    snap("suggestion");
    type_text("Notiz %d <b> in %s, \nzwei Zeilen:");
    snap("findings");
    show_field_menu();
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(filter), TRUE);
    edit_ctrl.first(editWin);
    snap("filter-of-findings");
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(filter), FALSE);
    zel::edit_undo();
    snap("undone");
    zel::show_keys();
    snap("keys");
    gtk_dialog_response(GTK_DIALOG(window_titled("Keys")), GTK_RESPONSE_CLOSE);
    settle();
}

// What the source's texts are for, as its picture in "ScreenShots".
void picture_the_application()
{
    GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(window), "Notizen");
    gtk_window_set_default_size(GTK_WINDOW(window), 640, 400);
    GtkWidget *bar = gtk_menu_bar_new();
    for (const char *text : {"_Datei", "_Bearbeiten", "_Suchen …"})
        gtk_menu_shell_append(GTK_MENU_SHELL(bar), gtk_menu_item_new_with_mnemonic(text));
    GtkListStore *notes = gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_STRING);
    for (const auto &[title, changed] :
         {std::pair{"Einkauf", "14:05"}, {"Urlaub", "gestern"}, {"Rezepte", "3. Mai"}})
        gtk_list_store_insert_with_values(notes, nullptr, -1, 0, title, 1, changed, -1);
    GtkWidget *list = gtk_tree_view_new_with_model(GTK_TREE_MODEL(notes));
    int column = 0;
    for (const char *text : {"Titel", "Geändert"})
        gtk_tree_view_insert_column_with_attributes(
            GTK_TREE_VIEW(list), -1, text, gtk_cell_renderer_text_new(), "text", column++, nullptr);
    GtkWidget *box = gtk_vbox_new(FALSE, 6);
    gtk_box_pack_start(GTK_BOX(box), bar, FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(box), list);
    gtk_box_pack_end(GTK_BOX(box), gtk_label_new("3 Notizen, 1 ausgewählt"), FALSE, FALSE, 3);
    gtk_container_add(GTK_CONTAINER(window), box);
    gtk_widget_show_all(window);
    GdkPixbuf *pixels = picture(window);
    gtk_widget_destroy(window);
    g_object_unref(notes);
    fs::create_directory("ScreenShots");
    gdk_pixbuf_save(pixels, "ScreenShots/menu.jpg", "jpeg", nullptr, nullptr);
    g_object_unref(pixels);
}

void show_screen_shot()
{
    picture_the_application();
    settle(250);
    edit_ctrl.last(editWin);
    edit_ctrl.first(editWin);
    GtkWidget *notebook = find_type(mainWin, GTK_TYPE_NOTEBOOK);
    gtk_notebook_set_current_page(GTK_NOTEBOOK(notebook), 1);
    snap("screen-shot");
    gtk_notebook_set_current_page(GTK_NOTEBOOK(notebook), 0);
}

void show_dialogs()
{
    picture_of_dialog("settings", press("Close"));
    activate("Setting");
    picture_of_dialog("choose-folder", choose(fs::current_path()));
    picture_of_dialog("exported", press("Ok"));
    activate("Export to language files (*.lang)");
    picture_of_dialog("choose-name", respond(GTK_RESPONSE_CANCEL));
    activate("Save as");
    picture_of_dialog("saved", press("Ok"));
    activate("Save");
    lang_global.modified = 1;
    picture_of_dialog("discard", respond(GTK_RESPONSE_YES));
    picture_of_dialog("choose-file", respond(GTK_RESPONSE_CANCEL));
    activate("Load");
    if (lang_global.editor_mode != 0) {
        picture_of_dialog("choose-import", respond(GTK_RESPONSE_CANCEL));
        activate("Import language file (*.lang)");
    }
}

// An editor that ends with unsaved changes.
void leave_changes()
{
    type_text("Notizen von gestern, noch nicht gespeichert");
    edit_ctrl.next(editWin);
    type_text("Eine zweite");
    zel::recovery_write_now();
    for (const auto &file : fs::directory_iterator(zel::recovery_folder()))
        if (file.path().extension() == ".lang-src") // or the end of this editor takes it away
            fs::rename(file.path(), file.path().string() + ".kept.lang-src");
}

// The question about them at the next start, and the one about a file that has changed.
void show_questions()
{
    picture_of_dialog("choose-again", choose(fs::absolute("notes.lang-src")));
    answer_next([](GtkWidget *dialog) {
        snap("recovery");
        press("Show them")(dialog);
        snap("recovery-texts");
        save(picture(dialog), "recovery-texts-alone");
        gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_YES);
    });
    activate("Load");
    snap("recovered");
    std::FILE *theirs = std::fopen("notes.lang-src", "a");
    std::fputs("/* theirs */\n", theirs);
    std::fclose(theirs);
    picture_of_dialog("changed-by-another", respond(GTK_RESPONSE_NO));
    activate("Save");
}

// A misspelt word and its menu, with a dictionary of a few words.
void show_spelling()
{
    gtk_window_resize(GTK_WINDOW(mainWin), width, height);
    gtk_window_move(GTK_WINDOW(mainWin), 10, 10);
    zel::text_focus_field(ZEL_TEXT(ZEL_TAB_EDIT(editWin)->text_widget), TEXT_TRANS2);
    type_text("Notizen von gestren, %d noch nicht gespeichert");
    GtkWidget *view = ZEL_TEXT(ZEL_TAB_EDIT(editWin)->text_widget)->trans2_view;
    GtkTextIter at;
    gtk_text_buffer_get_iter_at_offset(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)), &at, 15);
    gtk_text_buffer_place_cursor(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)), &at);
    settle(1000);
    snap("misspelt");
    key(mainWin, GDK_KEY_Menu);
    snap("misspelt-menu");
    for (GList *menu = gtk_menu_get_for_attach_widget(view); menu != nullptr; menu = menu->next)
        gtk_menu_popdown(GTK_MENU(menu->data));
}

void select_item(const std::string &name, int field = TEXT_TRANS2)
{
    Zeltext *panel = ZEL_TEXT(ZEL_TAB_EDIT(editWin)->text_widget);
    edit_ctrl.first(editWin);
    for (int tries = 0; tries < 100 && name != panel->item->name; ++tries)
        edit_ctrl.next(editWin);
    zel::text_focus_field(panel, field);
    settle(700); // until what is alike is known
}

// Changes of the source that was copied: what comes first is replaced, once.
class source_edit {
public:
    void put(const std::string &before, const std::string &after)
    {
        const std::size_t at = text_.find(before, from_);
        if (at == std::string::npos)
            g_error("the source lacks %s", before.c_str());
        text_.replace(at, before.size(), after);
    }
    void put_line(const std::string &begin, const std::string &after)
    {
        const std::size_t at = text_.find("\n" + begin) + 1;
        text_.replace(at, text_.find('\n', at) - at, after);
    }
    // From there on.
    void go_to(const std::string &item) { from_ = text_.find("  ITEM   \"" + item + "\""); }
    ~source_edit() { write_file("notes.lang-src", text_); }

private:
    std::string text_ = read_file("notes.lang-src");
    std::size_t from_ = 0;
};

// A text that has changed in the code, one with plural forms, one with terms, one that is too long,
// and two questions.
void write_working_source()
{
    source_edit source;
    source.put_line("mtime ", "mtime 1715000000"); // each walk shows the same
    source.go_to("Storage is %d%% full");
    source.put("    LANG ", "    COMMENT \"german\" { \"lint: max 28\" }\n    LANG ");
    source.put(
        "GROUP \"message\" {",
        "GROUP \"message\" { ITEM \"move\" { CTIME 1715000000 USED YES { \"00152:src/note.c\" }\n"
        "  LANG \"english\" { \"Move this note to another folder?\" } }\n");
    source.go_to("delete");
    source.put("    LANG ", "    COMMENT \"german\" { \"? formal, or informal?\" }\n    LANG ");
    source.go_to("Export notes");
    source.put("USED YES", "USED NO");
    source.put(
        "  ITEM ",
        "  ITEM \"Export all notes\" { CTIME 1715000000 USED YES { \"00190:src/export.c\" }\n"
        "    LANG \"english\" { \"Export all notes\" }\n"
        "    COMMENT \"german\" { \"? the title, or a button?\" } }\n  ITEM ");
    source.go_to("%d notes written");
    source.put("\"%d notes written\"  {", "\"%d note written|%d notes written\"  {");
    source.put("\"%d notes written\"\n", "\"%d note written|%d notes written\"\n");
    source.put("\"%d Notizen geschrieben\"", "\"%d Notiz geschrieben|%d Notizen geschrieben\"");
    source.put("\"Записано заметок: %d\"", "\"%d заметка записана|%d заметки записаны\"");
    write_file("terms.lang-src",
               "define file \"english.lang\" lang \"english\" 200 200 1\n"
               "define file \"german.lang\" lang \"german\" 200 200 1\nGROUP \"terms\" {\n"
               "ITEM \"note\" { USED YES LANG \"german\" { \"Notiz\" } }\n"
               "ITEM \"folder\" { USED YES LANG \"german\" { \"Ordner / Verzeichnis\" } } }\n");
}

void show_russian_instead_of_german()
{
    source_edit source;
    source.put("\"german\" 200 200 1", "\"german\" 200 200 0");
    source.put("\"russian\" 200 200 0", "\"russian\" 200 200 1");
}

void type_into_entry(const char *text)
{
    gtk_entry_set_text(GTK_ENTRY(gtk_window_get_focus(GTK_WINDOW(mainWin))), text);
    settle();
}

void load_again()
{
    gtk_window_resize(GTK_WINDOW(mainWin), width, height);
    gtk_window_move(GTK_WINDOW(mainWin), 10, 10);
    settle(300);
    answer_next(choose(fs::absolute("notes.lang-src")));
    activate("Load");
}

// What the rest of the source, its remarks and the list of terms have to say to a text.
void show_words()
{
    load_again();
    select_item("Export all notes");
    snap("was");
    GtkWidget *questions = ZEL_TAB_EDIT(editWin)->work->questions_filter();
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(questions), TRUE);
    select_item("delete");
    snap("questions");
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(questions), FALSE);
    select_item("Storage is %d%% full");
    snap("room");
    select_item("move");
    type_text("Diese Notiz verschieben?");
    snap("terms");
    select_item("_Save", TEXT_TRANS1);
    key(mainWin, GDK_KEY_F3);
    snap("found");
    key(mainWin, GDK_KEY_Escape);
    key(mainWin, GDK_KEY_h, GDK_CONTROL_MASK);
    type_into_entry("Notiz");
    key(mainWin, GDK_KEY_Tab);
    type_into_entry("Karte");
    snap("replace");
    key(mainWin, GDK_KEY_Escape);
}

// Forms that numbers take, the pointer on the line that tells which.
void show_forms()
{
    fs::remove("v1.lang-src"); // what it suggests would stand behind them
    load_again();
    select_item("%d note written|%d notes written");
    GtkWidget *line = ZEL_TEXT(ZEL_TAB_EDIT(editWin)->text_widget)->suggestion2_label;
    gint x = 0;
    gint y = 0;
    gdk_window_get_origin(gtk_widget_get_window(line), &x, &y);
    GtkAllocation at{};
    gtk_widget_get_allocation(line, &at);
    GdkDisplay *display = gdk_display_get_default();
    GdkScreen *screen = gdk_screen_get_default();
    gdk_display_warp_pointer(display, screen, x + at.x + 40, y + at.y + at.height / 2);
    settle(1500);
    snap("plural");
    gdk_display_warp_pointer(display, screen, 0, 0);
    settle();
}

void make_dictionary(const fs::path &folder)
{
    fs::create_directories(folder / "hunspell");
    write_file(folder / "hunspell/de_DE.aff", "SET UTF-8\nTRY esianrtolcdug\n");
    write_file(folder / "hunspell/de_DE.dic",
               "9\nNotizen\nvon\ngestern\nnoch\nnicht\ngespeichert\ngestreng\n");
    g_setenv("ENCHANT_CONFIG_DIR", folder.c_str(), TRUE);
}

void walk()
{
    gtk_window_resize(GTK_WINDOW(mainWin), width, height);
    gtk_window_move(GTK_WINDOW(mainWin), 10, 10);
    settle(300);
    if (editWin == nullptr) {
        snap("empty");
        picture_of_dialog("nothing", press("Ok"));
        activate("Save");
        // As a user does it, so that the rows above the list tell of the file.
        answer_next(choose(fs::current_path() / "notes.lang-src"));
        activate("Load");
        settle(300);
    }
    show_list_and_text();
    show_work();
    show_menus();
    show_screen_shot();
    show_dialogs();
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc < 6 || argc > 7 || !gtk_init_check(nullptr, nullptr)) {
        std::fputs("usage: gui_tour FOLDER SOURCE MODE WIDTH HEIGHT [WORK-FOLDER], on a display\n",
                   stderr);
        return 1;
    }
    const fs::path folder = fs::absolute(argv[1]);
    const fs::path source = fs::absolute(argv[2]);
    fs::create_directories(folder);
    prefix = folder / ("m" + std::string(argv[3]) + "-" + argv[4] + "-");
    width = std::atoi(argv[4]);
    height = std::atoi(argv[5]);

    const fs::path work =
        argc > 6 ? fs::path(argv[6])
                 : fs::temp_directory_path() / ("lang-tour-" + std::to_string(getpid()));
    fs::create_directories(work);
    fs::current_path(work);
    fs::copy_file(source, "notes.lang-src");
    fs::copy_file(source, "v1.lang-src"); // whose texts are suggested
    start_watching();
    // Where it begins, in the middle, it would bring up the tooltip of what comes to stand there.
    gdk_display_warp_pointer(gdk_display_get_default(), gdk_screen_get_default(), 0, 0);
    lang_global.editor_mode = static_cast<unsigned>(std::atoi(argv[3]));
    run_editor("", walk);
    run_editor((work / "notes.lang-src").string(), leave_changes);
    run_editor("", show_questions);
    write_working_source();
    run_editor("", show_words);
    make_dictionary(work / "words");
    run_editor((work / "notes.lang-src").string(), show_spelling);
    show_russian_instead_of_german();
    run_editor("", show_forms);
    fs::current_path(folder);
    fs::remove_all(work);
    return 0;
}
