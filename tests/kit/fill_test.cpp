#include "kit/menu-source.h"
#include "kit/run-kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

using testing::HasSubstr;
using zel_test::kit;
using zel_test::menu_source;
using zel_test::read_file;
using zel_test::with;
using zel_test::write_file;

// Of three items one has its German text; one is empty, one is not there.
const std::string source = R"(define format utf8
define file "english.lang" lang "english" 200 200 1
define file "german.lang" lang "german" 200 200 1
GROUP "menu" {
  ITEM "_Open" { READY 1 USED YES LANG "english" { "_Open" } LANG "german" { "_Öffnen" } }
  ITEM "_Save" { READY 1 USED YES LANG "english" { "_Save" } LANG "german" { "" } }
  ITEM "about" { READY 1 USED YES LANG "english" { "About\n" "us" } }
  ITEM "_Quit" { READY 1 USED YES }
}
)";

std::string other(const std::string &items)
{
    return "define format utf8\nGROUP \"menu\" { ITEM \"_Open\" { LANG \"german\" { \"falsch\" } "
           "} " +
           items + "}\n";
}

class Fill : public testing::Test {
protected:
    Fill() { write_file("app.lang-src", source); }

    std::string filled(const std::string &words, const std::string &said)
    {
        const auto run = kit("fill -o out.lang-src " + words + " app.lang-src");
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.out, "english: 0 by key, 0 by reference text, 1 still missing\n" + said);
        EXPECT_EQ(run.err, "");
        const std::string changes = kit("diff app.lang-src out.lang-src").out;
        std::filesystem::remove("out.lang-src");
        return changes;
    }

    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_F(Fill, ByKeyThenByReferenceText)
{
    write_file(
        "a.lang-src",
        other(
            "ITEM \"_Save\" { LANG \"german\" { \"Sichern\" } }"
            "ITEM \"x\" { LANG \"english\" { \"_Save\" } LANG \"german\" { \"falsch\" } }"
            "ITEM \"y\" { LANG \"english\" { \"About\\nus\" } LANG \"german\" { \" \" } }"
            "ITEM \"z\" { LANG \"english\" { \"About\\nus\" } LANG \"german\" { \"Über\\n\" "
            "\"uns\" } }"
            "ITEM \"zz\" { LANG \"english\" { \"About\\nus\" } LANG \"german\" { \"falsch\" } }"));
    const std::string said = "german: 1 by key, 1 by reference text, 1 still missing\n";
    const std::string changes = "~ menu:_Save ready: 1 -> 0\n~ menu:_Save changed: no -> yes\n"
                                "~ menu:_Save german: \"\" -> \"Sichern\"\n"
                                "~ menu:about ready: 1 -> 0\n~ menu:about changed: no -> yes\n"
                                "+ menu:about german: \"Über\\nuns\"\n";
    EXPECT_EQ(filled("--from a.lang-src", said), changes);
    // An item without a text in the default language is translated from its name.
    write_file("b.lang-src", other("ITEM \"_Save\" { LANG \"german\" { \"falsch\" } }"
                                   "ITEM \"_Quit\" { LANG \"german\" { \"Ende\" } }"));
    EXPECT_EQ(filled("--from a.lang-src --from b.lang-src",
                     "german: 2 by key, 1 by reference text, 0 still missing\n"),
              changes + "~ menu:_Quit ready: 1 -> 0\n~ menu:_Quit changed: no -> yes\n"
                        "+ menu:_Quit german: \"Ende\"\n");
}

// A key in a later file counts more than a reference text in an earlier one.
TEST_F(Fill, OtherFormats)
{
    write_file("old.lang-src",
               with(with(source, "{ \"\" }", "{ \"Sichern\" }"), "{ \"About\\n\" \"us\" }",
                    "{ \"About\\n\" \"us\" } LANG \"german\" { \"Über uns\" }"));
    write_file(
        "de.po",
        "msgid \"\"\nmsgstr \"Language: de\\nContent-Type: text/plain; charset=UTF-8\\n\"\n\n"
        "msgid \"_Save\"\nmsgstr \"_Speichern\"\n\n"
        "#, fuzzy\nmsgid \"_Quit\"\nmsgstr \"Raten\"\n");
    EXPECT_EQ(filled("--from de.po", "german: 0 by key, 1 by reference text, 2 still missing\n"),
              "~ menu:_Save ready: 1 -> 0\n~ menu:_Save changed: no -> yes\n"
              "~ menu:_Save german: \"\" -> \"_Speichern\"\n");
    for (const std::string format : {"po", "xliff", "xliff2", "csv"}) {
        std::filesystem::remove_all("files");
        std::filesystem::create_directory("files");
        ASSERT_EQ(kit("export --format " + format + " -o files old.lang-src").status, 0);
        std::string file =
            format == "csv" ? "files/old.csv" : "files/german." + format.substr(0, 5);
        if (format == "xliff") { // as other programs call it
            std::filesystem::rename(file, "files/german.xlf");
            file = "files/german.xlf";
        }
        EXPECT_EQ(filled("--from de.po --from " + file,
                         "german: 2 by key, 0 by reference text, 1 still missing\n"),
                  "~ menu:_Save ready: 1 -> 0\n~ menu:_Save changed: no -> yes\n"
                  "~ menu:_Save german: \"\" -> \"Sichern\"\n"
                  "~ menu:about ready: 1 -> 0\n~ menu:about changed: no -> yes\n"
                  "+ menu:about german: \"Über uns\"\n")
            << format;
    }
}

TEST_F(Fill, WritesOnlyWhatIsWantedAndNew)
{
    write_file("a.lang-src", other("ITEM \"_Save\" { LANG \"german\" { \"Sichern\" } }"));
    EXPECT_EQ(kit("fill --from app.lang-src app.lang-src").status, 0);
    EXPECT_EQ(read_file("app.lang-src"), source);
    EXPECT_EQ(kit("fill --from a.lang-src app.lang-src").status, 0);
    EXPECT_THAT(kit("show app.lang-src").out, HasSubstr("german \"Sichern\""));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 3); // with the backup
}

TEST_F(Fill, AnotherEncodingAndFaults)
{
    write_file("a.lang-src", with(other("ITEM \"_Save\" { LANG \"german\" { \"S\xFC\xDF\" } }"
                                        "ITEM \"_Quit\" { LANG \"german\" { \"Ende\" } }"),
                                  "utf8", "ascii"));
    const auto run = kit("fill --from a.lang-src app.lang-src");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "a.lang-src: left out 1 text in another encoding\n");
    EXPECT_THAT(run.out, HasSubstr("german: 1 by key, 0 by reference text, 2 still missing\n"));
    write_file("klingon.po", "msgid \"_Save\"\nmsgstr \"Sichern\"\n");
    const auto unknown = kit("fill --from klingon.po app.lang-src");
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.err, "klingon.po: unknown language \"klingon\"\n");
    EXPECT_EQ(kit("fill --from klingon.po --language german app.lang-src").status, 0);
    EXPECT_THAT(kit("show app.lang-src").out, HasSubstr("german \"Sichern\""));
    EXPECT_EQ(kit("fill --from none.po app.lang-src").status, 2);
    EXPECT_EQ(kit("fill --from none.lang-src app.lang-src").status, 2);
    write_file("bad.po", "msgid \"a\nmsgstr\n");
    const auto bad = kit("fill --from bad.po app.lang-src");
    EXPECT_EQ(bad.status, 2);
    EXPECT_THAT(bad.err, HasSubstr("bad.po:1: error: "));
}

} // namespace
