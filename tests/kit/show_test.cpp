#include "kit/menu-source.h"
#include "kit/run-kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using zel_test::kit;
using zel_test::menu_source;
using zel_test::with;
using zel_test::write_file;

class Show : public testing::Test {
protected:
    std::string shown(const std::string &text)
    {
        write_file("app.lang-src", text);
        const auto run = kit("show app.lang-src");
        EXPECT_EQ(run.status, 0) << run.err;
        return run.out;
    }

    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_F(Show, EveryValueOnALineOfItsOwn)
{
    EXPECT_EQ(shown(menu_source), R"(format utf8
app "notes"
default lang "english"
colwidth group 200
colwidth item 200
colwidth ctrl 300

LANGUAGE english
  file "english.lang"
  edit 1

LANGUAGE german
  file "german.lang"
  edit 1

GROUP menu
  screen_shot "main"

ITEM menu:_Open
  description "opens a note"
  typ 1
  ready 1
  used yes
  english "_Open"
  german "_Öffnen"

ITEM menu:_Save
  ready 1
  used yes
  english "_Save"
  german "Sichern\n"
    "jetzt"
  comment german "kurz"

ITEM menu:_Close
  english "_Close"

GROUP help

ITEM help:_About
  used yes
  english "_About"
)");
}

TEST_F(Show, IsTheSameAfterACheckAndHoweverTextsAreCut)
{
    const std::string before = shown(menu_source);
    EXPECT_EQ(shown(with(with(menu_source, "00010:a.c", "00011:b.c"), "app ", "mtime 5 app ")),
              before);
    EXPECT_EQ(
        shown(with(menu_source, "\"Sichern\\n\" \"jetzt\"", "\"Sich\" \"ern\\nje\" \"tzt\" \"\"")),
        before);
    EXPECT_THAT(shown(with(menu_source, "\"kurz\"", "\"\\n\" \"\\n\" \"a\\tb\\\"\\r\\\\\"")),
                HasSubstr("  comment german \"\\n\"\n    \"\\n\"\n    \"a\\tb\\\"\\r\\\\\"\n"));
}

// Version control gives up a whole run when its converter fails on one old file.
TEST_F(Show, AFileThatIsNoSource)
{
    const std::string text = "<<<<<<< HEAD\n" + menu_source;
    write_file("app.lang-src", text);
    EXPECT_EQ(kit("show app.lang-src").status, 2);
    const auto run = kit("show --or-file app.lang-src");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, text);
    EXPECT_THAT(run.err, HasSubstr("app.lang-src:1:1: error: "));
    EXPECT_EQ(kit("show --or-file none").status, 2);
}

} // namespace
