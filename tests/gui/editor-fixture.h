#pragma once

// The whole editor with a small source, for tests that work in its main window.

#include "app/global.h"
#include "editor/panel/w_text.h"
#include "editor/state/edit-state.h"
#include "editor/table/w_tab_edit.h"
#include "editor/table/w_tab_model.h"
#include "gui-support.h"
#include "source/lang-read.h"
#include "test-support.h"

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

class Editor : public Test {
protected:
    Editor() { write_file(path("notes.lang-src"), notes); }

    std::string source() const { return path("notes.lang-src"); }

    static void choose_entry(const std::string &text)
    {
        gtk_menu_item_activate(GTK_MENU_ITEM(menu_entry(mainWin, text)));
    }
    static void press_tool(const std::string &tooltip)
    {
        g_signal_emit_by_name(tool_button(mainWin, tooltip), "clicked");
    }
    static std::string status() { return gtk_entry_get_text(GTK_ENTRY(statusWin)); }
    static std::string label(GtkWidget *widget) { return gtk_label_get_text(GTK_LABEL(widget)); }

    static Zeltext *panel() { return ZEL_TEXT(ZEL_TAB_EDIT(editWin)->text_widget); }
    static void translate(GtkWidget *view, const char *text)
    {
        gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)), text, -1);
    }
    static std::string identity() { return gtk_entry_get_text(GTK_ENTRY(panel()->name_entry)); }

    // Does it, sees the box it brings up, and presses "Ok".
    static std::string box_of(const std::function<void()> &act)
    {
        std::string seen;
        answer_next(see(&seen, press("Ok")));
        act();
        EXPECT_EQ(answers_left(), 0U);
        return seen;
    }

    // Texts of a file as the reader sees them: "group:item language=line|line" per entry.
    static std::string texts_of(const std::string &file)
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
};

} // namespace gui
