// Each rule about texts: what it says, and what it leaves alone.

#include "lint/judge.h"
#include "rows.h"

#include "lint/conversions.h"

#include <gtest/gtest.h>

namespace {

using zel_test::only;
using zel_test::rows_of;

TEST(Rules, SayOfTwoTextsWhatTheTableHolds)
{
    for (const zel_test::row &row : rows_of("lint/rules.rows")) {
        std::string said = zel_test::judge(row.section, row[0], row[1], row[3]);
        if (said.starts_with("german: "))
            said.erase(0, 8);
        EXPECT_EQ(said, row[2]) << "rules.rows:" << row.line;
    }
}

TEST(Conversions, AndSymbolsAreReadAsTheTableHolds)
{
    for (const zel_test::row &row : rows_of("lint/conversions.rows")) {
        const auto found = zel::lint::read_percents(row[0]);
        std::string names;
        for (const std::string_view name : found.symbols)
            names.append(name).append(" ");
        EXPECT_EQ(row.section == "symbols" ? names : zel::lint::shown(found), row[1]) << row.line;
    }
}

TEST(Format, TheDefaultLanguageIsHeldToTheCode)
{
    zel_test::made_source source;
    source.add("main", "%d files", {{"english", "%s files"}, {"german", "%s Dateien"}});
    EXPECT_EQ(
        source.findings(only("format")),
        std::vector<std::string>{"format: english: the item asks for \"%d\", the text for \"%s\""});
}

TEST(Format, ADescriptionTellsWhatTheCodeHandsOver)
{
    zel_test::made_source source;
    item_t *item =
        source.add("main", "msg_quota", {{"english", "Full: %d"}, {"german", "Voll: %s"}});
    zel::replace_string(item->description, zel_strdup("kind=error;formater=%25d,%25s"));
    const std::vector<std::string> said = source.findings(only("format"));
    ASSERT_EQ(said.size(), 2U);
    EXPECT_EQ(said[0], "format: english: the item asks for \"%d %s\", the text for \"%d\"");
}

} // namespace
