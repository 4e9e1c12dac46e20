// Words that are found in texts, and others in their place.

#include "assist/word-finder.h"

#include <gtest/gtest.h>

#include "rows.h"

using namespace zel::assist;

namespace {

std::string found(std::string_view text, const std::vector<piece> &pieces)
{
    std::string out;
    for (const piece &one : pieces)
        out += (out.empty() ? "" : "|") + std::string(text.substr(one.at, one.length));
    return out;
}

void expect_found(const char *section, word_extent extent)
{
    for (const zel_test::row &row : zel_test::rows_of("assist/word-finder.rows", section)) {
        const word_finder finder(row[0], extent);
        EXPECT_EQ(found(row[1], finder.hits(row[1])), row[2]) << row.line;
        EXPECT_EQ(finder.are_in(row[1]), !row[2].empty()) << row.line;
    }
}

} // namespace

TEST(WordFinder, FindsWholeWordsWhateverTheirCaseAndMnemonic)
{
    expect_found("whole", word_extent::whole);
}

TEST(WordFinder, FindsWhatBeginsSo) { expect_found("beginning", word_extent::beginning); }

TEST(WordFinder, TakesTheWordAtTheCaretAndItsStem)
{
    for (const zel_test::row &row : zel_test::rows_of("assist/word-finder.rows", "at"))
        EXPECT_EQ(word_at(row[0], std::stoul(row[1])), row[2]) << row.line;
    for (const zel_test::row &row : zel_test::rows_of("assist/word-finder.rows", "stem"))
        EXPECT_EQ(stem_of(row[0]), row[1]) << row.line;
}

TEST(WordReplacer, KeepsCaseAndMnemonicAndTellsWhereTheOthersStand)
{
    for (const zel_test::row &row : zel_test::rows_of("assist/word-finder.rows", "replace")) {
        const word_replacer::replaced made = word_replacer(row[0], row[1]).in(row[2]);
        EXPECT_EQ(made.text, row[3]) << row.line;
        EXPECT_EQ(made.any(), !row[3].empty()) << row.line;
    }
    const auto made = word_replacer("file", "page").in("a file, a Fi_le");
    EXPECT_EQ(found(made.text, made.places), "page|_Page");
}
