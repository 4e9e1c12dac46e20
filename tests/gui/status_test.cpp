// What the status line says: which file is being edited, whether it has changed, why one could not
// be read.

#include "editor-fixture.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace gui;
using testing::EndsWith;
using testing::HasSubstr;

namespace {

class Status : public Editor {
protected:
    static bool sign() { return gtk_widget_get_visible(changed_sign) != 0; }
};

} // namespace

TEST_F(Status, TellsTheFileAtTheStartAndAfterALoad)
{
    std::filesystem::create_directory("sub");
    write_file(path("sub/one.lang-src"), "define file \"e\" lang \"english\" 1 1 1\n"
                                         "GROUP \"g\" { ITEM \"i\" { USED YES } }\n"
                                         "/* EOF x */\n");
    run_editor(source(), [&] {
        EXPECT_THAT(status(), testing::StartsWith(source() + ": 2 items, 3 languages"));
        answer_next(choose(path("sub/one.lang-src")));
        choose_entry("Load");
        EXPECT_THAT(status(), testing::StartsWith(path("sub/one.lang-src: 1 item, 1 language")));
    });
}

TEST_F(Status, SaysWhyALoadFailed)
{
    const struct {
        std::string text;
        const char *why;
    } rows[] = {
        {std::string("GROUP \"g\" { ITEM \"i\" { LANG \"e\" { \"a\0b\" } } }", 45),
         "a NUL byte ends the text here, and what follows is lost"},
        {"version 1\n  nonsense {\n", ": line 2, column 3: no statement begins here"},
        {"GROUP \"g\" {\n ITEM \"i\" { READY x } }\n",
         ": 0 items, 0 languages; line 2, column 19: READY needs a number"},
        {"GROUP \"g\" { ITEM \"i\" {\n", "the item must end here"},
    };
    run_editor("", [&] {
        for (const auto &[text, why] : rows) {
            write_file(path("bad.lang-src"), text);
            answer_next(choose(path("bad.lang-src")));
            choose_entry("Load");
            EXPECT_THAT(status(), testing::StartsWith(path("bad.lang-src: ")));
            EXPECT_THAT(status(), EndsWith(why));
        }
    });
    const std::string said = zel_test::capture_stderr([&] {
        run_editor(path("nowhere.lang-src"), nullptr);
        run_editor(path("bad.lang-src"), nullptr);
    });
    EXPECT_THAT(said, HasSubstr("lang: " + path("nowhere.lang-src: there is no such file\n")));
    EXPECT_THAT(said, HasSubstr("lang: " + path("bad.lang-src: line 2")));
}

TEST_F(Status, ShowsASignWhileThereAreChanges)
{
    lang_global.editor_mode = 1;
    run_editor(source(), [&] {
        EXPECT_FALSE(sign());
        translate(panel()->trans2_view, "auf");
        EXPECT_TRUE(sign());
        box_of([] { choose_entry("Save"); });
        EXPECT_FALSE(sign());
        gtk_button_clicked(GTK_BUTTON(ZEL_TAB_EDIT(editWin)->ready_button));
        EXPECT_TRUE(sign());
        answer_next(respond(GTK_RESPONSE_YES));
        answer_next(choose(source()));
        choose_entry("Load");
        EXPECT_FALSE(sign());
        answer_next([](GtkWidget *dialog) {
            gtk_entry_set_text(GTK_ENTRY(find_text(dialog, "german.lang")), "de.lang");
            press("Close")(dialog);
        });
        choose_entry("Setting");
        EXPECT_TRUE(sign());
    });
}
