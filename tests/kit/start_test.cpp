#include "kit/menu-source.h"
#include "kit/run-kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using zel_test::kit;
using zel_test::menu_source;
using zel_test::write_file;

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

TEST_F(Start, WrongUseOfAnyWordIsOneLineAndStatusTwo)
{
    write_file("app.lang-src", menu_source);
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
        {"lint", "lang-kit lint: a file is missing: lang-kit lint [OPTION...] SOURCE...\n"},
        {"lint --only nonsense app.lang-src",
         "lang-kit lint: there is no rule \"nonsense\"; --rules shows them\n"},
        {"lint --format xml app.lang-src",
         "lang-kit lint: --format is text, json, sarif or github, not \"xml\"\n"},
        {"lint --fail-on never app.lang-src",
         "lang-kit lint: --fail-on is error, warning or info, not \"never\"\n"},
        {"stat --format xml app.lang-src",
         "lang-kit stat: --format is text or json, not \"xml\"\n"},
        {"diff --format xml app.lang-src app.lang-src",
         "lang-kit diff: --format is text or json, not \"xml\"\n"},
        {"merge --ours --theirs a b c", "lang-kit merge: --ours and --theirs exclude each other\n"},
        {"fill app.lang-src", "lang-kit fill: --from is missing: where are the texts?\n"},
        {"export app.lang-src",
         "lang-kit export: --format is po, xliff, xliff2, csv or json, not \"\"\n"},
        {"export --format po --language dutch app.lang-src",
         "lang-kit: app.lang-src: no language \"dutch\" is defined\n"},
        {"export --format json --language german app.lang-src",
         "lang-kit export: --language is not for whole sources\n"},
        {"export --format po -o app.lang-src/such app.lang-src",
         "lang-kit: app.lang-src/such: Not a directory\n"},
        {"import --format po app.lang-src none.po", "none.po: error: No such file or directory\n"},
        {"import --format json --comments app.lang-src a.json",
         "lang-kit import: --comments, --fuzzy and --language are not for whole sources\n"},
        {"import --format po --new -o app.lang-src de.po",
         "lang-kit import: \"app.lang-src\" is there already\n"},
        {"import --format po --new de.po", "lang-kit import: --new needs -o FILE\n"},
        {"import --format csv --new -o b.lang-src de.po",
         "lang-kit import: --new is for --format po\n"},
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
