// The word stat: its table and its JSON.

#include "kit/run-kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using zel_test::kit;
using zel_test::write_file;

class Stat : public testing::Test {
protected:
    Stat()
    {
        write_file("app.lang-src",
                   "define format utf8\n"
                   "define file \"e\" lang \"english\" 200 200 1\n"
                   "file \"d\" lang \"日本語\" 200 200 1\n"
                   "GROUP \"a\" {\n"
                   "ITEM \"Open it\" { READY 1 USED YES LANG \"日本語\" { \"開く\" } }\n"
                   "ITEM \"Close\" { USED YES LANG \"english\" { \"Close\" } }\n"
                   "ITEM \"x\" { USED NO }\n}\n");
    }
    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_F(Stat, IsATable)
{
    const auto result = kit("stat app.lang-src");
    EXPECT_EQ(
        result.out,
        "app.lang-src: 2 of 3 items are used, the reference is english\n"
        "language                                translated  missing  empty  same  ready  words"
        "  characters\n"
        "english   ██████████··········  50.0 %           1        1      0     -      0      1"
        "           5\n"
        "日本語    ██████████··········  50.0 %           1        1      0     0      1      2"
        "           2\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST_F(Stat, Json)
{
    const auto result = kit("stat --format json app.lang-src");
    EXPECT_EQ(result.out.substr(result.out.find(",\n") + 2),
              "{\"file\": \"app.lang-src\", \"language\": \"日本語\", \"reference\": false, "
              "\"items\": 2, \"translated\": 1, \"missing\": 1, \"empty\": 0, \"same\": 0, "
              "\"ready\": 1, \"words\": 2, \"characters\": 2, \"words_left\": 1, "
              "\"characters_left\": 5}\n]\n");
    write_file("empty.lang-src", "");
    EXPECT_EQ(kit("stat --format json empty.lang-src").out, "[]\n");
}

TEST_F(Stat, OnlyWhatIsCompleteIsOneHundredPercent)
{
    std::string source = "define file \"e\" lang \"english\" 200 200 1 GROUP \"a\" {\n";
    for (int i = 0; i < 3000; ++i)
        source += "ITEM \"i" + std::to_string(i) + "\" { USED YES " +
                  (i == 7 ? "}\n" : "LANG \"english\" { \"x\" } }\n");
    write_file("big.lang-src", source + "}\n");
    EXPECT_THAT(kit("stat big.lang-src").out,
                HasSubstr("███████████████████▉  99.9 %       2,999"));
}

TEST_F(Stat, LanguagesBelowAreTold)
{
    const auto result = kit("stat --at-least 50.1 app.lang-src");
    EXPECT_EQ(result.out, "english: 50.0 % of 2 items, 50.1 wanted\n"
                          "日本語: 50.0 % of 2 items, 50.1 wanted\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(kit("stat --at-least 50 app.lang-src").status, 0);
    EXPECT_EQ(kit("stat --at-least 1 --ready app.lang-src").out,
              "english: 0.0 % ready of 2 items, 1 wanted\n");
    EXPECT_EQ(kit("stat --at-least 60 --language english app.lang-src app.lang-src").out,
              "app.lang-src: english: 50.0 % of 2 items, 60 wanted\n"
              "app.lang-src: english: 50.0 % of 2 items, 60 wanted\n");
    for (const char *words : {"--at-least 101", "--at-least x", "--language french"})
        EXPECT_EQ(kit(std::string("stat app.lang-src ") + words).status, 2) << words;
}

TEST_F(Stat, WhatCannotBeReadIsToldAndTheRestIsCounted)
{
    const auto result = kit("stat none.lang-src app.lang-src");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("none.lang-src: error: the file cannot be read"));
    EXPECT_THAT(result.out, HasSubstr("日本語"));
    EXPECT_EQ(kit("stat").status, 2);
}

} // namespace
