#include "kit/menu-source.h"
#include "kit/run-kit.h"
#include "kit/support/pseudo-text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

using testing::HasSubstr;
using zel::kit::pseudo_how;
using zel::kit::pseudo_text;
using zel_test::kit;
using zel_test::menu_source;
using zel_test::read_file;
using zel_test::with;
using zel_test::write_file;

std::string pseudo(const std::string &reference, pseudo_how how = {0, true})
{
    const item_guard item(alloc_item());
    return pseudo_text(reference, item.get(), how);
}

TEST(PseudoText, WhatIsNoWordStays)
{
    const struct {
        const char *reference, *expected;
    } cases[] = {
        {"Save", "[Šåṽé]"},
        {"_Save", "[_Såṽé]"},
        {"a __b", "[å __ƀ]"},
        {"%1$d of %2$-5.3ld at 5%%", "[%1$d öƒ %2$-5.3ld åţ 5%%]"},
        {"%s%x", "[%s%x]"},
        {"50%off now", "[50%oƒƒ ñöŵ]"},
        {"User %user_name% is in", "[Üšéŕ %user_name% íš íñ]"},
        {"<b>no</b> <i x='a'>x</i> &amp; &lt;y", "[<b>ñö</b> <i x='a'>ẋ</i> &amp; &lt;ý]"},
        {"a < b & c", "[å < ƀ & ç]"},
        {"tab\\tnew\\x1bend", "[ţåƀ\\tñéŵ\\x1beñď]"},
        {"see www.a.org or http://b.c/d or (/usr/lib) or me@x.org",
         "[šéé www.a.org öŕ http://b.c/d öŕ (/usr/lib) öŕ me@x.org]"},
        {"and/or", "[åñď/öŕ]"},
        {" \n two\nlines\n ", " \n [ţŵö\nļíñéš]\n "},
        {"größe ファイル", "[ĝŕößé ファイル]"},
        {"Really?", "[Ŕéåļļý]?"},
        {"Open \"%s\"...", "[Öṕéñ \"%s\"]..."},
        {"He said \"no.\"", "[Ĥé šåíď \"ñö].\""},
        {"<b>Stop!</b>", "[<b>Šţöṕ]!</b>"},
        {"(All of it.)", "([Åļļ öƒ íţ].)"},
        {"a)", "[å)]"},
        {"", ""},
        {" \n", " \n"},
    };
    for (const auto &row : cases)
        EXPECT_EQ(pseudo(row.reference), row.expected);
}

TEST(PseudoText, GrowsByDoubledLetters)
{
    EXPECT_EQ(pseudo("Cancel", {40, false}), "[Caanceeel]");
    EXPECT_EQ(pseudo("banana", {100, false}), "[baaanaaanaaa]");
    EXPECT_EQ(pseudo("hmm", {34, false}), "[hmmmm]");
    EXPECT_EQ(pseudo("%d", {400, true}), "[%d]");
    EXPECT_EQ(pseudo("日本", {50, true}), "[日本本]");
    const std::string text = "The words that must all stand in the note.";
    EXPECT_EQ(pseudo(text, {40, false}).size(), text.size() * 14 / 10 + 1 + 2);
}

class Pseudo : public testing::Test {
protected:
    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_F(Pseudo, AddsALanguageAndRenewsIt)
{
    write_file("app.lang-src", with(menu_source, "\"_About\" }", "\"\" }"));
    const auto run = kit("pseudo --grow 0 -o new.lang-src app.lang-src");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "pseudo: 4 new texts\n");
    EXPECT_EQ(kit("diff app.lang-src new.lang-src").out,
              "+ language pseudo\n"
              "+ menu:_Open pseudo: \"[_Oṕéñ]\"\n"
              "+ menu:_Save pseudo: \"[_Såṽé]\"\n"
              "+ menu:_Close pseudo: \"[_Cļöšé]\"\n"
              "+ help:_About pseudo: \"\"\n"); // what is left out stays out
    // Again: nothing is new, nothing is written.
    EXPECT_EQ(kit("pseudo --grow 0 new.lang-src").out, "pseudo: 0 new texts\n");
    write_file("new.lang-src",
               with(read_file("new.lang-src"), "\"_Save\"\n    }", "\"S_tore\"\n    }"));
    EXPECT_EQ(kit("pseudo --grow 0 new.lang-src").out, "pseudo: 1 new text\n");
    EXPECT_THAT(kit("show new.lang-src").out, HasSubstr("pseudo \"[Š_töŕé]\"\n"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 3); // with the backup
}

// Letters beyond ASCII would be other bytes in the application's encoding.
TEST_F(Pseudo, ASourceInAsciiGetsNoAccents)
{
    write_file("app.lang-src", with(menu_source, "utf8", "ascii"));
    EXPECT_EQ(kit("pseudo --name long --grow 50 app.lang-src").status, 0);
    EXPECT_THAT(kit("show app.lang-src").out, HasSubstr("long \"[_Clooseee]\"\n"));
}

TEST_F(Pseudo, WrongUse)
{
    write_file("app.lang-src", menu_source);
    for (const char *words : {"--grow x", "--grow -1", "--grow 1001", "--grow 4.5", "--name a/b",
                              "--name ''", "--name English"}) {
        const auto run = kit(std::string("pseudo ") + words + " app.lang-src");
        EXPECT_EQ(run.status, 2) << words;
        EXPECT_THAT(run.err, HasSubstr("lang-kit pseudo: "));
    }
    EXPECT_EQ(read_file("app.lang-src"), menu_source);
    write_file("app.lang-src", with(menu_source, "TYP 1", "TYP x"));
    EXPECT_EQ(kit("pseudo app.lang-src").status, 2);
}

// Whatever the texts are, lint finds nothing new in the language but that some are long.
using PseudoSlow = Pseudo;
TEST_F(PseudoSlow, LintFindsNothing)
{
    std::filesystem::copy_file(LANG_SOURCE_ROOT "/examples/notes.lang-src", "app.lang-src");
    for (const char *grow : {"0", "40", "300"}) {
        EXPECT_EQ(kit(std::string("pseudo --grow ") + grow + " app.lang-src").status, 0);
        EXPECT_EQ(kit("lint --language pseudo --fail-on info --without length,unused,not-ready "
                      "app.lang-src")
                      .out,
                  "");
    }
}

} // namespace
