// The conversions of printf and the symbols between percent signs.

#include "lint/judge.h"

#include "lint/conversions.h"

#include <gtest/gtest.h>

namespace {

using zel_test::judge;

std::string conversions(const char *text)
{
    return zel::lint::shown(zel::lint::read_percents(text));
}

TEST(Conversions, AreReadAsPrintfReadsThem)
{
    const struct {
        const char *text, *conversions;
    } cases[] = {
        {"no sign at all", "nothing"},
        {"100%% sure", "nothing"},
        {"%d of %s", "\"%d %s\""},
        {"%-5.2f%08lx%+hhd% i", "\"%-5.2f %08lx %+hhd % i\""},
        {"%*d and %.*s", "\"%*d %.*s\""},
        {"%2$s before %1$*3$d", "\"%2$s %1$*3$d\""},
        {"%zu %jd %td %Lf %lld", "\"%zu %jd %td %Lf %lld\""},
        {"%5%", "nothing"},
        {"ends with %", "nothing"},
        {"%y is none", "nothing"},
        {"%dx%d pixels", "\"%d %d\""},
        {"%ld%% of %s", "\"%ld %s\""},
    };
    for (const auto &row : cases)
        EXPECT_EQ(conversions(row.text), row.conversions) << row.text;
}

TEST(Conversions, NamesBetweenPercentSignsAreSymbols)
{
    const auto names = [](const char *text) {
        std::string out;
        for (const std::string_view name : zel::lint::read_percents(text).symbols)
            out.append(name).append(" ");
        return out;
    };
    EXPECT_EQ(names("%USER% has %COUNT_2% notes"), "USER COUNT_2 ");
    EXPECT_EQ(names("for %date% and %user%."), "date user ");
    EXPECT_EQ(names("%SIZE%"), "SIZE "); // though it begins like a conversion
    EXPECT_EQ(names("%dx%d"), "");
    EXPECT_EQ(names("%s%s"), "");
    EXPECT_EQ(names("50%%X%"), "");
    EXPECT_EQ(names("%A234567890123456789012345678901234% %USER"), ""); // 34 characters; no end
}

TEST(Format, KindNumberSizeAndOrderCount)
{
    const struct {
        const char *reference, *text, *said;
    } cases[] = {
        {"%d files", "%d Dateien", ""},
        {"%d %s", "%s", "german: the item asks for \"%d %s\", the text for \"%s\""},
        {"%d %s", "%s %d", "german: the item asks for \"%d %s\", the text for \"%s %d\""},
        {"%d %s", "%2$s %1$d", ""},
        {"%d %s", "%2$d %1$s", "german: the item asks for \"%d %s\", the text for \"%2$d %1$s\""},
        {"%d %s", "%d %2$s",
         "german: some conversions have a position and some have none: \"%d %2$s\""},
        {"%s twice", "%1$s und %1$s", ""},
        {"%ld bytes", "%d Bytes", "german: the item asks for \"%ld\", the text for \"%d\""},
        {"%d bytes", "%i Bytes", ""},
        {"%5.1f MB", "%.2f MB", ""},
        {"%lf", "%f", ""},
        {"%*d", "%d", "german: the item asks for \"%*d\", the text for \"%d\""},
        {"%*d", "%2$*1$d", ""},
        {"%d files", "Dateien", "german: the item asks for \"%d\", the text for nothing"},
        {"%d files", "%d Dateien %s", "german: the item asks for \"%d\", the text for \"%d %s\""},
        {"%d%% done", "%d %% fertig", ""},
        {"%d%% done", "%d % fertig", "german: the item asks for \"%d\", the text for \"%d % f\""},
        {"%d%% done", "%d%, ja",
         "german: a percent sign begins no conversion; write \"%%\" for "
         "the sign itself"},
        // The library's guard lets this pass.
        {"%d added", "%n added",
         "german: the text has \"%n\", with which printf overwrites memory"},
        // Texts that are no formats: nothing to convert, dates, other programs' formats.
        {"Delete", "Löschen %s", ""},
        {"%H:%M", "%M:%H", ""},
        {"50% off", "50 % Nachlass", ""},
        {"%(name)s is %d", "%d", ""},
    };
    for (const auto &row : cases)
        EXPECT_EQ(judge("format", row.reference, row.text), row.said) << row.text;
}

TEST(Format, TheDefaultLanguageIsHeldToTheCode)
{
    zel_test::made_source source;
    source.add("main", "%d files", {{"english", "%s files"}, {"german", "%s Dateien"}});
    EXPECT_EQ(
        source.findings(zel_test::only("format")),
        std::vector<std::string>{"format: english: the item asks for \"%d\", the text for \"%s\""});
}

TEST(Format, ADescriptionTellsWhatTheCodeHandsOver)
{
    zel_test::made_source source;
    item_t *item =
        source.add("main", "msg_quota", {{"english", "Full: %d"}, {"german", "Voll: %s"}});
    zel::replace_string(item->description, zel_strdup("kind=error;formater=%25d,%25s"));
    const std::vector<std::string> said = source.findings(zel_test::only("format"));
    ASSERT_EQ(said.size(), 2U);
    EXPECT_EQ(said[0], "format: english: the item asks for \"%d %s\", the text for \"%d\"");
}

TEST(Symbol, NamesMustBeTheSame)
{
    EXPECT_EQ(judge("symbol", "%USER% logged in", "%USER% ist da"), "");
    EXPECT_EQ(judge("symbol", "%USER% logged in", "Angemeldet"),
              "german: the symbol \"%USER%\" of the item is missing");
    EXPECT_EQ(judge("symbol", "%USER% logged in", "%USR% ist da, %USER%"),
              "german: the item has no symbol \"%USR%\"");
    EXPECT_EQ(judge("symbol", "for %date%s", "%date%s"), ""); // known from the reference
    EXPECT_EQ(judge("symbol", "%dx%d", "%d×%d"), "");
    EXPECT_EQ(judge("symbol", "Sure", "100%PERCENT%"),
              "german: the item has no symbol \"%PERCENT%\"");
}

} // namespace
