// What an item wants, with and without typed texts, the sums of many, and searching in them.

#include "assist/fold.h"
#include "assist/judge.h"
#include "assist/pieces.h"
#include "assist/progress.h"

#include "lint/judge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zel_test::made_source;

std::vector<std::string> texts(const std::vector<zel::assist::remark> &told)
{
    std::vector<std::string> out;
    for (const zel::assist::remark &one : told)
        out.push_back((one.counts ? "" : "hint: ") + one.text);
    return out;
}

TEST(Judge, SaysWhichConversionDiffers)
{
    struct row {
        const char *english;
        const char *german;
        const char *words;
    };
    for (const row &row : {
             row{"%d of %s", "von %s", "%d is missing"},
             row{"%d", "%d %s", "%s is too many"},
             row{"%d %s", "x", "%d is missing, %s is missing"},
             row{"%ld", "%d", "%ld is missing, %d is too many"},
             row{"%d %s", "%s %d", R"(the item asks for "%d %s", the text for "%s %d")"},
             row{"%1$d %2$s", "%1$d", R"(the item asks for "%1$d %2$s", the text for "%1$d")"},
         }) {
        made_source source;
        item_t *item = source.add("g", "n", {{"english", row.english}, {"german", row.german}});
        zel::assist::remarks told;
        zel::assist::judge judge(source.get(), "english", "german");
        const auto state = judge.look_at(nullptr, item, {}, &told);
        EXPECT_THAT(texts(told[1]), ElementsAre(row.words));
        EXPECT_EQ(state.findings[1], 1);
        EXPECT_EQ(state.findings[0], 0);
    }
}

TEST(Judge, TakesWhatIsTypedForWhatIsStored)
{
    made_source source;
    item_t *item = source.add("g", "Name:", {{"english", "Name:"}, {"german", "Name"}});
    zel::assist::judge judge(source.get(), "english", "german");
    const auto german = [&](const char *text) {
        const zel::assist::typed_text typed[] = {{"german", &item_t::langs, text}};
        zel::assist::remarks told;
        const auto state = judge.look_at(nullptr, item, typed, &told);
        std::string out = state.lacks[1] ? "lacks " : "";
        for (const std::string &one : texts(told[1]))
            out += one + ";";
        return out;
    };
    EXPECT_NE(german("Titel"), "");
    EXPECT_EQ(german("Titel:"), "");
    EXPECT_EQ(german("Titel:\n  \n"), "") << "the blank lines are not stored";
    EXPECT_EQ(german(" \n"), "lacks ");
    EXPECT_THAT(german("Datei Datei wort:"), testing::StartsWith("hint: "));

    const zel::assist::typed_text off[] = {{"german", &item_t::langs, "Titel"},
                                           {"german", &item_t::comments, "lint: ending off"}};
    EXPECT_FALSE(judge.look_at(nullptr, item, off).has_findings());
    const zel::assist::typed_text english[] = {{"english", &item_t::langs, "Name"}};
    EXPECT_FALSE(judge.look_at(nullptr, item, english).has_findings()) << "the other language's";
    EXPECT_STREQ(
        static_cast<char *>(static_cast<lang_entry_t *>(item->langs->next->data)->texts->data),
        "Name");
    EXPECT_EQ(item->comments, nullptr);
}

TEST(Judge, LeavesOtherLanguagesAlone)
{
    made_source source({"french"});
    item_t *item = source.add("g", "%d", {{"english", "%d"}, {"french", "x"}});
    zel::assist::judge both(source.get(), "english", "german");
    const auto state = both.look_at(nullptr, item);
    EXPECT_EQ(state, (zel::assist::item_state{{false, true}, {0, 0}}));
    zel::assist::judge none(source.get(), nullptr, nullptr);
    EXPECT_EQ(none.look_at(nullptr, item), zel::assist::item_state{});
    zel::assist::judge second(source.get(), nullptr, "french");
    EXPECT_EQ(second.look_at(nullptr, item).findings[1], 1);
}

TEST(Progress, SumsWhatIsKnownOnce)
{
    zel::assist::progress progress;
    progress.reset(3);
    EXPECT_EQ(progress.first_unknown(0), 0U);
    progress.set(0, {{false, true}, {0, 0}});
    progress.set(2, {{false, false}, {1, 255}});
    EXPECT_EQ(progress.first_unknown(0), 1U);
    EXPECT_FALSE(progress.is_all_known());
    progress.set(1, {{true, true}, {0, 0}});
    progress.set(0, {{false, false}, {0, 2}});
    EXPECT_TRUE(progress.is_all_known());
    EXPECT_EQ(progress.of_language(0).translated, 2U);
    EXPECT_EQ(progress.of_language(1).translated, 2U);
    EXPECT_EQ(progress.of_language(0).findings, 1U);
    EXPECT_EQ(progress.of_language(1).findings, 257U);
}

TEST(Progress, GroupsTheDigitsOfNumbers)
{
    EXPECT_EQ(zel::assist::grouped(0), "0");
    EXPECT_EQ(zel::assist::grouped(999), "999");
    EXPECT_EQ(zel::assist::grouped(8201), "8,201");
    EXPECT_EQ(zel::assist::grouped(1234567), "1,234,567");
}

TEST(Pieces, AreConversionsSymbolsAndTagsInTheirOrder)
{
    const std::string text = "100%% \xc3\xa4 %s <b>%2$d</b> %NAME% < %5.2f <a href=\"%s\">%";
    std::vector<std::string> found;
    for (const auto &[at, length] : zel::assist::pieces_of(text))
        found.push_back(text.substr(at, length));
    EXPECT_THAT(found,
                ElementsAre("%s", "<b>", "%2$d", "</b>", "%NAME%", "%5.2f", "<a href=\"%s\">"));
    EXPECT_THAT(zel::assist::pieces_of(""), IsEmpty());
}

TEST(Fold, TakesLettersOfAllScriptsAsEqual)
{
    for (const auto &[one, other] : {
             std::pair{"ÄÖÜ abc", "äöü ABC"},
             std::pair{"ΟΔΟΣ", "οδος"},
             std::pair{"ЖУРНАЛ", "журнал"},
             std::pair{"STRASSE", "straße"},
         })
        EXPECT_EQ(zel::assist::fold(one), zel::assist::fold(other));
    EXPECT_NE(zel::assist::fold("a"), zel::assist::fold("ä"));
    EXPECT_EQ(zel::assist::fold("a\xff"), "a\xef\xbf\xbd");
}

TEST(Fold, FindsTheBytesOfItsHits)
{
    const std::string text = "Ärger mit der STRAßE, ärgerlich";
    std::vector<std::string> found;
    for (const auto &[at, length] : zel::assist::folded_words(" ärg \tsse, rger").hits(text))
        found.push_back(text.substr(at, length));
    EXPECT_THAT(found, ElementsAre("Ärger", "ßE,", "ärger"));
}

TEST(Fold, WantsAllWordsInOnePlace)
{
    made_source source;
    item_t *item = source.add("g", "Ö", {{"english", "É Ä"}, {"german", "Ü"}});
    const auto in = [&](const char *words) {
        return zel::assist::folded_words(words).are_in(item, "english", "german");
    };
    EXPECT_TRUE(in("ö"));
    EXPECT_TRUE(in("ä é"));
    EXPECT_FALSE(in("ä ü"));
    EXPECT_FALSE(zel::assist::folded_words("ü").are_in(item, "english", nullptr));
}

} // namespace
