#include "family/list.h"

#include "log-fixture.h"

#include <cstring>
#include <gtest/gtest.h>

using zel_test::take;

namespace {

// The strings of a list, checked to be linked the same way back.
std::string spelled(zel_list *list)
{
    std::string forth;
    std::string back;
    for (const zel_list *node = list; node != nullptr; node = node->next)
        forth += static_cast<const char *>(node->data);
    for (const zel_list *node = zel_list_last(list); node != nullptr; node = node->prev)
        back.insert(0, static_cast<const char *>(node->data));
    EXPECT_EQ(forth, back);
    return forth;
}

zel_list *list_of(std::initializer_list<const char *> texts)
{
    zel_list *list = nullptr;
    for (const char *text : texts)
        list = zel_list_append(list, const_cast<char *>(text));
    return list;
}

int by_first_letter(const void *a, const void *b)
{
    return *static_cast<const char *>(a) - *static_cast<const char *>(b);
}

char letter_x[] = "x";

using list_log = zel_test::with_log;

} // namespace

TEST(list, grows_at_both_ends_and_in_the_middle)
{
    zel_list_guard list(list_of({"b", "c"}));
    zel_list *added = zel_list_prepend(list->next, letter_x);
    EXPECT_EQ(list->next, added);
    EXPECT_EQ("bxc", spelled(list.get()));
    list.reset(zel_list_prepend(list.release(), letter_x));
    EXPECT_EQ("xbxc", spelled(list.get()));
    list.reset(zel_list_concat(list.release(), list_of({"y", "z"})));
    EXPECT_EQ("xbxcyz", spelled(list.get()));
    EXPECT_EQ(6, zel_list_count(list.get()));
    EXPECT_EQ(list.get(), zel_list_concat(nullptr, list.get()));
    EXPECT_EQ(list.get(), zel_list_first(zel_list_last(list.get())));
}

TEST(list, removes_head_middle_and_last)
{
    zel_list *list = list_of({"a", "b", "c", "d"});
    EXPECT_EQ(nullptr, zel_list_remove_link(nullptr, list));
    EXPECT_EQ(list, zel_list_remove_link(list, nullptr));
    list = zel_list_remove_link(list, list->next);
    EXPECT_EQ("acd", spelled(list));
    list = zel_list_remove_link(list, list);
    EXPECT_EQ("cd", spelled(list));
    list = zel_list_remove_link(list, list->next);
    EXPECT_EQ(nullptr, zel_list_remove_link(list, list));
}

TEST(list, releasing_a_tail_keeps_the_front)
{
    const zel_list_guard list(list_of({"a", "b", "c"}));
    zel_list_free(list->next);
    EXPECT_EQ("a", spelled(list.get()));
}

TEST(list, sort_is_stable)
{
    const zel_list_guard list(
        zel_list_sort(list_of({"c1", "a1", "b1", "a2", "c2", "b2", "a3"}), by_first_letter));
    EXPECT_EQ("a1a2a3b1b2c1c2", spelled(list.get()));
    EXPECT_EQ(nullptr, list->prev);
}

TEST(list, strings_are_joined)
{
    const zel_list_guard list(list_of({"one", "", "two"}));
    EXPECT_EQ("onetwo", take(zel_list_generate_str(list.get())));
    EXPECT_EQ("(null)", take(zel_list_generate_str(nullptr)));
    EXPECT_EQ("onetwo", take(zel_list_generate_str2(list.get(), "default")));
    EXPECT_EQ("default", take(zel_list_generate_str2(nullptr, "default")));
}

TEST(list, key_values_sort_by_key_and_by_value)
{
    zel_list *list = zel_list_append(nullptr, key_val_new("a", "2"));
    list = zel_list_append(list, key_val_new("b", ""));
    list = zel_list_sort(list, key_val_sort_func_val);
    EXPECT_STREQ("b", static_cast<key_val *>(list->data)->key);
    list = zel_list_sort(list, key_val_sort_func_key);
    EXPECT_STREQ("a", static_cast<key_val *>(list->data)->key);
    zel_list_free_with_key_val(list);
}

TEST_F(list_log, counters_tell_leaks)
{
    zel_list_alloc_count = zel_list_free_count = 0;
    zel_list *list = list_of({"a", "b", "c"});
    zel_list_debug_info();
    zel_list_free(list);
    zel_list_debug_info();
    EXPECT_EQ("* zel_list_debug_info: alloc:free 3:0\n* zel_list_debug_info: alloc-free 3\n"
              "* zel_list_debug_info: alloc:free 3:3\n* zel_list_debug_info: alloc-free 0\n",
              logged());
}
