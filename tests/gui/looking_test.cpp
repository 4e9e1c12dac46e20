// Looking at items changes neither the source nor what is compiled from it.

#include "editor-fixture.h"

#include <gdk/gdkkeysyms.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>

using namespace gui;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Looking : public Editor {
protected:
    static std::vector<std::string> lines_of(const std::string &text)
    {
        std::vector<std::string> lines;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);)
            lines.push_back(line);
        return lines;
    }
    // The lines that are in one of two texts of equally many lines, without their blanks; not those
    // that tell when it was written.
    static std::vector<std::string> changed_lines(const std::string &before,
                                                  const std::string &after)
    {
        const std::vector<std::string> old = lines_of(before);
        const std::vector<std::string> now = lines_of(after);
        std::vector<std::string> changed;
        EXPECT_EQ(old.size(), now.size()) << after;
        for (std::size_t line = 0; line < std::min(old.size(), now.size()); ++line) {
            if (old[line] != now[line] && now[line].rfind("mtime", 0) != 0)
                changed.push_back(now[line].substr(now[line].find_first_not_of(' ')));
        }
        return changed;
    }
    static std::size_t entries(GList *list) { return g_list_length(list); }
};

} // namespace

TEST_F(Looking, ASaveAfterItChangesWhatWasChanged)
{
    write_file(source(), read_file(LANG_SOURCE_ROOT "/examples/notes.lang-src"));
    std::string before;
    run_editor(source(), [&] {
        EXPECT_EQ(box_of([] { choose_entry("Save"); }), "Write file successfull\nOk");
        before = read_file(source());
        for (int step = 0; step < 40; ++step)
            edit_ctrl.next(editWin);
        edit_ctrl.first(editWin);
        for (int step = 0; step < 5; ++step)
            edit_ctrl.next(editWin);
        EXPECT_EQ(panel()->item->ready, 0);
        gtk_button_clicked(GTK_BUTTON(ZEL_TAB_EDIT(editWin)->ready_button));
        EXPECT_EQ(box_of([] { choose_entry("Save"); }), "Write file successfull\nOk");
    });
    EXPECT_THAT(changed_lines(before, read_file(source())), ElementsAre("READY     1"));
}

TEST_F(Looking, TheShownItemHasItsEntriesAndNoFileHasThem)
{
    run_editor(source(), [&] {
        item_t *open = panel()->item;
        EXPECT_EQ(entries(open->langs), 3U);
        EXPECT_EQ(entries(open->comments), 2U);
        EXPECT_EQ(box_of([] { choose_entry("Save"); }), "Write file successfull\nOk");
        EXPECT_THAT(texts_of(source()), testing::Not(HasSubstr("menu:Open german")));
        EXPECT_EQ(entries(open->langs), 3U) << "it is still shown";
        EXPECT_EQ(entries(open->comments), 2U);

        std::filesystem::create_directory("out");
        answer_next(choose(path("out")));
        box_of([] { choose_entry("Export to language files (*.lang)"); });
        EXPECT_THAT(read_file("out/german-edit/german.lang"), HasSubstr("\"Open\" {\n   default"))
            << "the default language's text stands in";

        // What is typed after a save is bound to the entry as before.
        translate(panel()->trans2_view, "auf");
        edit_ctrl.last(editWin);
        EXPECT_EQ(entries(open->langs), 3U);
        EXPECT_EQ(entries(open->comments), 0U);
        EXPECT_STREQ(zel_get_first_lang_entry(open->langs, "german"), "auf");
        EXPECT_EQ(box_of([] { choose_entry("Save"); }), "Write file successfull\nOk");
        EXPECT_THAT(texts_of(source()), HasSubstr("menu:Open german=auf|\n"));

        // Once in a file, an entry is empty because somebody emptied it.
        edit_ctrl.first(editWin);
        translate(panel()->trans2_view, "");
        edit_ctrl.last(editWin);
        EXPECT_EQ(entries(open->langs), 3U);
        EXPECT_EQ(entries(open->comments), 0U);
    });
}

TEST_F(Looking, TypedAndTakenBackIsAsIfOnlyLookedAt)
{
    run_editor(source(), [&] {
        item_t *open = panel()->item;
        translate(panel()->trans2_view, "a");
        translate(panel()->trans2_view, "");
        edit_ctrl.last(editWin);
        EXPECT_EQ(entries(open->langs), 2U);
        search("open");
        edit_ctrl.first(editWin);
        EXPECT_EQ(entries(open->langs), 3U);
        search("nothing");
        EXPECT_EQ(entries(open->langs), 2U) << "left by a search";
    });
}
