#include "source/group.h"
#include "source/misc.h"
#include "source/quote.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <unistd.h>

#include "locales.h"
#include "source/source-text.h"
#include "support/string-copy.h"
#include "working-dir.h"

namespace {

using zel_test::describe;

// --- groups and items ----------------------------------------------------------------------------

class Groups : public testing::Test {
protected:
    source_guard source{lang_alloc_group()};
};

TEST_F(Groups, AnInsertedItemStandsAtTheEndWithItsNameAsText)
{
    zel::replace_string(source->default_lang, zel_strdup("german"));
    item_t *first = insert_group_item(source.get(), "main", "ok");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->source, source.get());
    EXPECT_NE(insert_group_item(source.get(), "other", "ok"), nullptr);
    EXPECT_NE(insert_group_item(source.get(), "main", "cancel"), nullptr);
    EXPECT_EQ(describe(source.get()),
              "default=german group main { item ok LANG german [\"ok\"] item cancel LANG german "
              "[\"cancel\"] } group other { item ok LANG german [\"ok\"] }");
    EXPECT_EQ(source->item_count, 0U);
    EXPECT_EQ(get_item_ptr(source.get(), "main", "ok"), first);
}

TEST_F(Groups, AnItemIsInsertedOnce)
{
    EXPECT_NE(insert_group_item(source.get(), "main", "ok"), nullptr);
    EXPECT_EQ(zel_test::capture_stdout(
                  [&] { EXPECT_EQ(insert_group_item(source.get(), "main", "ok"), nullptr); }),
              "insert_item: error item exist\n");
    EXPECT_NE(insert_group_item(source.get(), "main", "OK"), nullptr); // another name
    EXPECT_EQ(g_list_length(source->groups), 1U);
}

TEST_F(Groups, LookupsTakeTheFirstThatMatches)
{
    insert_group_item(source.get(), "main", "ok");
    edit_t *again = lang_alloc_edit();
    again->name = zel_strdup("main");
    edit_t *nameless = lang_alloc_edit();
    source->groups = g_list_append(g_list_prepend(source->groups, nameless), again);
    insert_group_item(source.get(), "main", "late");
    EXPECT_EQ(get_edit_ptr(source->groups, "main"), source->groups->next->data);
    EXPECT_EQ(again->items, nullptr);
    EXPECT_EQ(get_edit_ptr(source->groups, "Main"), nullptr);
    EXPECT_EQ(get_item_ptr(source.get(), "main", "none"), nullptr);
    EXPECT_EQ(get_item_ptr(source.get(), "none", "ok"), nullptr);
}

TEST_F(Groups, LookupsSeeRenamedRemovedAndAddedItems)
{
    item_t *item = insert_group_item(source.get(), "main", "ok");
    EXPECT_EQ(get_item_ptr(source.get(), "main", "ok"), item);
    zel::replace_string(item->name, zel_strdup("yes"));
    EXPECT_EQ(get_item_ptr(source.get(), "main", "ok"), nullptr);
    EXPECT_EQ(get_item_ptr(source.get(), "main", "yes"), item);
    auto *group = static_cast<edit_t *>(source->groups->data);
    item_t *direct = alloc_item();
    direct->name = zel_strdup("direct");
    group->items = g_list_append(group->items, direct);
    EXPECT_EQ(get_item_ptr(source.get(), "main", "direct"), direct);
    group->items = g_list_remove(group->items, item);
    free_item(item);
    EXPECT_EQ(get_item_ptr(source.get(), "main", "yes"), nullptr);
    zel::replace_string(group->name, zel_strdup("renamed"));
    EXPECT_EQ(get_item_ptr(source.get(), "main", "direct"), nullptr);
    EXPECT_EQ(get_item_ptr(source.get(), "renamed", "direct"), direct);
}

TEST_F(Groups, NullArguments)
{
    EXPECT_EQ(get_edit_ptr(nullptr, "main"), nullptr);
    EXPECT_EQ(get_edit_ptr(source->groups, nullptr), nullptr);
    EXPECT_EQ(get_item_ptr(nullptr, "main", "ok"), nullptr);
    EXPECT_EQ(get_item_ptr(source.get(), nullptr, "ok"), nullptr);
    EXPECT_EQ(get_item_ptr(source.get(), "main", nullptr), nullptr);
}

TEST_F(Groups, ClearingTheUsageMarks)
{
    for (const char *name : {"a", "b"}) {
        for (const char *group : {"main", "other"}) {
            item_t *item = insert_group_item(source.get(), group, name);
            item->used = 1;
            item->changed = 1;
            item->used_in = g_list_append(g_list_append(nullptr, zel_strdup("x.c")), nullptr);
        }
    }
    EXPECT_EQ(clear_all_used(source.get()), 0);
    item_t *item = get_item_ptr(source.get(), "other", "b");
    EXPECT_EQ(describe(item), "item b changed=1 in [\"x.c\" (null)] LANG english [\"b\"]");
    item->used = 1;
    EXPECT_EQ(clear_all_file_list(source.get()), 0);
    EXPECT_EQ(describe(source.get()),
              "group main { item a changed=1 LANG english [\"a\"] item b changed=1 LANG english "
              "[\"b\"] } group other { item a changed=1 LANG english [\"a\"] item b changed=1 LANG "
              "english [\"b\"] }");
}

// --- texts ---------------------------------------------------------------------------------------

class Texts : public testing::Test {
protected:
    ~Texts() override { free_lang_entry_list(g_list_append(nullptr, entry)); }
    lang_entry_t *of(std::initializer_list<const char *> lines)
    {
        free_lang_entry_text(entry->texts);
        entry->texts = nullptr;
        for (const char *line : lines)
            entry->texts = g_list_append(entry->texts, zel_strdup2(line));
        return entry;
    }
    std::string trimmed(std::initializer_list<const char *> lines)
    {
        misc_remove_empty_lines(of(lines));
        return zel_test::strings(entry->texts);
    }
    lang_entry_t *entry = alloc_lang_entry("english");
};

TEST_F(Texts, TrailingWhiteSpaceIsCutAndLinesStay)
{
    EXPECT_EQ(trimmed({"a ", " ", ""}), R"(["a" "" ""])");
    EXPECT_EQ(trimmed({" a \n\t", "b"}), R"([" a \n\t" "b"])");
    EXPECT_EQ(trimmed({" ", "b", " \v\f\r"}), R"([" " "b" ""])");
    EXPECT_EQ(trimmed({" ", "\t"}), R"(["" ""])");
    EXPECT_EQ(trimmed({}), "[]");
    EXPECT_EQ(trimmed({"\xc3\xa0"}), "[\"\xc3\xa0\"]"); // its last byte is a blank elsewhere
}

TEST_F(Texts, SearchingInLowerCase)
{
    EXPECT_EQ(misc_search_in_lang_entry(of({"no", "Save AS"}), "save as"), 1);
    EXPECT_EQ(misc_search_in_lang_entry(of({"save"}), "SAVE"), 0); // the needle is taken as it is
    EXPECT_EQ(misc_search_in_lang_entry(of({"sa", "ve"}), "save"), 0);
    EXPECT_EQ(misc_search_in_lang_entry(of({}), "a"), 0);
    EXPECT_EQ(misc_search_in_lang_entry(nullptr, "a"), 0);
    EXPECT_EQ(misc_search_in_lang_entry(of({"a"}), nullptr), 0);
    EXPECT_EQ(misc_search_in_lang_entry(of({""}), "a"), 0);
    const std::string at_the_limit = std::string(4190, 'x') + "Y";
    EXPECT_EQ(misc_search_in_lang_entry(of({at_the_limit.c_str()}), "xy"), 1);
    EXPECT_EQ(misc_search_in_lang_entry(of({("x" + at_the_limit).c_str()}), "xy"), 0);
}

TEST_F(Texts, AnEmptyTextHasOnlyWhiteSpace)
{
    EXPECT_EQ(misc_search_empty_in_lang_entry(nullptr), 1);
    EXPECT_EQ(misc_search_empty_in_lang_entry(of({})), 1);
    EXPECT_EQ(misc_search_empty_in_lang_entry(of({"", " ", "\t\n\v\f\r"})), 1);
    EXPECT_EQ(misc_search_empty_in_lang_entry(of({"", " x"})), 0);
    EXPECT_EQ(misc_search_empty_in_lang_entry(of({"\xc2\xa0"})), 0);
}

TEST_F(Texts, AnItemsEntryByLanguage)
{
    const item_guard item(alloc_item());
    for (const char *lang : {static_cast<const char *>(nullptr), "German", "german", "german"})
        item->langs = g_list_append(item->langs, alloc_lang_entry(lang));
    EXPECT_EQ(misc_select_lang_entry(item.get(), "german"), g_list_nth_data(item->langs, 2));
    EXPECT_EQ(misc_select_lang_entry(item.get(), "french"), nullptr);
    EXPECT_EQ(misc_select_lang_entry(nullptr, "german"), nullptr);
    EXPECT_EQ(misc_select_lang_entry(item.get(), nullptr), nullptr);
    EXPECT_EQ(misc_select_lang_entry(item.get(), ""), item->langs->data)
        << "the name \"\" of a file";
}

std::string quoted(unsigned indent, const char *text)
{
    std::FILE *stream = std::tmpfile();
    EXPECT_EQ(misc_write_lang_string(stream, indent, text), 0);
    std::string out(static_cast<std::size_t>(std::ftell(stream)), '\0');
    std::rewind(stream);
    EXPECT_EQ(std::fread(out.data(), 1, out.size(), stream), out.size());
    std::fclose(stream);
    return out;
}

TEST(QuotedStrings, IndentAndEscapes)
{
    EXPECT_EQ(quoted(0, "a\"b"), "  \"a\\\"b\"");
    EXPECT_EQ(quoted(6, "\r\t\n\\"), "        \"\\r\\t\\n\\\\\"");
    EXPECT_EQ(quoted(1, nullptr), "   \"\"");
    EXPECT_EQ(quoted(0, "\x07\x1b\x7f\xff'/*"), "  \"\x07\x1b\x7f\xff'/*\"");
}

TEST(SearchSlow, FoldsTheSameLettersInEveryLocale)
{
    lang_entry_t *entry = alloc_lang_entry("english");
    entry->texts = g_list_append(nullptr, zel_strdup("FILE \xC3\x9C"));
    zel_test::in_each_locale([entry](const char *name) {
        EXPECT_EQ(misc_search_in_lang_entry(entry, "file \xC3\x9C"), 1) << name;
    });
    free_lang_entry_list(g_list_append(nullptr, entry));
}

TEST(EditedLanguages, AreTheFirstTwoMarked)
{
    const source_guard source(lang_alloc_group());
    const char *first = "-";
    const char *second = "-";
    EXPECT_EQ(misc_select_edit_lang(nullptr, &first, &second), 1);
    EXPECT_EQ(misc_select_edit_lang(source.get(), nullptr, &second), 1);
    EXPECT_EQ(misc_select_edit_lang(source.get(), &first, nullptr), 1);
    EXPECT_STREQ(first, "-");
    EXPECT_STREQ(second, "-");
    EXPECT_EQ(misc_select_edit_lang(source.get(), &first, &second), 0);
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(second, nullptr);
    int edit = 0;
    for (const char *name : {"english", "german", "french", "greek"}) {
        lang_t *lang = alloc_lang();
        lang->name = zel_strdup(name);
        lang->edit = edit;
        edit = -1; // not 0 is marked
        source->langs = g_list_append(source->langs, lang);
        misc_select_edit_lang(source.get(), &first, &second);
        EXPECT_EQ(first == nullptr ? "" : first, std::string(lang->edit == 0 ? "" : "german"));
    }
    EXPECT_STREQ(second, "french");
}

TEST(Utf8, InvalidTextsAreNoted)
{
    zel_test::log_capture log;
    EXPECT_EQ(
        zel_test::capture_stdout([] {
            lang_check_utf8("a.c", 3, "text", "gr\xc3\xb6n");
            lang_check_utf8("a.c", 3, "text", nullptr);
            lang_check_utf8("a.c", 3, "text", "gr\xf6n");
            lang_check_utf8(nullptr, -1, nullptr, "\xc3");
        }),
        "INFO: a.c: pos=3 invalid utf8 text >gr\xf6n<\nINFO:  : pos=-1 invalid utf8   >\xc3<\n");
    EXPECT_EQ(
        log.text(),
        "INFO: a.c: pos=3 invalid utf8 text >gr\xf6n<\nINFO:  : pos=-1 invalid utf8   >\xc3<\n");
}

TEST(Administrator, IsTheRealUserZero) { EXPECT_EQ(LangIsUserAdmin(), getuid() == 0 ? 1 : 0); }

} // namespace
