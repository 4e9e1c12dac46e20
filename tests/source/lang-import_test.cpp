#include "source/lang-import.h"

#include "langlib/lang.h"
#include "source/group.h"
#include "source/misc.h"
#include "support/string-copy.h"
#include "working-dir.h"

#include <gmock/gmock.h>

namespace {

class Import : public zel_test::working_dir {
protected:
    Import()
    {
        source->langs = g_list_append(nullptr, alloc_lang()); // without a name
        insert_group_item(source.get(), "menu", "Open");
        insert_group_item(source.get(), "menu", "Close");
        item("Open")->langs = g_list_append(item("Open")->langs, old_text());
    }
    static lang_entry_t *old_text()
    {
        lang_entry_t *entry = alloc_lang_entry("german");
        for (const char *line : {"drei\n", "alte\n", "Zeilen"})
            entry->texts = g_list_append(entry->texts, zel_strdup(line));
        return entry;
    }
    item_t *item(const char *name) const { return get_item_ptr(source.get(), "menu", name); }
    std::string text(const char *name) const
    {
        const lang_entry_t *entry = misc_select_lang_entry(item(name), "german");
        std::string lines;
        for (const char *line : zel::each<char>(entry == nullptr ? nullptr : entry->texts))
            lines += std::string(line) + "|";
        return lines;
    }
    int import(const std::string &compiled)
    {
        zel_test::write_file("in.lang", compiled);
        lang_handle_t *handle = lang_import_new("in.lang");
        const int result = lang_import(source.get(), handle);
        lang_free(handle, 1);
        return result;
    }

    source_guard source{lang_alloc_group()};
};

} // namespace

TEST_F(Import, TranslatedTextsReplaceOrJoinTheItems)
{
    EXPECT_EQ(import("FORMAT UTF8\nLANGUAGE \"german\"\nPOSNR\nGROUP \"menu\"\n"
                     "\"Open\" { \"1:\" \"\xc3\x96"
                     "ff\" \"nen\" }\n\"Close\" { \"2:\" \"Zu\" }\n"
                     "\"Other\" { \"3:\" \"x\" }\nGROUP \"new\"\n\"Open\" { \"4:\" \"y\" }\n"),
              0);
    EXPECT_EQ(text("Open"), "\xc3\x96"
                            "ffnen|"); // one line in place of three
    EXPECT_EQ(text("Close"), "Zu|");
    EXPECT_EQ(item("Open")->changed, 0U);
    EXPECT_EQ(g_list_length(source->groups), 1U);
    ASSERT_EQ(g_list_length(source->langs), 2U); // the nameless one never matches
    const auto *lang = static_cast<const lang_t *>(g_list_last(source->langs)->data);
    EXPECT_STREQ(lang->name, "german");
    EXPECT_STREQ(lang->file, "german.lang");
    EXPECT_EQ(lang->edit, 0);
}

TEST_F(Import, DefaultTextsStayOutAndTheLanguageIsAddedOnce)
{
    const std::string compiled = "LANGUAGE \"german\"\nGROUP \"menu\"\n"
                                 "\"Open\" { default \"Open\" }\n\"Close\" { \"Zu\" }\n";
    EXPECT_EQ(import(compiled), 0);
    EXPECT_EQ(import(compiled), 0);
    EXPECT_EQ(text("Open"), "drei\n|alte\n|Zeilen|");
    EXPECT_EQ(text("Close"), "Zu|");
    EXPECT_EQ(g_list_length(source->langs), 2U);
    EXPECT_EQ(import("GROUP \"menu\"\n\"Close\" { \"x\" }\n"), 4); // names no language
}

TEST_F(Import, BadArgumentsAreLoggedAndNumbered)
{
    zel_test::log_capture log;
    lang_handle_t *handle = lang_import_new("missing.lang");
    EXPECT_EQ(lang_import(nullptr, handle), 1);
    EXPECT_EQ(lang_import(source.get(), nullptr), 2);
    EXPECT_EQ(lang_import(source.get(), handle), 3);
    lang_free(handle, 1);
    EXPECT_THAT(log.text(), testing::HasSubstr("lang_import: ERROR Group null ptr\n"));
    EXPECT_THAT(log.text(), testing::HasSubstr("lang_import: ERROR Lang->lang null ptr\n"));
}
