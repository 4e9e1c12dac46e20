#include "langlib/lang.h"

#include "handles.h"

using namespace langlib_test;

class LangFormat : public loading {
protected:
    // The text "t" of the file after a request with the description, twice the same.
    static std::string checked(const std::string &text, const char *description)
    {
        load_process_wide("GROUP g t { \"" + text + "\" }");
        const std::string first = _lang_get_string_fmt(description, "g", "t", "f", 1);
        EXPECT_EQ(_lang_get_string_fmt(description, "g", "t", "f", 1), first);
        EXPECT_EQ(_lang_get_string("g", "t", "f", 1), first) << "the table's text changes";
        return first;
    }
};

TEST_F(LangFormat, KeepsWhatMatches)
{
    EXPECT_EQ(checked("%s has %d", "formater=%25s,%25d"), "%s has %d");
    EXPECT_EQ(checked("100%% of %s", "formater=%25s"), "100%% of %s");
    EXPECT_EQ(checked("%-10.3s|%05d", "size=3;formater=%25s,%25d"), "%-10.3s|%05d");
    EXPECT_EQ(checked("no conversion", "formater=%25s,%25d"), "no conversion");
    EXPECT_EQ(checked("%s", "formater=%25s,%25d"), "%s") << "fewer than expected do no harm";
}

TEST_F(LangFormat, BlanksWhatDoesNot)
{
    EXPECT_EQ(checked("%s has %d", "formater=%25d,%25s"), " s has  d");
    EXPECT_EQ(checked("%s has %d", "formater=%25s"), "%s has  d");
    EXPECT_EQ(checked("%s 50%% %n", "formater=%25s"), "%s 50%%  n");
    EXPECT_EQ(checked("%s and %", "formater=%25s,%25s"), "%s and %");
    EXPECT_EQ(checked("%f of it", "formater=%25d"), " f of it") << "no letter";
    EXPECT_EQ(checked("a %x b %d", "formater=%25d"), "a %x b %d") << "anything may lie between";
    EXPECT_EQ(checked("%s%d%n", "formater=%25s,,%25d"), "%s d n") << "an id that is empty";
    EXPECT_EQ(checked("%%%d", "formater=%25s"), "%% d");
}

TEST_F(LangFormat, LeavesTextsWithoutDescriptionAlone)
{
    for (const char *description : {"", "formater", "formater=", "size=5", "Formater=%25s"})
        EXPECT_EQ(checked("%n %s", description), "%n %s") << description;
    EXPECT_EQ(checked("%n %s", nullptr), "%n %s");
    EXPECT_EQ(checked("%n %s", "formater=%25d;formater=%25s"), " n  s") << "the first one counts";
}

TEST_F(LangFormat, NeverChangesTheItem)
{
    static const char item[] = "%n files";
    EXPECT_EQ(_lang_get_string_fmt("formater=%25d", "g", item, "f", 1), item);
    load_process_wide("GROUP g t { \"x\" } \"%n files\" { }");
    EXPECT_EQ(_lang_get_string_fmt("formater=%25d", "g", item, "f", 1), item);
    EXPECT_STREQ(item, "%n files");
}
