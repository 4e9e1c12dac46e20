#include "langlib/lang-symbols.h"

#include "family/list.h"
#include "handles.h"

using namespace langlib_test;
using zel_test::take;

namespace {

// A list of symbols; USER is anna.
class LangSymbols : public loading {
protected:
    LangSymbols() : list(lang_sym_set(nullptr, "USER", "anna", 0)) {}
    ~LangSymbols() override { lang_sym_free(list); }

    std::string replaced(const std::string &text)
    {
        return take(_lang_rep_sym(list, text.c_str()));
    }

    zel_list *list;
};

} // namespace

TEST_F(LangSymbols, ReplacesReferences)
{
    EXPECT_EQ(replaced("100%PERCENT%"), "100%");
    EXPECT_EQ(replaced("%USER%"), "anna");
    EXPECT_EQ(replaced("%USER"), "%USER");
    EXPECT_EQ(replaced("50%%X%"), "50%%X%");
    EXPECT_EQ(replaced("%X%USER%"), "%Xanna") << "an unknown name's end may begin another";
    EXPECT_EQ(replaced("%USER%%USER%."), "annaanna.");
    EXPECT_EQ(replaced("%%USER%"), "%anna");
    EXPECT_EQ(replaced("% USER%USER%"), "% USERanna") << "a blank ends an attempt";
    EXPECT_EQ(replaced("%US ER%"), "%US ER%");
    EXPECT_EQ(replaced("%user%"), "%user%");
    EXPECT_EQ(replaced("%"), "%");
    EXPECT_EQ(_lang_rep_sym(list, ""), nullptr);
    EXPECT_EQ(_lang_rep_sym(list, nullptr), nullptr);
    EXPECT_EQ(take(_lang_rep_sym(nullptr, "%USER% %PERCENT%")), "%USER% %");
}

TEST_F(LangSymbols, TakesNamesOf33Characters)
{
    const std::string name(33, 'n');
    list = lang_sym_set(list, name.c_str(), "v", 0);
    list = lang_sym_set(list, (name + "n").c_str(), "long", 0);
    EXPECT_EQ(replaced("<%" + name + "%>"), "<v>");
    EXPECT_EQ(replaced("<%" + name + "n%>"), "<%" + name + "n%>");
    EXPECT_EQ(replaced("%" + name + "n%USER%"), "%" + name + "nanna")
        << "scanning goes on behind the 34th";
}

TEST_F(LangSymbols, KeepsLists)
{
    zel_list *head = list;
    list = lang_sym_set(list, "USER", "berta", LANG_SYM_SYSTEM);
    EXPECT_EQ(list, head);
    EXPECT_EQ(static_cast<lang_sym_t *>(list->data)->type, LANG_SYM_SYSTEM);
    list = lang_sym_set(list, "HOME", "", 0);
    list = lang_sym_set(list, nullptr, "x", 0);
    list = lang_sym_set(list, "", "y", 0);
    EXPECT_EQ(zel_list_count(list), 4);
    EXPECT_EQ(static_cast<lang_sym_t *>(list->next->data)->type, LANG_SYM_APP);
    EXPECT_STREQ(lang_sym_get(list, "USER"), "berta");
    EXPECT_EQ(lang_sym_get(list, "HOME"), nullptr);
    EXPECT_EQ(lang_sym_get(list, ""), nullptr);
    EXPECT_EQ(lang_sym_get(list, nullptr), nullptr);
    EXPECT_STREQ(lang_sym_get(nullptr, "PERCENT"), "%");
}

TEST_F(LangSymbols, SharesTheSystems)
{
    lang_sym_get(nullptr, "PERCENT");
    EXPECT_EQ(lang_sym_system_set("USER", "system"), lang_symbols);
    lang_sym_system_set("HOME", "/home");
    list = lang_sym_set(list, "HOME", nullptr, 0);
    EXPECT_EQ(replaced("%USER% %HOME%"), "anna /home") << "a symbol without value does not hide";
    lang_free(nullptr, 0);
    EXPECT_EQ(lang_symbols, nullptr);
    EXPECT_EQ(replaced("%HOME%%PERCENT%"), "%HOME%%");
    lang_sym_free(nullptr);
}

TEST_F(LangSymbols, TheSystemsListAlwaysHoldsPercent)
{
    lang_free(nullptr, 0);
    lang_sym_system_set("FIRST", "1"); // before any load
    EXPECT_EQ(replaced("%FIRST%%PERCENT%"), "1%");
    load_process_wide("GROUP g x { \"1\" }");
    lang_de_init();
    lang_sym_system_set("SECOND", "2"); // after a release
    EXPECT_EQ(replaced("%FIRST% %SECOND%%PERCENT%"), "%FIRST% 2%");
}

TEST_F(LangSymbols, FindsEachOfMany)
{
    for (int i = 0; i < 1000; ++i)
        list = lang_sym_set(list, ("N" + std::to_string(i)).c_str(), std::to_string(i).c_str(), 0);
    list = lang_sym_set(list, "N7", "seven", 0);
    EXPECT_EQ(zel_list_count(list), 1001);
    EXPECT_STREQ(lang_sym_get(list, "N0"), "0");
    EXPECT_STREQ(lang_sym_get(list, "N7"), "seven");
    EXPECT_STREQ(lang_sym_get(list, "N999"), "999");
    EXPECT_STREQ(lang_sym_get(list, "USER"), "anna");
    EXPECT_EQ(lang_sym_get(list, "N1000"), nullptr);

    zel_list *more = lang_sym_set(lang_sym_set(nullptr, "N7", "other", 0), "TAIL", "t", 0);
    list = zel_list_concat(list, more);
    EXPECT_STREQ(lang_sym_get(list, "N7"), "seven") << "the first one of a name answers";
    EXPECT_STREQ(lang_sym_get(list, "TAIL"), "t");
    list = lang_sym_set(list, "TAIL", "tail", 0);
    list = lang_sym_set(list, "LAST", "l", 0);
    EXPECT_STREQ(lang_sym_get(list, "TAIL"), "tail");
    EXPECT_STREQ(static_cast<lang_sym_t *>(zel_list_last(list)->data)->name, "LAST");
}

TEST_F(LangSymbols, ReplacesInTranslations)
{
    load_process_wide("GROUP g hello { \"Hallo %USER%, 5%PERCENT%\" }");
    EXPECT_EQ(take(_lang_sym_get_str(list, "g", "hello", "f", 1)), "Hallo anna, 5%");
    EXPECT_EQ(take(_lang_sym_get_str(nullptr, "g", "hello", "f", 1)), "Hallo %USER%, 5%PERCENT%");
    EXPECT_EQ(take(_lang_sym_get_str(list, "g", "no %USER%", "f", 1)), "no anna");
    EXPECT_EQ(_lang_sym_get_str(nullptr, "g", "", "f", 1), nullptr);
}
