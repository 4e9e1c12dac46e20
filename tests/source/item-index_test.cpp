#include "source/item-index.h"

#include "source/group.h"
#include "test-support.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(ItemIndex, InsertsLikeTheWalk)
{
    source_guard walked(lang_alloc_group());
    source_guard indexed(lang_alloc_group());
    insert_group_item(walked.get(), "old", "one");
    insert_group_item(indexed.get(), "old", "one");
    zel::item_index index(indexed.get());
    for (int n = 0; n < 3000; ++n) {
        const std::string group = n % 3 == 0 ? "old" : "g" + std::to_string(n % 50);
        const std::string name = std::to_string(n * 7 % 2000);
        const std::string said = zel_test::capture_stdout(
            [&] { insert_group_item(walked.get(), group.c_str(), name.c_str()); });
        EXPECT_EQ(zel_test::capture_stdout([&] { index.insert(group.c_str(), name.c_str()); }),
                  said);
    }

    GList *group = indexed->groups;
    for (const edit_t *expected : zel::each<edit_t>(walked->groups)) {
        ASSERT_NE(group, nullptr);
        const auto *found = static_cast<edit_t *>(group->data);
        EXPECT_STREQ(found->name, expected->name);
        GList *node = found->items;
        for (const item_t *item : zel::each<item_t>(expected->items)) {
            ASSERT_NE(node, nullptr);
            const auto *same = static_cast<item_t *>(node->data);
            EXPECT_STREQ(same->name, item->name);
            EXPECT_EQ(same->source, indexed.get());
            EXPECT_EQ(index.find(found->name, item->name)->item, same);
            node = node->next;
        }
        EXPECT_EQ(node, nullptr);
        group = group->next;
    }
    EXPECT_EQ(group, nullptr);
    EXPECT_EQ(index.find("old", "none"), nullptr);
    EXPECT_EQ(index.find("none", "one"), nullptr);
}

TEST(ItemIndex, AppendsUsesBehindThoseThatAreThere)
{
    source_guard source(lang_alloc_group());
    item_t *item = insert_group_item(source.get(), "g", "i");
    item->used_in = g_list_append(nullptr, g_strdup("first"));
    zel::item_index index(source.get());
    zel::add_use(*index.find("g", "i"), "second");
    zel::add_use(*index.find("g", "i"), "third");
    std::string all;
    for (const char *place : zel::each<char>(item->used_in))
        all += std::string(place) + " ";
    EXPECT_EQ(all, "first second third ");
}

} // namespace
