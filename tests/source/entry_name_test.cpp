#include "source/entry-name.h"
#include "source/model.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(EntryName, EqualNamesAreKeptOnceAndLiveUntilTheLastEntryGoes)
{
    EXPECT_EQ(zel::take_entry_name(nullptr), nullptr);
    zel::drop_entry_name(nullptr);
    lang_entry_t *first = alloc_lang_entry("english");
    lang_entry_t *german = alloc_lang_entry("german");
    lang_entry_t *second = alloc_lang_entry(std::string("english").c_str());
    EXPECT_EQ(first->lang, second->lang);
    EXPECT_STRNE(first->lang, german->lang);
    free_lang_entry_list(g_list_append(nullptr, first));
    free_lang_entry_list(g_list_append(nullptr, german));
    EXPECT_STREQ(second->lang, "english");
    free_lang_entry_list(g_list_append(nullptr, second));
    char *none = zel::take_entry_name("");
    EXPECT_STREQ(none, "");
    zel::drop_entry_name(none);
}

TEST(EntryName, ManyDifferentOnesKeepTheirCharactersInAnyOrder)
{
    std::vector<char *> names;
    names.reserve(20000);
    for (int i = 0; i < 20000; ++i)
        names.push_back(zel::take_entry_name(std::to_string(i % 15000).c_str()));
    for (std::size_t i = 0; i < names.size(); ++i)
        ASSERT_EQ(names[i], std::to_string(i % 15000));
    for (std::size_t step = 0; step < 3; ++step)
        for (std::size_t i = step; i < names.size(); i += 3)
            zel::drop_entry_name(names[i]);
    char *again = zel::take_entry_name("7");
    EXPECT_STREQ(again, "7");
    zel::drop_entry_name(again);
}

} // namespace
