// Spelling in the texts, with dictionaries of the tests' own for a language that nobody has one
// for.

#include "editor-fixture.h"

#include "config/ini.h"
#include "editor/frame/edit-undo.h"
#include "editor/panel/dictionary.h"
#include "editor/panel/spelling.h"
#include "working-dir.h"

#include <gdk/gdkkeysyms.h>
#include <gmock/gmock.h>

#include <filesystem>

using namespace gui;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr const char *missing_library = "enchant-2";

std::string source_for(const std::string &language)
{
    return "version 1\n"
           "define file \"first.lang\" lang \"Avestan\" 200 200 1\n"
           "define file \"second.lang\" lang \"" +
           language +
           "\" 200 200 1\n"
           "GROUP \"g\" {\n"
           "  ITEM \"one\" { USED YES LANG \"Avestan\" { \"wrogn\" }\n"
           "    LANG \"" +
           language +
           "\" { \"Hallo Wlet, %d hallo <b>wlet</b> UTF wlet\" } }\n"
           "  ITEM \"two\" { USED YES LANG \"Avestan\" { \"two\" } }\n"
           "}\n";
}

class Spelling : public Editor {
protected:
    Spelling()
    {
        zel::before_first_spelling = 10;
        std::filesystem::create_directories("words/hunspell");
        write_dictionary("aa_ET", "hallo\nwelt\nzwei\n");
        g_setenv("ENCHANT_CONFIG_DIR", path("words").c_str(), TRUE);
        write_file(source(), source_for("Afar"));
    }
    ~Spelling() override
    {
        zel::release_dictionaries();
        g_unsetenv("ENCHANT_CONFIG_DIR");
    }

    static void write_dictionary(const std::string &name, const std::string &words)
    {
        write_file("words/hunspell/" + name + ".aff", "SET UTF-8\nTRY aehlotwzi\n");
        write_file("words/hunspell/" + name + ".dic", "9\n" + words);
    }
    static GtkTextBuffer *buffer(GtkWidget *view)
    {
        return gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
    }
    static std::vector<std::string> wrong(GtkWidget *view) { return tagged(view, "misspelt"); }
    static GtkWidget *view() { return panel()->trans2_view; }
    static std::vector<std::string> wrong() { return wrong(view()); }
    static bool becomes(std::vector<std::string> words)
    {
        return wait_for([&] { return wrong() == words; });
    }
    // Long enough for everything to have been looked at, since the start and since a change.
    static void first_look() { settle(150); }
    static void look() { settle(60); }

    static void put_caret(int offset)
    {
        GtkTextIter at;
        gtk_text_buffer_get_iter_at_offset(buffer(view()), &at, offset);
        gtk_text_buffer_place_cursor(buffer(view()), &at);
    }
    // The menu of the field, opened at the caret: its entries with labels that are the editor's.
    static std::vector<std::string> menu_at(int offset, const std::string &chosen = "")
    {
        put_caret(offset);
        GtkWidget *menu = gtk_menu_new();
        g_object_ref_sink(menu);
        g_signal_emit_by_name(view(), "populate-popup", menu);
        std::vector<std::string> texts;
        for (GtkWidget *item : find_all(menu, GTK_TYPE_MENU_ITEM)) {
            const char *text = gtk_menu_item_get_label(GTK_MENU_ITEM(item));
            texts.emplace_back(GTK_IS_SEPARATOR_MENU_ITEM(item) ? "-" : text);
            if (GTK_IS_CHECK_MENU_ITEM(item))
                texts.back() += gtk_check_menu_item_get_active(GTK_CHECK_MENU_ITEM(item)) != 0
                                    ? " (on)"
                                    : " (off)";
        }
        for (GtkWidget *item : find_all(menu, GTK_TYPE_MENU_ITEM))
            if (chosen == gtk_menu_item_get_label(GTK_MENU_ITEM(item)))
                gtk_menu_item_activate(GTK_MENU_ITEM(item));
        g_object_unref(menu);
        return texts;
    }
    static std::string text() { return text_of(view()); }
};

constexpr int in_word = 8; // of "Hallo Wlet, "

} // namespace

TEST_F(Spelling, UnderlinesTheWordsOfShownLanguagesThatHaveADictionary)
{
    if (!zel::has_dictionaries())
        return zel_test::missing(missing_library);
    for (const char *language : {"Afar", "aar", "aa", "aa_ET", "AA-DJ"}) {
        write_file(source(), source_for(language));
        run_editor(source(), [&] {
            EXPECT_THAT(wrong(), IsEmpty()) << "not at the start";
            EXPECT_TRUE(becomes({"Wlet", "wlet", "wlet"})) << language;
            EXPECT_THAT(wrong(panel()->trans1_view), IsEmpty()) << "no dictionary";
            EXPECT_EQ(lang_global.modified, 0);
            EXPECT_THAT(panel()->dirty, Not(testing::Contains(1)));
            edit_ctrl.next(editWin);
            translate(panel()->comment2_view, "hallo zwie");
            translate(view(), "zwei");
            EXPECT_TRUE(wait_for([] { return !wrong(panel()->comment2_view).empty(); }));
            EXPECT_THAT(wrong(), IsEmpty());
            edit_ctrl.prev(editWin);
            EXPECT_TRUE(becomes({"Wlet", "wlet", "wlet"}));
        });
    }
}

TEST_F(Spelling, AWordThatIsTypedIsJudgedWhenItIsLeft)
{
    if (!zel::has_dictionaries())
        return zel_test::missing(missing_library);
    run_editor(source(), [&] {
        ASSERT_TRUE(becomes({"Wlet", "wlet", "wlet"}));
        edit_ctrl.next(editWin);
        zel::text_focus_field(panel(), TEXT_TRANS2);
        type(mainWin, "zwie");
        look();
        EXPECT_THAT(wrong(), IsEmpty());
        type(mainWin, " ");
        EXPECT_TRUE(becomes({"zwie"}));
        type(mainWin, "wl");
        look();
        EXPECT_THAT(wrong(), ElementsAre("zwie"));
        key(mainWin, GDK_KEY_Home);
        EXPECT_TRUE(becomes({"zwie", "wl"}));
        key(mainWin, GDK_KEY_End);
        look();
        EXPECT_THAT(wrong(), ElementsAre("zwie", "wl")) << "the caret alone changes nothing";
        type(mainWin, "e");
        EXPECT_TRUE(becomes({"zwie"}));
        zel::text_focus_field(panel(), TEXT_COMMENT2);
        EXPECT_TRUE(becomes({"zwie", "wle"})) << "another field is another place";
    });
}

TEST_F(Spelling, TheMenuOffersWordsAndTheirChoiceIsOneStep)
{
    if (!zel::has_dictionaries())
        return zel_test::missing(missing_library);
    run_editor(source(), [&] {
        ASSERT_TRUE(becomes({"Wlet", "wlet", "wlet"}));
        const std::string before = text();
        EXPECT_THAT(menu_at(1), ElementsAre("Undo", "Redo", "Check spelling (on)", "-"));
        EXPECT_THAT(menu_at(in_word, "Welt"), ElementsAre("Welt", "Add to dictionary", "-", "Undo",
                                                          "Redo", "Check spelling (on)", "-"));
        EXPECT_EQ(text(), "Hallo Welt, %d hallo <b>wlet</b> UTF wlet");
        EXPECT_EQ(lang_global.modified, 1);
        EXPECT_TRUE(becomes({"wlet", "wlet"}));
        zel::edit_undo();
        EXPECT_EQ(text(), before);
        EXPECT_EQ(lang_global.modified, 0);
        EXPECT_TRUE(becomes({"Wlet", "wlet", "wlet"}));

        translate(view(), "qqqqqq");
        EXPECT_THAT(menu_at(0), testing::Contains("(no suggestions)"));
        translate(view(), "_Wlet");
        menu_at(0, "Welt");
        EXPECT_EQ(text(), "_Welt");
    });
}

TEST_F(Spelling, AnAddedWordIsRightFromThenOn)
{
    if (!zel::has_dictionaries())
        return zel_test::missing(missing_library);
    for (const bool first : {true, false})
        run_editor(source(), [&] {
            if (first) {
                ASSERT_TRUE(becomes({"Wlet", "wlet", "wlet"}));
                menu_at(static_cast<int>(text().rfind("wlet")), "Add to dictionary");
            }
            first_look();
            EXPECT_THAT(wrong(), IsEmpty()) << "in capitals, too";
            EXPECT_EQ(lang_global.modified, 0);
        });
}

// The keys that open the menu mean the caret's word, the mouse the one under it.
TEST_F(Spelling, TheMenuIsForTheWordUnderCaretOrMouse)
{
    if (!zel::has_dictionaries())
        return zel_test::missing(missing_library);
    const auto first_entry = [] {
        GtkWidget *menu = nullptr;
        wait_for([&] {
            for (GList *menus = gtk_menu_get_for_attach_widget(view()); menus != nullptr;
                 menus = menus->next)
                menu = gtk_widget_get_visible(GTK_WIDGET(menus->data)) != 0
                           ? GTK_WIDGET(menus->data)
                           : menu;
            return menu != nullptr;
        });
        if (menu == nullptr)
            return std::string("no menu");
        std::string text =
            gtk_menu_item_get_label(GTK_MENU_ITEM(find_all(menu, GTK_TYPE_MENU_ITEM)[0]));
        gtk_menu_popdown(GTK_MENU(menu));
        return text;
    };
    run_editor(source(), [&] {
        ASSERT_TRUE(becomes({"Wlet", "wlet", "wlet"}));
        zel::text_focus_field(panel(), TEXT_TRANS2);
        put_caret(in_word);
        for (const auto &[letter, modifier] : {std::pair<guint, int>{GDK_KEY_F10, GDK_SHIFT_MASK},
                                               std::pair<guint, int>{GDK_KEY_Menu, 0}}) {
            key(mainWin, letter, modifier);
            EXPECT_EQ(first_entry(), "Welt");
        }
        const auto click_at = [](int offset) {
            GtkTextIter at;
            GdkRectangle place{};
            gtk_text_buffer_get_iter_at_offset(buffer(view()), &at, offset);
            gtk_text_view_get_iter_location(GTK_TEXT_VIEW(view()), &at, &place);
            gint x = 0;
            gint y = 0;
            gtk_text_view_buffer_to_window_coords(GTK_TEXT_VIEW(view()), GTK_TEXT_WINDOW_TEXT,
                                                  place.x + 1, place.y + 2, &x, &y);
            GdkEvent *event = gdk_event_new(GDK_BUTTON_PRESS);
            event->button.window = GDK_WINDOW(g_object_ref(
                gtk_text_view_get_window(GTK_TEXT_VIEW(view()), GTK_TEXT_WINDOW_TEXT)));
            event->button.button = 3;
            event->button.x = x;
            event->button.y = y;
            gtk_main_do_event(event);
            gdk_event_free(event);
        };
        click_at(1);
        EXPECT_EQ(first_entry(), "Undo");
        put_caret(1);
        click_at(in_word);
        EXPECT_EQ(first_entry(), "Welt");
        key(mainWin, GDK_KEY_Menu);
        EXPECT_EQ(first_entry(), "Undo") << "the caret is elsewhere";
    });
}

TEST_F(Spelling, SwitchedOffItStaysOff)
{
    if (!zel::has_dictionaries())
        return zel_test::missing(missing_library);
    run_editor(source(), [&] {
        ASSERT_TRUE(becomes({"Wlet", "wlet", "wlet"}));
        menu_at(in_word, "Check spelling");
        EXPECT_TRUE(becomes({}));
    });
    EXPECT_THAT(read_file("lang.lang-ini"), HasSubstr("\n\n[editor]\nspelling=0\n"));
    run_editor(source(), [&] {
        first_look();
        EXPECT_THAT(wrong(), IsEmpty());
        EXPECT_THAT(menu_at(in_word, "Check spelling"),
                    ElementsAre("Undo", "Redo", "Check spelling (off)", "-"));
        EXPECT_TRUE(becomes({"Wlet", "wlet", "wlet"}));
    });
    EXPECT_THAT(read_file("lang.lang-ini"), HasSubstr("\nspelling=1\n"));
}

TEST_F(Spelling, WithoutADictionaryThereIsNothingOfIt)
{
    const auto expect_nothing = [&] {
        run_editor(source(), [&] {
            first_look();
            EXPECT_THAT(wrong(), IsEmpty());
            EXPECT_THAT(menu_at(in_word), ElementsAre("Undo", "Redo", "-"));
            EXPECT_EQ(status().find("pell"), std::string::npos);
        });
    };
    write_file(source(), source_for("Klingon dialect"));
    expect_nothing();
    EXPECT_THAT(read_file("lang.lang-ini"), Not(HasSubstr("spelling")));
    write_file("lang.lang-ini", "[editor]\nspelling=0\n");
    expect_nothing();
    write_file(source(), source_for("Afar"));
    if (!zel::has_dictionaries())
        return expect_nothing();
    std::filesystem::remove_all("words");
    write_file("words", "no folder");
    expect_nothing();
}

// What is no dictionary may find every word wrong, and no more.
TEST_F(Spelling, ABrokenDictionaryDoesNoHarm)
{
    if (!zel::has_dictionaries())
        return zel_test::missing(missing_library);
    for (const char *bytes : {"", "99999999999\n\n", "\xff\xfe\x00/\n/A/B\n-1"}) {
        write_file("words/hunspell/aa_ET.aff",
                   std::string("SET nonsense\nPFX A Y 9\nSFX ") + bytes);
        write_file("words/hunspell/aa_ET.dic", bytes);
        run_editor(source(), [&] {
            first_look();
            menu_at(in_word, "Add to dictionary");
            look();
            EXPECT_EQ(lang_global.modified, 0);
        });
    }
    ASSERT_TRUE(zel::is_dictionary_there("Afar"));
    std::filesystem::remove_all("words/hunspell");
    EXPECT_EQ(zel::find_dictionary("Afar"), nullptr) << "gone since it was listed";
    EXPECT_FALSE(zel::is_dictionary_there("Afar"));
}
