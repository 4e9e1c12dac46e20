#include "scene.h"

#include "config/ini.h"
#include "editor/frame/edit-undo.h"
#include "editor/frame/recovery.h"
#include "editor/panel/dictionary.h"
#include "editor/panel/spelling.h"
#include "editor/toolkit/misc-row.h"
#include "recovery/place.h"
#include "support/string-copy.h"
#include "working-dir.h"

#include <gdk/gdkkeysyms.h>

#include <filesystem>
#include <map>

namespace gui {
namespace {

namespace fs = std::filesystem;
using zel_test::row;

// A row of a scene, its texts with the folder in place.
struct words {
    Scene &scene;
    const row &said;

    std::string operator[](std::size_t number) const { return scene.said(said[number]); }
    std::size_t size() const { return said.texts.size(); }
    int number(std::size_t at) const { return std::stoi(said[at]); }
    std::string path(std::size_t at) const { return scene.path((*this)[at]); }
    GtkWidget *widget(std::size_t at = 1) const
    {
        GtkWidget *found = scene.widget((*this)[at]);
        EXPECT_NE(found, nullptr) << "no widget " << said[at];
        return found;
    }
};

answer_fn answer_of(const words &row)
{
    static const std::map<std::string, int> responses{{"yes", GTK_RESPONSE_YES},
                                                      {"no", GTK_RESPONSE_NO},
                                                      {"apply", GTK_RESPONSE_APPLY},
                                                      {"cancel", GTK_RESPONSE_CANCEL},
                                                      {"gone", GTK_RESPONSE_DELETE_EVENT}};
    if (row[1] == "path")
        return choose(row[2]);
    if (row[1] == "name")
        return type_name(row.scene.folder, row[2]);
    return row[1] == "closed" ? close_window() : respond(responses.at(row[1]));
}

// What brings up a box is told so by one more text: the button that is pressed there.
void expect_box(const words &row, std::size_t at, const std::function<void()> &act)
{
    if (row.size() > at)
        row.scene.answer(press(row[at]));
    act();
    if (row.size() > at) {
        EXPECT_EQ(answers_left(), 0U);
    }
}

void press_keys(const words &row)
{
    static const std::map<std::string, int> modifiers{
        {"Ctrl", GDK_CONTROL_MASK}, {"Alt", GDK_MOD1_MASK}, {"Shift", GDK_SHIFT_MASK}};
    std::string name = row[1];
    int pressed = 0;
    for (std::size_t plus = 0; (plus = name.find('+')) != name.npos; name.erase(0, plus + 1))
        pressed |= modifiers.at(name.substr(0, plus));
    const guint keyval = gdk_keyval_from_name(name.c_str());
    ASSERT_NE(keyval, guint{GDK_KEY_VoidSymbol}) << name;
    key(row.scene.root(), keyval, pressed);
}

// Types into a widget, a field's caret behind its text; into what has the keyboard for none.
void type_into(const words &row)
{
    if (!row[1].empty()) {
        GtkWidget *field = row.widget();
        gtk_widget_grab_focus(field);
        for (const int number : {TEXT_TRANS1, TEXT_TRANS2, TEXT_COMMENT1, TEXT_COMMENT2})
            if (field == panel()->*zel::fields[number].view)
                zel::text_focus_field(panel(), number);
    }
    type(row.scene.root(), row[2].c_str());
}

// A key now and then for a second, in which something must stay as it is said; no longer where the
// machine makes one wait.
void type_on(const words &row)
{
    constexpr gint64 pause = 200000; // twice that is less than the editor waits
    key(mainWin, GDK_KEY_Left);
    gint64 last = g_get_monotonic_time();
    for (int pressed = 0; pressed < 50; ++pressed) {
        key(mainWin, GDK_KEY_Left);
        settle(20);
        const gint64 now = g_get_monotonic_time();
        if (now - last >= pause)
            return;
        last = now;
        EXPECT_EQ(row.scene.look(row[1]), row[2]);
    }
}

void set_text(const words &row)
{
    GtkWidget *field = row.widget();
    if (GTK_IS_SPIN_BUTTON(field))
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(field), std::stod(row[2]));
    else if (GTK_IS_ENTRY(field))
        gtk_entry_set_text(GTK_ENTRY(field), row[2].c_str());
    else
        gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(field)), row[2].c_str(),
                                 static_cast<int>(row[2].size()));
}

void put_caret(const words &row)
{
    GtkWidget *field = row.widget();
    if (GTK_IS_LABEL(field))
        return gtk_label_select_region(GTK_LABEL(field), row.number(2), row.number(2));
    if (GTK_IS_ENTRY(field))
        return gtk_editable_set_position(GTK_EDITABLE(field), row.number(2));
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(field));
    GtkTextIter at;
    gtk_text_buffer_get_iter_at_offset(buffer, &at, row.number(2));
    gtk_text_buffer_place_cursor(buffer, &at);
}

// A press, and a release where something is to be clicked, at a place of a window.
void mouse(GdkWindow *window, guint button, double x, double y, bool release)
{
    for (const GdkEventType kind : {GDK_BUTTON_PRESS, GDK_BUTTON_RELEASE}) {
        if (kind == GDK_BUTTON_RELEASE && !release)
            return;
        GdkEvent *event = gdk_event_new(kind);
        event->button.window = GDK_WINDOW(g_object_ref(window));
        event->button.send_event = TRUE;
        event->button.x = x;
        event->button.y = y;
        event->button.button = button;
        event->button.device = gdk_device_get_core_pointer();
        gtk_main_do_event(event);
        gdk_event_free(event);
    }
}

void click_cell(const words &row)
{
    GtkTreePath *path = gtk_tree_path_new_from_indices(row.number(1), -1);
    GdkRectangle cell{};
    gtk_tree_view_get_cell_area(list(), path, gtk_tree_view_get_column(list(), row.number(2)),
                                &cell);
    gtk_tree_path_free(path);
    mouse(gtk_tree_view_get_bin_window(list()), 1, cell.x + cell.width * 0.5,
          cell.y + cell.height * 0.5, true);
    settle();
}

// Where a letter of the translation is.
void right_click(const words &row)
{
    GtkTextView *view = GTK_TEXT_VIEW(panel()->trans2_view);
    GtkTextIter at;
    GdkRectangle place{};
    gtk_text_buffer_get_iter_at_offset(gtk_text_view_get_buffer(view), &at, row.number(1));
    gtk_text_view_get_iter_location(view, &at, &place);
    gint x = 0;
    gint y = 0;
    gtk_text_view_buffer_to_window_coords(view, GTK_TEXT_WINDOW_TEXT, place.x + 1, place.y + 2, &x,
                                          &y);
    mouse(gtk_text_view_get_window(view, GTK_TEXT_WINDOW_TEXT), 3, x, y, false);
}

void click_ready_cell(const words &row)
{
    GList *cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(gtk_tree_view_get_column(list(), 3)));
    g_signal_emit_by_name(cells->data, "toggled", row[1].c_str());
    g_list_free(cells);
}

void sort_by(const words &row)
{
    GList *columns = gtk_tree_view_get_columns(list());
    for (GtkTreeViewColumn *column : zel::each<GtkTreeViewColumn>(columns))
        if (row[1] == gtk_tree_view_column_get_title(column))
            gtk_tree_view_column_clicked(column);
    g_list_free(columns);
}

// The entry of a field's menu, or of a menu below it.
void pick(const words &row)
{
    with_menu_of(row.widget(), [&](GtkWidget *menu) {
        for (GtkWidget *item : menu_items(menu))
            if (row[2] == gtk_menu_item_get_label(GTK_MENU_ITEM(item)))
                return gtk_menu_item_activate(GTK_MENU_ITEM(item));
        EXPECT_EQ(row[3], "if offered") << "no entry " << row[2];
    });
}

// Chooses in the menu of a caption what is shown below it; a third text is what it must offer.
void take_below(const words &row)
{
    const int field = row.number(1) == 1 ? TEXT_TRANS1 : TEXT_TRANS2;
    GtkWidget *menu = caption_menu(field, 3);
    std::string offered;
    if (menu != nullptr) {
        offered = menu_line(menu, "|");
        for (GtkWidget *item : menu_items(menu))
            if (row[2] == gtk_menu_item_get_label(GTK_MENU_ITEM(item)))
                gtk_menu_item_activate(GTK_MENU_ITEM(item));
        gtk_menu_shell_deactivate(GTK_MENU_SHELL(menu));
        gtk_widget_destroy(menu);
    }
    if (row.size() > 3) {
        EXPECT_EQ(offered, row[3]);
    }
}

void edit_languages(const words &row)
{
    for (lang_t *lang : zel::each<lang_t>(def_group->langs))
        lang->edit = row[1] == lang->name || row[2] == lang->name ? 1 : 0;
    zel::edit_reload();
}

// A copy of a file with texts replaced by others, each once.
void rewrite(const words &row)
{
    std::string text = read_file(row.path(1));
    for (std::size_t at = 3; at + 1 < row.size(); at += 2) {
        const std::size_t place = text.find(row[at]);
        ASSERT_NE(place, text.npos) << row[at] << " in " << text;
        text.replace(place, row[at].size(), row[at + 1]);
    }
    write_file(row.path(2), text);
}

void write_rows(const words &row)
{
    std::string text = row[2];
    for (std::size_t at = 3; at < row.size(); ++at)
        text += "\n" + row[at];
    write_file(row.path(1), text);
}

void resize(const words &row)
{
    gtk_window_resize(GTK_WINDOW(mainWin), row.number(1), row.number(2));
    wait_for([&] {
        gint width = 0;
        gtk_window_get_size(GTK_WINDOW(mainWin), &width, nullptr);
        return width == row.number(1);
    });
    settle(100);
}

// As when another program's window has had the keyboard.
void come_back()
{
    GdkEvent *event = gdk_event_new(GDK_FOCUS_CHANGE);
    event->focus_change.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(mainWin)));
    event->focus_change.in = TRUE;
    gtk_main_do_event(event);
    gdk_event_free(event);
}

// Words of a language that nobody has a dictionary for.
void make_dictionary(const words &row)
{
    zel::before_first_spelling = 10;
    fs::create_directories("words/hunspell");
    write_file("words/hunspell/aa_ET.aff", "SET UTF-8\nTRY aehlotwzi\n");
    write_file("words/hunspell/aa_ET.dic", "9\n" + row[1]);
    g_setenv("ENCHANT_CONFIG_DIR", row.scene.path("words").c_str(), TRUE);
}

// What the dying editor has written stays, under a name that its own end does not know.
void let_it_die(const words &row)
{
    const auto files = recovery_files(row.scene.source());
    ASSERT_EQ(files.size(), 1U);
    fs::rename(files[0].path, files[0].path + ".kept.lang-src");
}

const std::map<std::string, void (*)(const words &)> acts{
    // Files and what the program finds at its start.
    {"mode", [](const words &row) { lang_global.editor_mode = row.number(1) & 3; }},
    {"file", write_rows},
    {"source",
     [](const words &row) {
         write_file(row.size() > 2 ? row.path(2) : row.scene.source(), named_source(row[1]));
     }},
    {"example",
     [](const words &row) {
         write_file(row.scene.source(), read_file(LANG_SOURCE_ROOT "/examples/notes.lang-src"));
     }},
    {"append", [](const words &row) { write_file(row.path(1), read_file(row.path(1)) + row[2]); }},
    {"rewrite", rewrite},
    {"folder", [](const words &row) { fs::create_directories(row.path(1)); }},
    {"remove", [](const words &row) { fs::remove_all(row.path(1)); }},
    {"link", [](const words &row) { fs::create_hard_link(row.path(1), row.path(2)); }},
    {"needs dictionaries",
     [](const words &) {
         if (!zel::has_dictionaries())
             return zel_test::missing("enchant-2");
     }},
    {"dictionary", make_dictionary},
    {"time zone", [](const words &row) { g_setenv("TZ", row[1].c_str(), TRUE); }},
    {"manual in",
     [](const words &row) {
         g_free(lang_global.doc_dir);
         lang_global.doc_dir = row[1].empty() ? nullptr : g_strdup(row[1].c_str());
     }},
    {"recover every",
     [](const words &row) { zel::recovery_interval = static_cast<guint>(row.number(1)); }},
    {"file in the place of the recovery folder",
     [](const words &) {
         const std::string folder = zel::recovery_folder(); // which makes it
         fs::remove_all(folder);
         write_file(folder, "a file in its place");
     }},
    {"remove the file in its place", [](const words &) { fs::remove(zel::recovery_folder()); }},
    {"let the editor die", let_it_die},
    {"start and end",
     [](const words &row) {
         row.scene.errors = zel_test::capture_stderr(
             [&] { row.scene.printed = run_editor(row.path(1), nullptr); });
     }},
    // Dialogs.
    {"answer", [](const words &row) { row.scene.answer(answer_of(row)); }},
    {"press", [](const words &row) { press(row[1])(row.scene.root()); }},
    {"press the default",
     [](const words &row) { gtk_window_activate_default(GTK_WINDOW(row.scene.root())); }},
    {"respond", [](const words &row) { answer_of(row)(row.scene.root()); }},
    {"close", [](const words &row) { close_window()(row.scene.root()); }},
    // Menus, buttons and keys; what brings up a box names the button that is pressed in it.
    {"choose", [](const words &row) { expect_box(row, 2, [&] { choose_entry(row[1]); }); }},
    {"tool", [](const words &row) { expect_box(row, 2, [&] { press_tool(row[1]); }); }},
    {"key", [](const words &row) { expect_box(row, 2, [&] { press_keys(row); }); }},
    {"save",
     [](const words &row) {
         for (const auto &entry : fs::directory_iterator(row.scene.folder))
             if (entry.path().extension() == ".bak") // else it waits for another second
                 fs::rename(entry, entry.path().string() + ".kept");
         row.scene.box = box_of([] { choose_entry("Save"); });
     }},
    {"load",
     [](const words &row) {
         row.scene.answer(choose(row.path(1)));
         choose_entry("Load");
     }},
    {"click", [](const words &row) { gtk_button_clicked(GTK_BUTTON(row.widget())); }},
    {"switch",
     [](const words &row) {
         g_object_set(row.widget(), "active", row[2] == "on" ? TRUE : FALSE, nullptr);
     }},
    {"click cell", click_cell},
    {"click ready cell", click_ready_cell},
    {"right click", right_click},
    {"sort by", sort_by},
    {"pick", pick},
    {"take below", take_below},
    {"leave the menus",
     [](const words &) {
         gtk_menu_shell_deactivate(GTK_MENU_SHELL(find_type(mainWin, GTK_TYPE_MENU_BAR)));
     }},
    // Texts.
    {"type", type_into},
    {"type on", type_on},
    {"set", set_text},
    {"write",
     [](const words &row) { gtk_entry_set_text(GTK_ENTRY(row.widget()), row[2].c_str()); }},
    {"caret", put_caret},
    {"focus", [](const words &row) { gtk_widget_grab_focus(row.widget()); }},
    {"digits",
     [](const words &row) { lang_global.digit_keys = static_cast<unsigned>(row.number(1)) & 3U; }},
    {"paste",
     [](const words &row) {
         GtkClipboard *clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
         gtk_clipboard_set_text(clipboard, row[1].c_str(), -1);
         gtk_text_buffer_paste_clipboard(
             gtk_text_view_get_buffer(GTK_TEXT_VIEW(panel()->trans2_view)), clipboard, nullptr,
             TRUE);
     }},
    {"export to",
     [](const words &row) { zel::replace_string(ini->dstDir, zel_strdup(row[1].c_str())); }},
    {"undo", [](const words &) { zel::edit_undo(); }},
    {"store", [](const words &) { zel_tab_edit_update(editWin); }},
    // Items.
    {"go", [](const words &row) { go_to(row.number(1)); }},
    {"first", [](const words &) { edit_ctrl.first(editWin); }},
    {"previous", [](const words &) { edit_ctrl.prev(editWin); }},
    {"next", [](const words &) { edit_ctrl.next(editWin); }},
    {"last", [](const words &) { edit_ctrl.last(editWin); }},
    {"refresh", [](const words &) { edit_ctrl.refresh(editWin); }},
    {"filter again", [](const words &) { edit_ctrl.empty(editWin); }},
    {"new since",
     [](const words &row) {
         lang_global.whatsnew_since = row.number(1);
         edit_ctrl.whatsnew(editWin);
     }},
    {"select row",
     [](const words &row) {
         EXPECT_EQ(misc_select_row(list(), tab()->sort_model, row.number(1), row.number(2)),
                   row.number(3));
     }},
    {"search", [](const words &row) { search(row[1].c_str()); }},
    {"edit languages", edit_languages},
    // The window.
    {"settle", [](const words &row) { settle(row.number(1)); }},
    {"page",
     [](const words &row) {
         gtk_notebook_set_current_page(GTK_NOTEBOOK(row.scene.widget("pages")), row.number(1));
         settle(50);
     }},
    {"draw the tab",
     [](const words &) {
         gtk_widget_queue_draw(lang_global.edit_tab_label);
         settle(50);
     }},
    {"move",
     [](const words &row) {
         gtk_window_move(GTK_WINDOW(row.scene.root()), row.number(1), row.number(2));
     }},
    {"resize", resize},
    {"font", [](const words &row) { set_font(row[1].c_str()); }},
    {"come back", [](const words &) { come_back(); }},
};

} // namespace

bool act(Scene &scene, const zel_test::row &row)
{
    const auto found = acts.find(row[0]);
    if (found == acts.end())
        return false;
    found->second({scene, row});
    return true;
}

} // namespace gui
