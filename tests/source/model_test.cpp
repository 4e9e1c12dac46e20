#include "source/model.h"

#include <gtest/gtest.h>

#include <glib.h>

#include "source/source-text.h"
#include "support/string-copy.h"
#include "working-dir.h"

namespace {

using zel_test::describe;

TEST(Model, FreshRecords)
{
    LangSource *source = lang_alloc_group();
    EXPECT_EQ(describe(source, zel_test::counts::yes), "");
    EXPECT_STREQ(source->app, "unknown");
    EXPECT_STREQ(source->default_lang, "english");
    edit_t *group = lang_alloc_edit();
    EXPECT_EQ(describe(group), "group (null) { }");
    item_t *item = alloc_item();
    EXPECT_EQ(describe(item), "item (null)");
    EXPECT_EQ(item->source, nullptr);
    lang_t *lang = alloc_lang();
    source->langs = g_list_append(nullptr, lang);
    EXPECT_EQ(describe(source), "lang (null) (null) 200 200 0");
    EXPECT_EQ(lang->stream, nullptr);
    free_item(item);
    free_edit(&group);
    EXPECT_EQ(group, nullptr);
    lang_free_group(&source);
    EXPECT_EQ(source, nullptr);
}

TEST(Model, AnEntryCopiesItsLanguage)
{
    char name[] = "german";
    lang_entry_t *entry = alloc_lang_entry(name);
    name[0] = 'G';
    EXPECT_STREQ(entry->lang, "german");
    EXPECT_EQ(entry->texts, nullptr);
    lang_entry_t *without = alloc_lang_entry(nullptr);
    EXPECT_EQ(without->lang, nullptr);
    free_lang_entry_list(g_list_append(g_list_append(nullptr, entry), without));
}

// The leak and double-free checks are the sanitizers'.
TEST(Model, ReleasesEverythingOnce)
{
    LangSource *source = lang_alloc_group();
    source->create_date = zel_strdup("today");
    edit_t *full = lang_alloc_edit();
    full->name = zel_strdup("main");
    full->screen_shot = zel_strdup("main.jpg");
    item_t *item = alloc_item();
    item->name = zel_strdup("ok");
    item->description = zel_strdup("button");
    item->used_in = g_list_append(g_list_append(nullptr, zel_strdup("a.c")), nullptr);
    lang_entry_t *entry = alloc_lang_entry("english");
    entry->texts = g_list_append(g_list_append(nullptr, zel_strdup2("OK")), zel_strdup2(""));
    item->langs = g_list_append(g_list_append(nullptr, entry), alloc_lang_entry("german"));
    item->comments = g_list_append(nullptr, alloc_lang_entry(nullptr));
    full->items = g_list_append(g_list_append(nullptr, item), alloc_item());
    source->groups = g_list_append(g_list_append(nullptr, full), lang_alloc_edit());
    lang_free_group(&source);
    EXPECT_EQ(source, nullptr);
}

TEST(Model, ReleasingNothing)
{
    free_lang_entry_text(nullptr);
    free_lang_entry_list(nullptr);
    free_lang_list(nullptr);
    free_item(nullptr);
    free_item_list(nullptr);
    edit_t *group = nullptr;
    free_edit(&group);
    zel_test::log_capture log;
    LangSource *source = nullptr;
    lang_free_group(&source);
    EXPECT_EQ(log.text(), "lang_free_group: entry\nlang_free_group: exit\n");
}

class ModelFiles : public zel_test::working_dir {};

TEST_F(ModelFiles, ReleasingALanguageClosesItsStream)
{
    lang_t *lang = alloc_lang();
    lang->stream = std::fopen("english.lang", "w");
    std::fputs("text", lang->stream);
    zel_test::log_capture log;
    free_lang_list(g_list_append(nullptr, lang));
    EXPECT_EQ(zel_test::read_file("english.lang"), "text");
    EXPECT_EQ(log.text(), "free_lang_list: entry\nfree_lang_list: exit\n");
}

} // namespace
