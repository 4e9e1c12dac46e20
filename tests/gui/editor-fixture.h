#pragma once

// The whole editor with a small source, for tests that work in its main window.

#include "app/global.h"
#include "editor/panel/w_text.h"
#include "editor/state/edit-state.h"
#include "editor/table/w_tab_edit.h"
#include "editor/table/w_tab_model.h"
#include "gui-support.h"
#include "source/lang-read.h"

#include <cstring>

namespace gui {

// Three languages, the first two edited; the first item has no German text.
constexpr char notes[] = R"(version 1
create_date "2024-03-04"
define file "english.lang" lang "english" 200 200 1
define file "german.lang" lang "german" 200 200 1
define file "french.lang" lang "french" 200 200 0
GROUP "menu" {
  VISIBLE 1
  ITEM "Open" { CTIME 100 USED YES LANG "english" { "Open" } LANG "french" { "Ouvrir" } }
  ITEM "Close" { CTIME 200 USED YES LANG "english" { "Close" } LANG "german" { "Schlie\xc3\x9fen" } }
  ITEM "Old" { CTIME 300 LANG "english" { "Old" } }
}
)";

inline void choose_entry(const std::string &text)
{
    gtk_menu_item_activate(GTK_MENU_ITEM(menu_entry(mainWin, text)));
}
inline void press_tool(const std::string &tooltip)
{
    g_signal_emit_by_name(tool_button(mainWin, tooltip), "clicked");
}
inline std::string status() { return gtk_entry_get_text(GTK_ENTRY(statusWin)); }
inline std::string label(GtkWidget *widget) { return gtk_label_get_text(GTK_LABEL(widget)); }

inline ZelTabEdit *tab() { return ZEL_TAB_EDIT(editWin); }
inline Zeltext *panel() { return ZEL_TEXT(tab()->text_widget); }
inline GtkTreeView *list() { return GTK_TREE_VIEW(tab()->view); }
inline int rows() { return gtk_tree_model_iter_n_children(tab()->sort_model, nullptr); }
inline void search(const char *text) { gtk_entry_set_text(GTK_ENTRY(tab()->search_entry), text); }
inline void go_to(int row)
{
    edit_ctrl.first(editWin);
    for (; row > 0; --row)
        edit_ctrl.next(editWin);
}
// Of the item that is shown; empty for none.
inline std::string name() { return panel()->item == nullptr ? "" : panel()->item->name; }
inline std::string german() { return Test::text_of(panel()->trans2_view); }
inline void type_german(const char *text)
{
    zel::text_focus_field(panel(), TEXT_TRANS2);
    type(mainWin, text);
}
// What bears that tag in a field.
inline std::vector<std::string> tagged(GtkWidget *view, const char *tag_name)
{
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
    GtkTextTag *tag = gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), tag_name);
    std::vector<std::string> out;
    GtkTextIter at;
    gtk_text_buffer_get_start_iter(buffer, &at);
    for (; tag != nullptr && !gtk_text_iter_is_end(&at); gtk_text_iter_forward_char(&at)) {
        if (gtk_text_iter_begins_tag(&at, tag))
            out.emplace_back();
        if (gtk_text_iter_has_tag(&at, tag)) {
            GtkTextIter next = at;
            gtk_text_iter_forward_char(&next);
            out.back() += zel_test::take(gtk_text_iter_get_text(&at, &next));
        }
    }
    return out;
}
inline void translate(GtkWidget *view, const char *text)
{
    gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)), text, -1);
}
inline std::string identity() { return gtk_entry_get_text(GTK_ENTRY(panel()->name_entry)); }

inline void set_font(const char *font)
{
    gtk_settings_set_string_property(gtk_settings_get_default(), "gtk-font-name", font, "test");
}
// As large as letters get on many desktops; "Sans" is smaller here.
inline constexpr const char *other_font = "Noto Sans 10";

// Does it, sees the box it brings up, and presses "Ok".
inline std::string box_of(const std::function<void()> &act)
{
    std::string seen;
    answer_next(see(&seen, press("Ok")));
    act();
    EXPECT_EQ(answers_left(), 0U);
    return seen;
}

// Texts of a file as the reader sees them: "group:item language=line|line" per entry.
inline std::string texts_of(const std::string &file)
{
    testing::internal::CaptureStdout();
    const source_guard read(lang_read_file(file.c_str()));
    testing::internal::GetCapturedStdout();
    std::string all;
    for (const edit_t *group : zel::each<edit_t>(read ? read->groups : nullptr)) {
        for (const item_t *item : zel::each<item_t>(group->items)) {
            for (const lang_entry_t *entry : zel::each<lang_entry_t>(item->langs)) {
                all += std::string(group->name) + ":" + item->name + " " + entry->lang + "=";
                for (const char *line : zel::each<char>(entry->texts))
                    all += std::string(line == nullptr ? "" : line) + "|";
                all += "\n";
            }
        }
    }
    return all;
}

class Editor : public Test {
public:
    std::string source() const { return path("notes.lang-src"); }

protected:
    Editor() { write_file(path("notes.lang-src"), notes); }
    ~Editor() override { set_font("Sans 10"); }
};

} // namespace gui
