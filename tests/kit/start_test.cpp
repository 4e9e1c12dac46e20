#include "kit/run-kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using zel_test::kit;

class Start : public testing::Test {
protected:
    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_F(Start, MakesASourceWithItsLanguages)
{
    const auto made = kit("start --default english --language german app.lang-src");
    EXPECT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(made.out + made.err, "");
    const std::string text = zel_test::read_file("app.lang-src");
    EXPECT_THAT(text, HasSubstr("define format utf8\n"));
    EXPECT_THAT(text, HasSubstr("default lang \"english\"\n"));
    EXPECT_THAT(text, HasSubstr("define file \"english.lang\" lang \"english\" 200 200 1\n"
                                "define file \"german.lang\" lang \"german\" 200 200 1\n"));
    // Never over a file that is there.
    const auto again = kit("start app.lang-src");
    EXPECT_EQ(again.status, 2);
    EXPECT_EQ(again.err, "lang-kit start: \"app.lang-src\" is there already\n");
    EXPECT_EQ(zel_test::read_file("app.lang-src"), text);
}

TEST_F(Start, WrongUseIsOneLineAndStatusTwo)
{
    const struct {
        const char *words, *line;
    } cases[] = {
        {"", "lang-kit: a word is missing; lang-kit --help shows them\n"},
        {"strat", "lang-kit: unknown word \"strat\"; lang-kit --help shows them\n"},
        {"--no", "lang-kit: unknown option \"--no\"; lang-kit --help shows them\n"},
        {"start --bogus a", "lang-kit start: Unknown option --bogus\n"},
        {"start --language", "lang-kit start: Missing argument for --language\n"},
        {"start a b", "lang-kit start: one file too many: \"b\"\n"},
        {"start --language a/b f", "lang-kit start: \"a/b\" is no name for a language\n"},
        {"start --language english f", "lang-kit start: \"english\" is there twice\n"},
    };
    for (const auto &row : cases) {
        const auto result = kit(row.words);
        EXPECT_EQ(result.status, 2) << row.words;
        EXPECT_EQ(result.err, row.line);
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(kit("start none/such.lang-src").status, 2);
    EXPECT_EQ(kit("--help").status, 0);
    EXPECT_THAT(kit("start --help").out, HasSubstr("--language NAME"));
    EXPECT_EQ(kit("--help >/dev/full").status, 2);
}

} // namespace
