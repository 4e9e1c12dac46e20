// A text that stands for an item in printf, or does not.

#include "langlib/lang-locale.h"

#include <gtest/gtest.h>
#include <string>

namespace {

struct pair {
    const char *item;
    const char *text;
};

TEST(FormatOr, TextsThatFit)
{
    const pair rows[] = {
        {"%d notes", "%d Notizen"}, {"%d notes", "%i Notizen"},
        {"none", "keine"},          {"100%%", "zu 100 %%"},
        {"%s: %d", "%2$d (%1$s)"},  {"%s: %d", "%2$d %1$s %2$i"},
        {"%2$s %1$d", "%d %s"},     {"%5.2f", "%lf"},
        {"%-20s|", "%.3s"},         {"%.4s", "%9.4s"},
        {"%.4s", "%1$.2s, %1$.4s"}, {"%1$.4s %1$s", "%s"},
        {"%ld %zu", "%2$zu %1$ld"}, {"%x", "%#010o"},
        {"%c%p", "%c %p"},          {"%Lf", "%'LG"},
        {"%ls", "%-999ls"},
    };
    for (const auto &[item, text] : rows)
        EXPECT_EQ(lang_format_or(text, item), text) << item;
}

TEST(FormatOr, TextsThatDoNot)
{
    const pair rows[] = {
        {"%d", "%n added"},
        {"%d", "%s"},
        {"%d", ""},
        {"%d", "%d %d"},
        {"%d", "%ld"},
        {"%d", "%hhd"},
        {"%d", "%u"},
        {"%s", "%ls"},
        {"%s", "%S"},
        {"%.4s", "%s"}, // an array without an end
        {"%.4s", "%4s"},
        {"%.4s", "%.5s"},
        {"%.4s", "%1$.4s, %1$s"},
        {"%.s", "%.1s"},
        {"%d %.4ls", "%2$ls %1$d"},
        {"%c", "%d"},
        {"%f", "%Lf"},
        {"%p", "%s"},
        {"%d %s", "%s %d"},
        {"%d %s", "%2$s"},
        {"%d %s", "%1$d %s"},
        {"%d %s", "%1$d %3$s"},
        {"%d %s", "%1$d %1$s"},
        {"%d", "%0$d"},
        {"%d", "%*d"},
        {"%d", "%.*d"},
        {"%d", "%*1$d"},
        {"%d", "%"},
        {"%d", "%d %"},
        {"%d", "50% of %d"},
        {"%d", "%1000d"},
        {"%d", "%.99999999999999999999d"},
        {"%d", "%2147483648$d"},
        {"%d", "%1$"},
        {"%d", "%hhhd"},
        {"%d", "%qd"},
        {"%d", "%Id"},
        {"%d", "%#d"},
        {"%s", "%0s"},
        {"%s", "%hs"},
        {"%d", "%m %d"},
        {"%d", "%-"},
        {"%d", "%1$1$d"},
        {"%d", "%d\xC2%"},
        {"plain", "%d"},
        {"plain", "%n"},
        {"%d", "%\xFF"},
        {"%n", "%n "},
        {"%2$s", "%2$s "},
        {"%c", "%.3c"},
        {"%*d", "%*d "},
        {"%y", "%y "},
        {"%d", nullptr},
        {"%s", "%5$s%4$s%3$s%2$s%1$s"},
        {"%f", "%1$f %1$a %1$d"},
    };
    for (const auto &[item, text] : rows)
        EXPECT_EQ(lang_format_or(text, item), item) << item << " <- " << text;
    EXPECT_STREQ(lang_format_or("text", nullptr), "");
}

// More than the arguments it can hold, and nothing but percent signs.
TEST(FormatOr, LongTexts)
{
    std::string many;
    for (int i = 0; i < 33; ++i)
        many += "%d";
    const std::string other = many + " ";
    EXPECT_EQ(lang_format_or(other.c_str(), many.c_str()), many.c_str());
    const std::string less = other.substr(2);
    EXPECT_EQ(lang_format_or(less.c_str(), many.c_str() + 2), less.c_str());
    const std::string signs(20000, '%'); // a sanitizer looks at all of it for each
    EXPECT_EQ(lang_format_or(signs.c_str(), "x"), signs.c_str());
    EXPECT_STREQ(lang_format_or(signs.c_str() + 1, "x"), "x");
}

} // namespace
