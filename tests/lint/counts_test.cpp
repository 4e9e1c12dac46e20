// How far each language is, and how much its texts are.

#include "lint/counts.h"

#include "lint/judge.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using zel::lint::measure;

std::string measured(std::string_view text)
{
    const zel::lint::amount found = measure(text);
    return std::to_string(found.words) + " words, " + std::to_string(found.characters);
}

TEST(Measure, WordsAndCharacters)
{
    const struct {
        const char *text, *amount;
    } cases[] = {
        {"", "0 words, 0"},
        {"one", "1 words, 3"},
        {" two  words\n", "2 words, 12"},
        {"Größe ändern und schließen", "4 words, 26"},
        {"открыть файл", "2 words, 12"},
        {"फ़ाइल खोलें", "2 words, 11"},
        {"設定する", "4 words, 4"},
        {"file を開く。", "4 words, 9"},
        {"파일 열기", "2 words, 5"},
        {"a – b…", "3 words, 6"},
    };
    for (const auto &row : cases)
        EXPECT_EQ(measured(row.text), row.amount) << row.text;
}

// Whatever the length and what stands where, the same as one character at a time.
TEST(Measure, IsTheSameAtEveryLength)
{
    const char *const pieces[] = {"a", " ", "\n", "ä", "я", "…", "ि", "日", "設", "。", "😀", "~"};
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        std::size_t words = 0;
        std::size_t characters = 0;
        bool in_word = false;
        for (auto count = random() % 24; count > 0; --count) {
            const std::string piece = pieces[random() % (round % 2 == 0 ? 7 : 12)];
            const bool blank = piece == " " || piece == "\n" || piece == "。";
            const bool wide = piece == "日" || piece == "設";
            words += wide || (!blank && !in_word) ? 1U : 0U;
            in_word = !blank && !wide;
            text += piece;
            ++characters;
        }
        const zel::lint::amount found = measure(text);
        EXPECT_EQ(found.words, words) << text;
        EXPECT_EQ(found.characters, characters) << text;
    }
}

TEST(Counts, EachTextOfAUsedItemCountsOnce)
{
    zel_test::made_source source({"french"});
    source.add("a", "1", {{"english", "One two"}, {"German", "Eins"}, {"german", "Zwei"}});
    source.add("a", "2", {{"english", "Four"}, {"german", "Four"}, {"french", " "}})->ready = 0;
    source.add("a", "Three words here", {{"english", ""}, {"german", "Drei"}, {"klingon", "x"}});
    source.add("a", "4", {{"english", " "}, {"german", ""}, {"french", ""}})->name[0] = ' ';
    source.add("a", "5", {{"english", "Not used"}})->used = 0;
    const zel::lint::source_counts counts = zel::lint::count_texts(source.get());
    EXPECT_EQ(counts.items, 5U);
    EXPECT_EQ(counts.used, 4U);
    const auto line = [&](std::size_t i) {
        const zel::lint::language_counts &one = counts.languages[i];
        std::string out = one.language->name;
        for (const std::size_t number : {one.translated, one.missing, one.empty, one.same,
                                         one.ready, one.done.words, one.left.words})
            out += " " + std::to_string(number);
        return out;
    };
    EXPECT_EQ(line(0), "english 3 0 1 0 2 3 3");
    EXPECT_EQ(line(1), "german 4 0 0 1 3 3 0"); // where there is nothing to say, none is missing
    EXPECT_EQ(line(2), "french 1 2 1 0 1 0 6");
}

} // namespace
