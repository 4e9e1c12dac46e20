#include "kit/menu-source.h"
#include "kit/run-kit.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using zel_test::kit;
using zel_test::menu_source;
using zel_test::with;
using zel_test::write_file;

class Diff : public testing::Test {
protected:
    Diff() { write_file("old", menu_source); }

    // What is printed for a change of the source.
    std::string lines(const std::string &text, const std::string &words = "")
    {
        write_file("new", text);
        const auto run = kit("diff " + words + " old new");
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.status, run.out.empty() || run.out == "[]\n" ? 0 : 1);
        return run.out;
    }

    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_F(Diff, EveryFieldHasALine)
{
    const struct {
        std::string what, by, line;
    } cases[] = {
        {"define format utf8", "define format ascii", "~ source format: utf8 -> ascii\n"},
        {"app \"notes\"", "app \"no\\\"tes\"", "~ source app: \"notes\" -> \"no\\\"tes\"\n"},
        {"default lang \"english\"", "default lang \"german\"",
         "~ source default lang: \"english\" -> \"german\"\n"},
        {"app ", "colwidth group 1 colwidth item 2 colwidth ctrl 3 app ",
         "~ source colwidth group: 200 -> 1\n~ source colwidth item: 200 -> 2\n"
         "~ source colwidth ctrl: 300 -> 3\n"},
        {"\"german.lang\" lang \"german\" 200 200 1", "\"g.lang\" lang \"german\" 1 2 0",
         "~ language german file: \"german.lang\" -> \"g.lang\"\n"
         "~ language german value 1: 200 -> 1\n~ language german value 2: 200 -> 2\n"
         "~ language german edit: 1 -> 0\n"},
        {"lang \"german\" 200", "lang \"french\" 200", "- language german\n+ language french\n"},
        {"SCREEN_SHOT \"main\"", "SCREEN_SHOT \"\"", "~ menu: screen_shot: \"main\" -> \"\"\n"},
        {"VISIBLE 1\n  SCREEN", "VISIBLE 0 SCREEN", "~ menu: visible: 1 -> 0\n"},
        {"opens a note", "opens", "~ menu:_Open description: \"opens a note\" -> \"opens\"\n"},
        {"TYP 1", "TYP 2 VISIBLE 0 ROWHEIGHT 30 CHANGED",
         "~ menu:_Open typ: 1 -> 2\n~ menu:_Open rowheight: 20 -> 30\n"
         "~ menu:_Open visible: 1 -> 0\n~ menu:_Open changed: no -> yes\n"},
        {"READY 1", "READY 0", "~ menu:_Open ready: 1 -> 0\n"},
        {"USED NO", "USED YES", "~ menu:_Close used: no -> yes\n"},
        {"\"Sichern\\n\" \"jetzt\"", "\"Speichern\"",
         "~ menu:_Save german: \"Sichern\\njetzt\" -> \"Speichern\"\n"},
        {"LANG \"german\" { \"_Öffnen\" }", "", "- menu:_Open german: \"_Öffnen\"\n"},
        {"\"_Close\" }", "\"_Close\" } LANG \"german\" { \"Zu\" }",
         "+ menu:_Close german: \"Zu\"\n"},
        {"\"kurz\"", "\"\"", "~ menu:_Save comment german: \"kurz\" -> \"\"\n"},
        {"ITEM \"_About\"", "ITEM \"a\\nb:c\"", "- help:_About\n+ help:a\\nb:c\n"},
        {"GROUP \"help\"", "GROUP \"he:lp\"",
         "- help:\n- help:_About\n+ he\\:lp:\n+ he\\:lp:_About\n"},
    };
    for (const auto &row : cases)
        EXPECT_EQ(lines(with(menu_source, row.what, row.by)), row.line) << row.what;
}

// What is no difference by meaning.
TEST_F(Diff, OrderStampsPlacesAndCutsAreNone)
{
    const std::vector<std::string> alike = {
        with(menu_source, "app ", "whatsnew 1 ctime 2 mtime 3 create_date \"x\" version 7 app "),
        with(menu_source, "CTIME 1700000000", "CTIME 1"),
        with(menu_source, "{ \"00010:a.c\" \"00020:a.c\" }", "{ \"00011:a.c\" }"),
        with(menu_source, "\"Sichern\\n\" \"jetzt\"", "\"Sich\" \"ern\\njetzt\" \"\""),
        with(menu_source, "LANG \"english\" { \"_Open\" }\n    LANG \"german\" { \"_Öffnen\" }",
             "LANG \"german\" { \"_Öffnen\" } LANG \"english\" { \"_Open\" }"),
        with(menu_source, "CTIME 1700000000\n    USED NO", "DESCRIPTION \"none\" USED NO"),
        with(with(menu_source,
                  "GROUP \"help\" {\n  ITEM \"_About\" { CTIME 1700000000 USED YES "
                  "LANG \"english\" { \"_About\" } }\n}\n",
                  ""),
             "GROUP",
             "GROUP \"help\" { ITEM \"_About\" { USED YES LANG \"english\" { \"_About\" } } } "
             "GROUP"),
    };
    for (const std::string &text : alike)
        EXPECT_EQ(lines(text), "");
}

TEST_F(Diff, PlacesAreToldWhenWanted)
{
    const std::string moved = with(menu_source, "{ \"00010:a.c\" \"00020:a.c\" }",
                                   "{ \"00020:a.c\" \"00011:a.c\" \"00020:a.c\" }");
    EXPECT_EQ(lines(moved, "--places"), "- menu:_Open place: \"00010:a.c\"\n"
                                        "+ menu:_Open place: \"00011:a.c\"\n"
                                        "+ menu:_Open place: \"00020:a.c\"\n");
}

// A name that is there twice: the first is compared with the first, the second with the second.
TEST_F(Diff, DoubledAndEmptyNames)
{
    write_file("old", "GROUP \"\" { ITEM \"\" { LANG \"\" { \"a\" } LANG \"\" { \"b\" } }"
                      " ITEM \"\" { LANG \"x\" { \"c\" } } }");
    EXPECT_EQ(lines("GROUP \"\" { ITEM \"\" { LANG \"\" { \"a\" } LANG \"\" { \"B\" } }"
                    " ITEM \"\" { LANG \"x\" { \"C\" } } ITEM \"\" { } }"),
              "~ : : \"b\" -> \"B\"\n~ : x: \"c\" -> \"C\"\n+ :\n");
}

TEST_F(Diff, Json)
{
    EXPECT_EQ(lines(with(menu_source, "\"kurz\"", "\"k\\\"\\tz\""), "--format json"),
              "[\n  {\"change\": \"changed\", \"group\": \"menu\", \"item\": \"_Save\", "
              "\"language\": \"german\", \"field\": \"comment\", \"old\": \"kurz\", "
              "\"new\": \"k\\\"\\tz\"}\n]\n");
    EXPECT_EQ(lines(with(with(menu_source, "READY 1", "READY 2"), "GROUP \"help\" {",
                         "GROUP \"x\" {} GROUP \"help\" {"),
                    "--format json"),
              "[\n  {\"change\": \"changed\", \"group\": \"menu\", \"item\": \"_Open\", "
              "\"language\": null, \"field\": \"ready\", \"old\": 1, \"new\": 2},\n"
              "  {\"change\": \"added\", \"group\": \"x\", \"item\": null, \"language\": null, "
              "\"field\": \"group\", \"old\": null, \"new\": null}\n]\n");
    EXPECT_EQ(lines(menu_source, "--format json"), "[]\n");
}

} // namespace
