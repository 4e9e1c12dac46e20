#include "kit/menu-source.h"
#include "kit/run-kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using zel_test::kit;
using zel_test::menu_source;
using zel_test::read_file;
using zel_test::with;
using zel_test::write_file;

class Merge : public testing::Test {
protected:
    Merge() { write_file("base", menu_source); }

    zel_test::kit_run merge(const std::string &ours, const std::string &theirs,
                            const std::string &words = "-o result")
    {
        write_file("ours", ours);
        write_file("theirs", theirs);
        std::filesystem::remove("result");
        return kit("merge " + words + " base ours theirs");
    }
    // What the result changes of the base.
    std::string changes(const std::string &file = "result")
    {
        return kit("diff --places base " + file).out;
    }
    std::vector<std::string> files()
    {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(dir.path()))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_F(Merge, ChangesOfDifferentTextsAndFields)
{
    const auto run =
        merge(with(with(menu_source, "_Öffnen", "_Aufmachen"), "app \"notes\"", "app \"n\""),
              with(with(menu_source, "\"kurz\"", "\"knapp\""), "opens a note", "opens"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out + run.err, "");
    EXPECT_EQ(changes(), "~ source app: \"notes\" -> \"n\"\n"
                         "~ menu:_Open description: \"opens a note\" -> \"opens\"\n"
                         "~ menu:_Open german: \"_Öffnen\" -> \"_Aufmachen\"\n"
                         "~ menu:_Save comment german: \"kurz\" -> \"knapp\"\n");
}

TEST_F(Merge, EachConflictHasALineAndCostsTheReadyMark)
{
    const struct {
        const char *what, *ours, *theirs, *line;
    } cases[] = {
        {"_Öffnen", "_Auf", "_Los", "menu:_Open german: \"_Auf\" here, \"_Los\" there"},
        {"LANG \"german\" { \"_Öffnen\" }", "", "LANG \"german\" { \"x\" }",
         "menu:_Open german: removed here, \"x\" there"},
        {"\"kurz\"", "\"a\"", "\"b\"", "menu:_Save comment german: \"a\" here, \"b\" there"},
        {"opens a note", "a", "b", "menu:_Open description: \"a\" here, \"b\" there"},
        {"READY 1", "READY 1 ROWHEIGHT 1", "READY 1 ROWHEIGHT 2",
         "menu:_Open rowheight: 1 here, 2 there"},
        {"SCREEN_SHOT \"main\"", "SCREEN_SHOT \"a\"", "SCREEN_SHOT \"b\"",
         "menu: screen_shot: \"a\" here, \"b\" there"},
        {"\"german.lang\"", "\"a\"", "\"b\"", "language german file: \"a\" here, \"b\" there"},
        {"app \"notes\"", "app \"a\"", "app \"b\"", "source app: \"a\" here, \"b\" there"},
        {"define format utf8", "define format utf8 colwidth item 1",
         "define format utf8 colwidth item 2", "source colwidth item: 1 here, 2 there"},
        {"GROUP \"help\"", "GROUP \"new\" { ITEM \"i\" { LANG \"l\" { \"a\" } } } GROUP \"help\"",
         "GROUP \"new\" { ITEM \"i\" { LANG \"l\" { \"b\" } } } GROUP \"help\"",
         "new:i l: \"a\" here, \"b\" there"},
    };
    for (const auto &row : cases) {
        const std::string ours = with(menu_source, row.what, row.ours);
        const std::string theirs = with(menu_source, row.what, row.theirs);
        const auto run = merge(ours, theirs);
        EXPECT_EQ(run.status, 1) << row.line;
        EXPECT_EQ(run.err, "ours: conflict: " + std::string(row.line) + "\nours: 1 conflict\n");
        EXPECT_EQ(run.out, "");
        const std::string not_ready = kit("diff ours result").out;
        const bool ready_before = std::string(row.line).find("menu:_") == 0;
        EXPECT_EQ(not_ready, ready_before
                                 ? "~ " + std::string(row.line).substr(0, 10) + " ready: 1 -> 0\n"
                                 : "");
        // Settled for one side it is none, and the mark stays.
        EXPECT_EQ(merge(ours, theirs, "--ours -o result").status, 0);
        EXPECT_EQ(kit("diff ours result").out, "") << row.line;
        EXPECT_EQ(merge(ours, theirs, "--theirs -o result").err, "");
        EXPECT_EQ(kit("diff theirs result").out, "") << row.line;
    }
}

TEST_F(Merge, AnItemChangedHereAndRemovedThere)
{
    const std::string item =
        "  ITEM \"_Save\" {\n    CTIME 1700000000\n    READY 1\n    USED YES { "
        "\"00030:a.c\" }\n    LANG \"english\" { \"_Save\" }\n    LANG "
        "\"german\" { \"Sichern\\n\" \"jetzt\" }\n    COMMENT \"german\" { "
        "\"kurz\" }\n  }\n";
    const std::string removed = with(menu_source, item, "");
    const std::string changed = with(menu_source, "\"kurz\"", "\"knapp\"");
    EXPECT_EQ(merge(changed, removed).err,
              "ours: conflict: menu:_Save comment german: \"knapp\" here, removed there\n"
              "ours: 1 conflict\n");
    EXPECT_EQ(changes(), "~ menu:_Save ready: 1 -> 0\n"
                         "~ menu:_Save comment german: \"kurz\" -> \"knapp\"\n");
    EXPECT_EQ(merge(removed, changed).err,
              "ours: conflict: menu:_Save comment german: removed here, \"knapp\" there\n"
              "ours: 1 conflict\n");
    EXPECT_EQ(changes(), "- menu:_Save\n");
    EXPECT_EQ(merge(removed, changed, "--theirs -o result").status, 0);
    EXPECT_EQ(changes(), "~ menu:_Save comment german: \"kurz\" -> \"knapp\"\n");
    // What a check does to an item does not hold it; that the code uses it again does.
    EXPECT_EQ(merge(with(menu_source, "00030", "00031"), removed).status, 0);
    EXPECT_EQ(changes(), "- menu:_Save\n");
    const std::string no_close = with(menu_source,
                                      "  ITEM \"_Close\" {\n    CTIME 1700000000\n    USED NO\n    "
                                      "LANG \"english\" { \"_Close\" }\n  }\n",
                                      "");
    EXPECT_EQ(merge(with(menu_source, "USED NO", "USED YES"), no_close).err,
              "ours: conflict: menu:_Close used: yes here, removed there\nours: 1 conflict\n");
}

TEST_F(Merge, AGroupRemovedThereStaysForWhatIsNewInIt)
{
    const std::string removed =
        with(menu_source,
             "GROUP \"help\" {\n  ITEM \"_About\" { CTIME 1700000000 USED YES LANG \"english\" { "
             "\"_About\" } }\n}\n",
             "");
    const std::string added =
        with(menu_source, "  ITEM \"_About\"", "  ITEM \"_Tour\" { }\n  ITEM \"_About\"");
    EXPECT_EQ(merge(removed, added).status, 0);
    EXPECT_EQ(changes(), "- help:_About\n+ help:_Tour\n");
    EXPECT_EQ(merge(added, removed).status, 0);
    EXPECT_EQ(changes(), "- help:_About\n+ help:_Tour\n");
    EXPECT_EQ(merge(removed, menu_source).status, 0);
    EXPECT_EQ(changes(), "- help:\n- help:_About\n");
}

// Two checks that both moved everything.
TEST_F(Merge, PlacesAndMarksOfUseAreUnited)
{
    const std::string ours =
        with(with(menu_source, "\"00010:a.c\" \"00020:a.c\"", "\"00020:a.c\" \"00012:a.c\""),
             "USED NO", "USED YES { \"00050:a.c\" }");
    const std::string theirs =
        with(with(menu_source, "\"00010:a.c\" \"00020:a.c\"", "\"00014:a.c\" \"00020:a.c\""),
             "USED YES { \"00030:a.c\" }", "USED NO");
    EXPECT_EQ(merge(ours, theirs).status, 0);
    EXPECT_EQ(changes(), "- menu:_Open place: \"00010:a.c\"\n+ menu:_Open place: \"00012:a.c\"\n"
                         "+ menu:_Open place: \"00014:a.c\"\n~ menu:_Save used: yes -> no\n"
                         "- menu:_Save place: \"00030:a.c\"\n~ menu:_Close used: no -> yes\n"
                         "+ menu:_Close place: \"00050:a.c\"\n");
    EXPECT_THAT(read_file("result"),
                HasSubstr("        \"00020:a.c\"\n        \"00012:a.c\"\n        \"00014:a.c\"\n"));
    // Used on one side, unused on the other: used.
    const std::string unused = with(menu_source, "USED YES { \"00030:a.c\" }", "USED NO");
    EXPECT_EQ(merge(unused, with(menu_source, "00030", "00031")).status, 0);
    EXPECT_EQ(changes(), "- menu:_Save place: \"00030:a.c\"\n+ menu:_Save place: \"00031:a.c\"\n");
}

TEST_F(Merge, NewItemsStandBehindTheirNeighbours)
{
    const auto items = [](const std::string &text) {
        std::string out;
        for (std::size_t at = 0; (at = text.find("  ITEM   \"", at)) != std::string::npos; ++at)
            out += text.substr(at + 10, text.find('"', at + 10) - at - 10) + " ";
        return out;
    };
    const auto add = [](const std::string &before, const std::string &name) {
        return with(menu_source, before, "  ITEM \"" + name + "\" { }\n" + before);
    };
    EXPECT_EQ(merge(add("  ITEM \"_Save\"", "o"), add("  ITEM \"_Close\"", "t")).status, 0);
    EXPECT_EQ(items(read_file("result")), "_Open o _Save t _Close _About ");
    EXPECT_EQ(merge(add("  ITEM \"_Save\"", "o"), add("  ITEM \"_Save\"", "t")).status, 0);
    EXPECT_EQ(items(read_file("result")), "_Open o t _Save _Close _About ");
    EXPECT_EQ(merge(menu_source, add("  ITEM \"_Open\"", "t")).status, 0);
    EXPECT_EQ(items(read_file("result")), "t _Open _Save _Close _About ");
}

TEST_F(Merge, StampsAreTheLaterOnes)
{
    const auto stamped = [](const std::string &stamps, const std::string &item) {
        return with(with(menu_source, "app ", stamps + " app "), "CTIME 1700000000",
                    "CTIME " + item);
    };
    merge(stamped("whatsnew 10 ctime 400 mtime 500 create_date \"ours\"", "1700000005"),
          stamped("whatsnew 30 ctime 300 mtime 600 create_date \"theirs\"", "1700000002"));
    EXPECT_THAT(read_file("result"),
                HasSubstr("create_date \"ours\"\nwhatsnew 30\nctime 400\nmtime 600\n"));
    EXPECT_THAT(read_file("result"), HasSubstr("    CTIME     1700000005\n"));
    // No time of this run is in it: the same files give the same bytes.
    const std::string once = read_file("result");
    std::filesystem::remove("result");
    kit("merge -o result base ours theirs");
    EXPECT_EQ(read_file("result"), once);
}

TEST_F(Merge, WhereTheResultGoes)
{
    const std::string ours = with(menu_source, "_Öffnen", "_Auf");
    const std::string theirs = with(menu_source, "kurz", "knapp");
    EXPECT_EQ(merge(ours, theirs, "").status, 0);
    EXPECT_THAT(read_file("ours"), HasSubstr("knapp"));
    EXPECT_THAT(read_file("ours"), HasSubstr("\n/* EOF ours */\n"));
    ASSERT_EQ(files().size(), 4U);
    EXPECT_THAT(files()[2], HasSubstr("ours-"));
    EXPECT_EQ(read_file(files()[2]), ours);
    std::filesystem::remove(files()[2]);
    // As version control calls it: no backup, and no name of a temporary copy.
    const auto run = merge(ours, with(theirs, "_Öffnen", "_Los"), "--driver po/app.lang-src");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("po/app.lang-src: 1 conflict\n"));
    EXPECT_THAT(files(), ElementsAre("base", "ours", "theirs"));
    EXPECT_THAT(read_file("ours"), HasSubstr("\n/* EOF po/app.lang-src */\n"));
    merge(ours, theirs + "\n/* EOF a *\\/ b */\n", "--driver po/app.lang-src");
    EXPECT_THAT(read_file("ours"), HasSubstr("\n/* EOF a *\\/ b */\n"));
}

// A source of which something is lost in reading is never written over.
TEST_F(Merge, FilesThatDoNotReadWhole)
{
    const std::string recovers = with(menu_source, "TYP 1", "TYP x");
    const std::string cut = "/* !!!! DO NOT EDIT !!!!! */\n" + menu_source;
    for (const std::string &text : {std::string("GROUP {"), recovers, cut,
                                    "<<<<<<< ours\n" + menu_source + ">>>>>>> theirs\n"}) {
        const auto run = merge(menu_source, text, "");
        EXPECT_EQ(run.status, 2);
        EXPECT_THAT(run.err, HasSubstr("theirs:"));
        EXPECT_THAT(run.err, HasSubstr(": error: "));
        EXPECT_EQ(merge(text, menu_source, "").status, 2);
        EXPECT_EQ(read_file("ours"), text);
    }
    // A file that both sides begin has no base: version control gives an empty one.
    write_file("base", "");
    EXPECT_EQ(merge(menu_source, with(menu_source, "kurz", "knapp")).status, 1);
    EXPECT_EQ(kit("diff ours result").out, "~ menu:_Save ready: 1 -> 0\n");
}

} // namespace
