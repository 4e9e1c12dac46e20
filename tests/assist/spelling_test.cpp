// Which words of a text a dictionary is asked about, and which dictionary that is.

#include "assist/dictionary-choice.h"
#include "assist/words.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "rows.h"

using zel::assist::choose_dictionary;
using zel::assist::words_of;
using zel::assist::written_like;

namespace {

std::string words_in(std::string_view text)
{
    std::string out;
    std::size_t end = 0;
    for (const zel::assist::word &one : words_of(text)) {
        EXPECT_GE(one.place.at, end) << text;
        end = one.place.at + one.place.length;
        EXPECT_LE(end, text.size()) << text;
        out += (out.empty() ? "" : " ") + one.letters;
    }
    return out;
}

} // namespace

TEST(Words, AreWhatALanguageHas)
{
    for (const zel_test::row &row : zel_test::rows_of("assist/spelling.rows", "words"))
        EXPECT_EQ(words_in(row[0]), row[1]) << row.line;
    EXPECT_EQ(words_in(std::string(61, 'a') + " " + std::string(60, 'b')), std::string(60, 'b'));
}

TEST(Words, StandWhereTheTextHasThem)
{
    const std::string text = "%d <i>\u00fcber</i> Sa_ve";
    const auto words = words_of(text);
    ASSERT_EQ(words.size(), 2U);
    EXPECT_EQ(text.substr(words[0].place.at, words[0].place.length), "\u00fcber");
    EXPECT_EQ(text.substr(words[1].place.at, words[1].place.length), "Sa_ve");
}

TEST(Words, ReplacedKeepTheirMnemonicAndApostrophe)
{
    EXPECT_EQ(written_like("halo", "hallo"), "hallo");
    EXPECT_EQ(written_like("_Svae", "Save"), "_Save");
    EXPECT_EQ(written_like("Op_ne", "Open"), "Ope_n");
    EXPECT_EQ(written_like("_\u00dcbr", "\u00fcber"), "_\u00fcber");
    EXPECT_EQ(written_like("_Xy", "Save"), "_Save") << "another letter";
    EXPECT_EQ(written_like("do\u2019nt", "don't"), "don\u2019t");
    EXPECT_EQ(written_like("do'nt", "don't"), "don't");
}

TEST(DictionaryChoice, FindsALanguageByNameOrCode)
{
    for (const zel_test::row &row : zel_test::rows_of("assist/spelling.rows", "dictionaries")) {
        std::vector<std::string> there(row.texts.begin() + 2, row.texts.end());
        EXPECT_EQ(choose_dictionary(row[0], there), row[1]) << row.line;
        std::reverse(there.begin(), there.end());
        EXPECT_EQ(choose_dictionary(row[0], there), row[1]) << row.line;
    }
}
