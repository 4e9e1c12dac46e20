// The checks while one types, and the way from item to item with work.

#include "editor-fixture.h"

#include <gdk/gdkkeysyms.h>
#include <gmock/gmock.h>

using namespace gui;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// One item as it should be, one whose text lacks a conversion, one without a text, one not ready.
constexpr char five[] = R"(version 1
define file "english.lang" lang "english" 200 200 1
define file "german.lang" lang "german" 200 200 1
GROUP "g" {
  ITEM "good" { USED YES READY 1 LANG "english" { "good" } LANG "german" { "gut" } }
  ITEM "bad" { USED YES READY 1 LANG "english" { "%d of %s" } LANG "german" { "von %s" } }
  ITEM "none" { USED YES READY 1 LANG "english" { "none" } }
  ITEM "new" { USED YES LANG "english" { "new" } LANG "german" { "neu" } }
  ITEM "end" { USED YES READY 1 LANG "english" { "end" } LANG "german" { "Ende" } }
}
)";

class Checks : public Editor {
protected:
    Checks() { write_file(source(), five); }

    static std::string remark()
    {
        GtkWidget *told = panel()->finding2_label;
        return gtk_widget_get_visible(told) != 0 ? label(told) : "";
    }
    static std::string said_of(GtkWidget *view)
    {
        const char *text = atk_object_get_description(gtk_widget_get_accessible(view));
        return text == nullptr ? "" : text;
    }
    static std::string progress()
    {
        GtkWidget *told = find_named(editWin, "progress");
        wait_for([&] { return !label(told).empty(); });
        return label(told);
    }
    static std::vector<std::string> coloured()
    {
        return tagged(panel()->trans2_view, "application-piece");
    }
    // The Item column's cell of a row, drawn: "bold", "fault", both, or nothing.
    static std::string mark(int row)
    {
        GtkTreeViewColumn *column = gtk_tree_view_get_column(GTK_TREE_VIEW(tab()->view), 5);
        GtkTreeIter iter;
        gtk_tree_model_iter_nth_child(tab()->sort_model, &iter, nullptr, row);
        gtk_tree_view_column_cell_set_cell_data(column, tab()->sort_model, &iter, FALSE, FALSE);
        GList *cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
        int weight = 0;
        PangoUnderline underline{};
        g_object_get(cells->data, "weight", &weight, "underline", &underline, nullptr);
        g_list_free(cells);
        return std::string(weight >= PANGO_WEIGHT_BOLD ? "bold" : "") +
               (underline == PANGO_UNDERLINE_ERROR ? "fault" : "");
    }
    static GtkWidget *findings_filter()
    {
        for (GtkWidget *button : find_all(editWin, GTK_TYPE_TOGGLE_BUTTON))
            if (const char *text = gtk_widget_get_tooltip_text(button);
                text != nullptr && std::string(text) == "Display only items with findings")
                return button;
        return nullptr;
    }
    static void choose_row(const char *name)
    {
        while (Editor::name() != name && edit_ctrl.next(editWin) == 1)
            ;
    }
};

} // namespace

TEST_F(Checks, TellWhatIsWrongWhileOneTypes)
{
    run_editor(source(), [&] {
        settle(50);
        EXPECT_EQ(remark(), "");
        EXPECT_EQ(progress(), "german: 4 of 5, 1 to do, 1 finding");
        edit_ctrl.next(editWin);
        EXPECT_EQ(remark(), "%d is missing");
        EXPECT_EQ(said_of(panel()->trans2_view), "%d is missing");
        EXPECT_EQ(mark(1), "fault");
        EXPECT_THAT(coloured(), ElementsAre("%s"));

        zel::text_focus_field(panel(), TEXT_TRANS2);
        type(mainWin, " %d");
        EXPECT_THAT(remark(), HasSubstr("the item asks for")) << "in the wrong order";
        EXPECT_THAT(coloured(), ElementsAre("%s", "%d"));
        translate(panel()->trans2_view, "%d von %s");
        EXPECT_EQ(remark(), "");
        EXPECT_EQ(said_of(panel()->trans2_view), "");
        EXPECT_EQ(mark(1), "");
        EXPECT_EQ(progress(), "german: 4 of 5, 1 to do, 0 findings");
        translate(panel()->trans1_view, "%d");
        EXPECT_EQ(remark(), "%s is too many") << "the original has changed";

        edit_ctrl.next(editWin);
        EXPECT_EQ(remark(), "") << "of the item before";
        EXPECT_EQ(mark(2), "bold");
        translate(panel()->trans2_view, "kein");
        EXPECT_EQ(mark(2), "");
        translate(panel()->trans2_view, " ");
        EXPECT_EQ(mark(2), "bold");
        EXPECT_EQ(progress(), "german: 4 of 5, 1 to do, 1 finding");

        search("bad");
        EXPECT_EQ(remark(), "") << "no item is shown";
    });
}

TEST_F(Checks, TheFilterLeavesTheItemsWithFindings)
{
    run_editor(source(), [&] {
        settle(50);
        edit_ctrl.last(editWin);
        translate(panel()->trans2_view, "Ende.");
        gtk_button_clicked(GTK_BUTTON(findings_filter()));
        EXPECT_EQ(rows(), 2);
        edit_ctrl.first(editWin);
        EXPECT_EQ(name(), "bad");
        choose_row("end");
        EXPECT_THAT(remark(), HasSubstr("full stop"));
        search("von");
        EXPECT_EQ(rows(), 1) << "among what is found";
        search("");
        gtk_button_clicked(GTK_BUTTON(findings_filter()));
        EXPECT_EQ(rows(), 5);
    });
}

TEST_F(Checks, TheKeysGoFromWorkToWork)
{
    run_editor(source(), [&] {
        settle(50);
        zel::text_focus_field(panel(), TEXT_TRANS2);
        const char *down[] = {"bad", "none", "new"};
        for (const char *next : down) {
            key(mainWin, GDK_KEY_Page_Down, GDK_MOD1_MASK);
            EXPECT_EQ(name(), next);
            EXPECT_EQ(zel::text_focused_field(panel()), TEXT_TRANS2);
        }
        key(mainWin, GDK_KEY_Page_Down, GDK_MOD1_MASK);
        EXPECT_EQ(name(), "new");
        EXPECT_EQ(status(), "No item with work below");
        EXPECT_EQ(lang_global.modified, 0);
        key(mainWin, GDK_KEY_Page_Up, GDK_MOD1_MASK);
        EXPECT_EQ(name(), "none");
        EXPECT_EQ(status(), "");
        key(mainWin, GDK_KEY_Page_Up, GDK_MOD1_MASK);
        key(mainWin, GDK_KEY_Page_Up, GDK_MOD1_MASK);
        EXPECT_EQ(name(), "bad");
        EXPECT_EQ(status(), "No item with work above");
    });
}

TEST_F(Checks, ReadyAndNextStaysAtTheEnd)
{
    run_editor(source(), [&] {
        settle(50);
        choose_row("none");
        zel::text_focus_field(panel(), TEXT_TRANS2);
        type(mainWin, "kein");
        key(mainWin, GDK_KEY_Return, GDK_CONTROL_MASK);
        EXPECT_EQ(name(), "new");
        EXPECT_EQ(zel::text_focused_field(panel()), TEXT_TRANS2);
        EXPECT_EQ(lang_global.modified, 1);
        const item_t *item = panel()->item;
        EXPECT_EQ(item->ready, 0);
        key(mainWin, GDK_KEY_Return, GDK_CONTROL_MASK);
        EXPECT_EQ(item->ready, 1);
        EXPECT_EQ(name(), "new");
        EXPECT_EQ(status(), "No item with work below");
        EXPECT_EQ(zel::text_focused_field(panel()), TEXT_TRANS2);
        EXPECT_EQ(progress(), "german: 5 of 5, 0 to do, 1 finding");
    });
    run_editor("", [&] { key(mainWin, GDK_KEY_Return, GDK_CONTROL_MASK); });
}
