#include "config/ini.h"
#include "editor-fixture.h"

#include "editor/toolkit/text-runs.h"

#include <algorithm>

using namespace gui;

namespace {

class Direction : public gui::Editor {
protected:
    // The y at which the first of these letters stands.
    static int line_of(GtkWidget *widget, const std::string &letters)
    {
        GtkTextView *view = GTK_TEXT_VIEW(widget);
        const std::string text = text_of(widget);
        GtkTextIter iter;
        GdkRectangle place{};
        gtk_text_buffer_get_iter_at_offset(
            gtk_text_view_get_buffer(view), &iter,
            static_cast<int>(g_utf8_strlen(text.c_str(), static_cast<long>(text.find(letters)))));
        gtk_text_view_get_iter_location(view, &iter, &place);
        return place.y;
    }
    // What the view shows where these letters of its text stand.
    static std::string picture_of(GtkWidget *widget, const std::string &letters)
    {
        GtkTextView *view = GTK_TEXT_VIEW(widget);
        const std::string text = text_of(widget);
        const auto first = g_utf8_strlen(text.c_str(), static_cast<long>(text.find(letters)));
        int left = G_MAXINT;
        int right = 0;
        GdkRectangle place{};
        for (long at = first; at < first + g_utf8_strlen(letters.c_str(), -1); ++at) {
            GtkTextIter iter;
            gtk_text_buffer_get_iter_at_offset(gtk_text_view_get_buffer(view), &iter,
                                               static_cast<int>(at));
            gtk_text_view_get_iter_location(view, &iter, &place);
            left = std::min({left, place.x, place.x + place.width});
            right = std::max({right, place.x, place.x + place.width});
        }
        gint x = 0;
        gint y = 0;
        gtk_text_view_buffer_to_window_coords(view, GTK_TEXT_WINDOW_TEXT, left, place.y, &x, &y);
        return gui::pixels_of(gtk_text_view_get_window(view, GTK_TEXT_WINDOW_TEXT),
                              {x, y, right - left, place.height});
    }
};

// A text from right to left, and what must look in it as it does alone.
constexpr struct {
    const char *text;
    const char *run;
} texts[] = {
    {"שלום %d עולם", "%d"},    {"נשמרו %-5d קבצים", "%-5d"}, {"تم حفظ %5d ملف", "%5d"},
    {"סוף </i> רגיל", "</i>"}, {"גודל %d KB בלבד", "%d KB"},
};

TEST_F(Direction, PiecesOfRightToLeftTextsAreSeenAsTheyAreWritten)
{
    gui::run_editor(source(), [&] {
        for (const auto &[text, run] : texts) {
            translate(panel()->trans1_view, run);
            translate(panel()->trans2_view, text);
            gui::settle(50);
            EXPECT_TRUE(picture_of(panel()->trans1_view, run) ==
                        picture_of(panel()->trans2_view, run))
                << text;
            EXPECT_EQ(text_of(panel()->trans2_view), text);
        }
        gui::answer_next(gui::press("Ok"));
        choose_entry("Save");
        lang_global.modified = 0;
    });
    EXPECT_NE(gui::read_file(source()).find("\"" + std::string(texts[4].text) + "\""),
              std::string::npos);
}

TEST_F(Direction, TheListsModelHoldsTextsAsTheyAre)
{
    const std::string name = "גודל %d";
    std::string text = "%d %s %d ";
    for (int letter = 0; letter < 31; ++letter)
        text += "ש";
    gui::write_file(source(), "define file \"e\" lang \"english\" 1 1 1\n"
                              "GROUP \"g\" { ITEM \"" +
                                  name + "\" { USED YES LANG \"english\" { \"" + text +
                                  "\" } } }\n");
    lang_global.editor_mode = 1;
    gui::run_editor(source(), [&] {
        GtkTreeModel *model = gtk_tree_view_get_model(GTK_TREE_VIEW(ZEL_TAB_EDIT(editWin)->view));
        GtkTreeIter iter;
        ASSERT_TRUE(gtk_tree_model_get_iter_first(model, &iter));
        gchar *item = nullptr;
        gchar *first = nullptr;
        gtk_tree_model_get(model, &iter, COL_ITEM, &item, COL_LANG1, &first, -1);
        EXPECT_EQ(item, name);
        EXPECT_EQ(g_utf8_strlen(first, -1), 32);
        EXPECT_EQ(text.compare(0, std::strlen(first), first), 0) << first;
        g_free(item);
        g_free(first);
    });
}

constexpr char hebrew[] = R"(version 1
define file "e" lang "english" 200 200 1
define file "g" lang "german" 200 200 1
define file "h" lang "hebrew" 200 200 0
GROUP "menu" {
  ITEM "alone" { USED YES LANG "hebrew" { "%-5d" } COMMENT "german" { "%-5d" } }
  ITEM "within" { USED YES LANG "hebrew" { "נשמרו %-5d קבצים" } COMMENT "german" { "נשמרו %-5d קבצים" } }
}
)";

TEST_F(Direction, SoAreThoseOfCommentsAndOfAThirdLanguage)
{
    gui::write_file(source(), hebrew);
    gui::run_editor(source(), [&] {
        ini_set_below(ini, 0, "hebrew");
        zel::edit_reload();
        std::vector<GtkWidget *> views{panel()->comment2_view, panel()->below[0].view};
        std::vector<std::string> alone;
        for (GtkWidget *view : views) {
            gui::settle(50);
            alone.push_back(picture_of(view, "%-5d"));
        }
        edit_ctrl.next(editWin);
        gui::settle(50);
        for (std::size_t i = 0; i < views.size(); ++i)
            EXPECT_TRUE(picture_of(views[i], "%-5d") == alone[i]) << text_of(views[i]);
    });
}

TEST_F(Direction, APieceOnTwoLinesIsARunOnEach)
{
    gui::run_editor(source(), [&] {
        const auto break_piece = [](GtkWidget *view, const char *letter) {
            std::string text = " <span class=\"abc\">";
            do { // until the blank in the tag is where the line ends
                text = letter + text;
                translate(view, text.c_str());
                gui::settle(20);
            } while (text.size() < 1000 && line_of(view, "<span") == line_of(view, "class"));
            EXPECT_LT(line_of(view, "<span"), line_of(view, "class"));
        };
        break_piece(panel()->trans1_view, "x");
        break_piece(panel()->trans2_view, "ש");
        for (const char *part : {"<span", "class=\"abc\">"})
            EXPECT_TRUE(picture_of(panel()->trans1_view, part) ==
                        picture_of(panel()->trans2_view, part))
                << part;
        lang_global.modified = 0;
    });
}

TEST_F(Direction, DaysStandBeforeTimesInEveryInterface)
{
    gtk_widget_set_default_direction(GTK_TEXT_DIR_RTL);
    gui::run_editor("", [&] {
        GtkLabel *label = GTK_LABEL(lang_global.mtime_label);
        gtk_label_set_text(label, "2024-03-04 10:11:12");
        PangoRectangle day{};
        PangoRectangle time{};
        pango_layout_index_to_pos(gtk_label_get_layout(label), 0, &day);
        pango_layout_index_to_pos(gtk_label_get_layout(label), 11, &time);
        EXPECT_LT(day.x, time.x) << gtk_label_get_text(label);
    });
    gtk_widget_set_default_direction(GTK_TEXT_DIR_LTR);
}

TEST(ShownInRuns, MarksStandAroundPiecesOfRightToLeftTextsOnly)
{
    EXPECT_EQ(zel::shown_in_runs("Über %d <b>"), "Über %d <b>");
    EXPECT_EQ(zel::shown_in_runs("%d קבצים</b>"), "\u200f\u200e%d\u200e קבצים\u200e</b>\u200e");
    EXPECT_EQ(zel::shown_in_runs("KB שלום %s"), "KB שלום \u200e%s\u200e");
    EXPECT_EQ(zel::shown_in_line("\"שלום\"") + ": 2", "\u200e\"שלום\"\u200e: 2");
    EXPECT_EQ(zel::shown_in_line("word"), "word");
}

TEST(ShownInCell, BlanksInFrontAreCountedAndLineEndsAreOfOneKind)
{
    for (const auto &[text, shown] : std::vector<std::pair<const char *, const char *>>{
             {"", ""},
             {"  two", "  two"},
             {"   three  ", "\u24233 three  "},
             {"        ", "\u24238 "},
             {"\ttab", "\u24231 tab"},
             {"a\r\nb\rc\r", "a\nb\nc\n"},
             {"   %d ש", "\u200f\u24233 \u200e%d\u200e ש"}})
        EXPECT_EQ(zel::shown_in_cell(text), shown) << text;
}

} // namespace
