// The plurals of catalogs: how they count, and what becomes of their forms on the way in and out.

#include "exchange/plural-reader.h"
#include "exchange/sources.h"
#include "langlib/plural-rule.h"

#include <sstream>

#include <gtest/gtest.h>

namespace {

using namespace zel::exchange;

TEST(PluralExpression, CountsAsC)
{
    for (const zel_test::row &row : zel_test::rows_of("exchange/plurals.rows", "expression")) {
        plural_expression expression;
        const std::string wrong = expression.read(row[0]);
        std::string found = wrong;
        for (const std::uint64_t n : {0, 1, 2, 5, 11, 22})
            if (wrong.empty()) {
                const auto form = expression.form(n);
                found += (n == 0 ? "" : " ") + (form ? std::to_string(*form) : "-");
            }
        EXPECT_EQ(found, row[1]) << row[0];
    }
    plural_expression deep;
    const std::string open(31, '(');
    EXPECT_EQ(deep.read(open + "n" + std::string(31, ')')), "");
    EXPECT_EQ(deep.form(7), 7U);
    EXPECT_EQ(deep.read(open + open + "n"), "the expression nests deeper than 32");
    EXPECT_EQ(deep.read(std::string(4001, '!') + "n"), "");
    EXPECT_EQ(deep.form(7), 0U);
    EXPECT_EQ(deep.read(std::string(4100, '!') + "n"), "the expression is longer than 4,096 bytes");
}

// What a project's forms "0", "1" and so on become, and what is said of it.
TEST(PluralReaderSlow, GivesEachNumberItsText)
{
    for (const zel_test::row &row : zel_test::rows_of("exchange/plurals.rows", "language")) {
        plural_header header;
        header.read(row[1]);
        std::vector<std::string> forms;
        for (std::size_t form = 0; form < (header.count == 0 ? 2 : header.count); ++form)
            forms.push_back(std::to_string(form));
        std::istringstream languages(row[0]);
        for (std::string language; languages >> language;) {
            plural_reader reader;
            reader.open(language, row[1], 3);
            const plural_reader::answer answer = reader.join(forms, 7);
            std::string told =
                answer.wrong ? std::to_string(answer.wrong.line) + ": " + answer.wrong.text : "";
            for (const std::string &line : reader.told(true))
                told += (told.empty() ? "" : "; ") + line;
            EXPECT_EQ(answer.text, row[2]) << language << ": " << row[1];
            EXPECT_EQ(told, row[3]) << language << ": " << row[1];
        }
    }
}

TEST(PluralReader, TellsOnlyOfTextsThatDiffer)
{
    plural_reader reader;
    reader.open("sr",
                "nplurals=4; plural=n==1 ? 3 : n%10==1 && n%100!=11 ? 0 : n%10>=2 && n%10<=4 "
                "&& (n%100<10 || n%100>=20) ? 1 : 2",
                1);
    EXPECT_EQ(reader.join({"a", "b", "c", "a "}, 1).text, "a|b|c");
    EXPECT_TRUE(reader.told(true).empty());
    const plural_reader::answer lost = reader.join({"a\n", "b\n", "c\n", "1\n"}, 1);
    EXPECT_EQ(lost.text, "a|b|c");
    EXPECT_EQ(lost.remark, "plural form 3: 1");
    EXPECT_EQ(reader.join({"a", "", "c", "1"}, 1).text, "");
    EXPECT_EQ(reader.partly(), 1U);
    const plural_reader::answer apart = reader.join({"a", "b|", "c", "d"}, 1);
    EXPECT_EQ(apart.text + apart.one + apart.others, "ac");
    EXPECT_EQ(apart.remark,
              "plural form 0: a\nplural form 1: b|\nplural form 2: c\nplural form 3: d");
    EXPECT_EQ(reader.join({"a", "b"}, 9).wrong.text, "2 plural forms, and others have 4");
    reader.open("fr", "nplurals=3; plural=(n<2 ? 0 : n%1000000==0 ? 1 : 2);", 1);
    EXPECT_EQ(reader.join({"a", "b", "b"}, 1).text, "a|b");
    EXPECT_EQ(reader.join({"a", "b", "c"}, 1).text, "a|b|c");
    EXPECT_TRUE(shows_the_same("fr", "a|b", "a|b|b"));
    EXPECT_FALSE(shows_the_same("fr", "a|b", "a|c|b"));
}

} // namespace
