// The word lint: its lines, forms, choices and status.

#include "kit/run-kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using zel_test::kit;
using zel_test::write_file;

constexpr const char *faulty = R"(define format utf8
define file "e.lang" lang "english" 200 200 1
GROUP "main" {
  ITEM "%d %s" {
    USED YES READY 1
    LANG "english" { "%d %s" }
    LANG "german" { "%s" }
  }
  ITEM "Name:" {
    USED YES READY 1
    LANG "english" { "Name:" }
    LANG "german" { "Name" }
  }
}
define file "g.lang" lang "german" 200 200 1
define file "g.lang" lang "french" 200 200 1
)";

class Lint : public testing::Test {
protected:
    Lint() { write_file("app.lang-src", faulty); }
    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_F(Lint, IsALinePerFindingInTheOrderOfTheFile)
{
    const auto result = kit("lint app.lang-src");
    EXPECT_EQ(result.out,
              "app.lang-src:4:3: warning: french: there is no text [missing]\n"
              "app.lang-src:7:5: error: german: the item asks for \"%d %s\", the text for \"%s\" "
              "[format]\n"
              "app.lang-src:9:3: warning: french: there is no text [missing]\n"
              "app.lang-src:12:5: warning: german: there is no sign at the end, the reference has "
              "a colon [ending]\n"
              "app.lang-src:16:8: error: french: the file \"g.lang\" is that of german already "
              "[duplicate]\n");
    EXPECT_EQ(result.err, "2 errors, 3 warnings, 0 notes in 1 file\n");
    EXPECT_EQ(result.status, 1);
}

TEST_F(Lint, StatusIsThatOfTheLevelAskedFor)
{
    EXPECT_EQ(kit("lint --without format,duplicate app.lang-src").status, 0);
    EXPECT_EQ(kit("lint --without format,duplicate --fail-on warning app.lang-src").status, 1);
    EXPECT_EQ(kit("lint --only same,length --fail-on info app.lang-src").status, 0);
    EXPECT_EQ(kit("lint app.lang-src none.lang-src").status, 2);
    EXPECT_THAT(kit("lint none.lang-src").err,
                StartsWith("lang-kit: none.lang-src: the file cannot be read: "
                           "No such file or directory\n"));
}

TEST_F(Lint, LanguagesAskedForAreTheOnlyOnes)
{
    const auto result = kit("lint --language german app.lang-src");
    EXPECT_THAT(result.out, Not(HasSubstr("french")));
    EXPECT_THAT(result.out, HasSubstr("[format]"));
    const auto unknown = kit("lint --language gorman app.lang-src");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.err, HasSubstr("no source defines the language \"gorman\"\n"));
}

TEST_F(Lint, ListsItsRules)
{
    const auto result = kit("lint --rules");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, StartsWith("syntax       error    "));
    EXPECT_THAT(result.out, HasSubstr("\nnot-ready    info     "));
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 29);
}

TEST_F(Lint, WhatTheReaderSaysIsAFinding)
{
    write_file("bad.lang-src", "define format utf8\nGROUP \"a\" {\n  ITEM 7\n");
    const auto result = kit("lint bad.lang-src app.lang-src --only syntax");
    EXPECT_EQ(result.out, "bad.lang-src:3:8: error: ITEM needs a name in quotes [syntax]\n");
    EXPECT_EQ(result.err, "1 error, 0 warnings, 0 notes in 2 files\n");
    EXPECT_EQ(result.status, 1);
    // Reading goes on behind some of them.
    write_file("odd.lang-src", std::string("define format utf8\n") + faulty);
    EXPECT_THAT(kit("lint odd.lang-src").out,
                StartsWith("odd.lang-src:2:8: error: a second FORMAT has no effect [syntax]\n"
                           "odd.lang-src:5:3: warning: french: "));
    write_file("cut.lang-src", "/* !!!! DO NOT EDIT !!!!! */\n");
    EXPECT_THAT(kit("lint cut.lang-src").out,
                StartsWith("cut.lang-src: error: the line that names"));
    write_file("nul.lang-src", "define format utf8\ngroup \"a\" { item \"b\\0c\" { used no } }\n");
    EXPECT_EQ(kit("lint --only encoding nul.lang-src").out,
              "nul.lang-src:2:18: error: a NUL byte ends the text here, and what follows is lost "
              "[encoding]\n");
}

TEST_F(Lint, ConflictMarkersAreNamed)
{
    write_file("app.lang-src", "GROUP \"a\" {\n<<<<<<< HEAD\n  ITEM \"b\" { }\n=======\n"
                               "  ITEM \"c\" { }\n>>>>>>> side\n}\n");
    EXPECT_EQ(kit("lint app.lang-src").out,
              "app.lang-src:2:1: error: a conflict marker of version control: <<<<<<< HEAD "
              "[syntax]\n"
              "app.lang-src:4:1: error: a conflict marker of version control: ======= [syntax]\n"
              "app.lang-src:6:1: error: a conflict marker of version control: >>>>>>> side "
              "[syntax]\n");
}

TEST_F(Lint, Json)
{
    EXPECT_THAT(kit("lint --format json --only format,missing app.lang-src").out,
                StartsWith("[\n{\"file\": \"app.lang-src\", \"line\": 4, \"column\": 3, \"level\": "
                           "\"warning\", \"rule\": \"missing\", \"group\": \"main\", \"item\": "
                           "\"%d %s\", \"language\": \"french\", \"message\": \"there is no "
                           "text\"},\n"));
    EXPECT_EQ(kit("lint --format json --only same app.lang-src").out, "[]\n");
    EXPECT_EQ(kit("lint --only adjacent --code none app.lang-src").status, 2);
}

TEST_F(Lint, WorkflowCommandsAreEscaped)
{
    write_file("a,b:c.lang-src", faulty);
    EXPECT_EQ(
        kit("lint --format github --only format a,b:c.lang-src").out,
        "::error file=a%2Cb%3Ac.lang-src,line=7,col=5,title=format::german: the item asks for "
        "\"%25d %25s\", the text for \"%25s\"\n");
}

// A script judges the other form: it is there for other programs.
TEST_F(Lint, SarifHoldsWhatItsReadersNeed)
{
    write_file("a file.lang-src", faulty);
    const auto check = [](const std::string &sources, int status, const std::string &holds) {
        ASSERT_EQ(kit("lint --format sarif " + sources + " >out.sarif").status, status);
        EXPECT_EQ(std::system(("python3 '" LANG_SOURCE_ROOT "/tests/kit/check-sarif' out.sarif " +
                               holds + " >said 2>&1")
                                  .c_str()),
                  0)
            << zel_test::read_file("said");
    };
    check("'a file.lang-src'", 1, "5 'a%20file.lang-src'");
    check("'a file.lang-src' none.lang-src", 2, "5 'a%20file.lang-src' none.lang-src");
}

TEST_F(Lint, AFindingIsOneLineWhateverItsNames)
{
    write_file("app.lang-src", "define format utf8 file \"e\" lang \"english\" 200 200 1\n"
                               "GROUP \"a\\nb\" { ITEM \"c\\n\\\"d\" { USED YES LANG \"x\\ny\" { } "
                               "LANG \"english\" { \"%NEW\\nLINE% %SYM%\" } } }\n");
    const auto result = kit("lint --only undefined,duplicate,symbol app.lang-src");
    EXPECT_EQ(result.out, "app.lang-src:2:41: error: x\\ny: the language has no definition, so its "
                          "text is never used [undefined]\n"
                          "app.lang-src:2:57: error: english: the item has no symbol \"%SYM%\" "
                          "[symbol]\n");
}

} // namespace
