#include "family/info.h"

#include "log-fixture.h"

#include <gtest/gtest.h>

namespace {

using info_log = zel_test::with_log;

void send_message(const char *format, ...)
{
    std::va_list args;
    va_start(args, format);
    zel_info_msg(format, args);
    va_end(args);
}

void print_into(const char *format, std::va_list args, void *data)
{
    char text[64];
    std::vsnprintf(text, sizeof text, format, args);
    *static_cast<std::string *>(data) += text;
}

} // namespace

TEST_F(info_log, keeps_the_worst_entry)
{
    zel_info_t *info = nullptr;
    zel_info_add(&info, 2, 20, "m", "a", "two", "oa", "om");
    zel_info_add(&info, 5, 50, "m", "a", "five", nullptr, nullptr);
    zel_info_add(&info, 3, 30, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(5, info->level);
    EXPECT_EQ(50U, info->code);
    EXPECT_STREQ("five", info->worst->msg);
    EXPECT_EQ(3, zel_list_count(info->entries));
    zel_info_add(&info, 0x80000001U, 9, "m", "a", "high", nullptr, nullptr);
    zel_info_add(&info, 7, 70, "m", "a", "seven", nullptr, nullptr);
    EXPECT_EQ(0x80000001U, static_cast<std::uint32_t>(info->level)) << "levels have no sign";
    EXPECT_STREQ("high", info->worst->msg);

    zel_info_t *moved = zel_info_move(&info);
    EXPECT_EQ(nullptr, info);
    zel_info_cleanup(moved);
    EXPECT_EQ(0, moved->level);
    EXPECT_EQ(nullptr, moved->entries);
    zel_info_free(moved);
}

TEST_F(info_log, printed_and_logged_at_its_release)
{
    zel_info_t *info = zel_info_new();
    auto *entry = zel_info_entry_new(1, 2, "mod", "act", "text", "o-act", nullptr);
    EXPECT_EQ(1, zel_info_add_entry(nullptr, entry));
    zel_info_t *none = nullptr;
    EXPECT_EQ(nullptr, zel_info_add_entry_and_move(
                           &none, zel_info_entry_new(1, 2, "mod", "act", "text", "o", "o")));
    zel_info_t *moved = zel_info_add_entry_and_move(&info, entry);
    EXPECT_EQ(nullptr, info);
    EXPECT_EQ("activity: act\nmodul   : mod\nmsg     : text\n\n\n",
              zel_test::capture_stdout([&] { zel_info_fprint(stdout, moved); }));
    zel_info_free(moved);
    EXPECT_EQ("* zel_info_log_print: start ----------------\n"
              "* modul     : mod\n* activity  : act\n* msg       : text\n* o_activity: o-act\n"
              "* o_msg     : unknown\n* \n\n"
              "* zel_info_log_print: end   ----------------\n",
              logged());
}

TEST_F(info_log, internal_messages_go_to_the_callback)
{
    send_message("logged %d\n", 1);
    std::string text;
    zel_info_set_internal_msg_cb(print_into, &text);
    send_message("caught %d", 2);
    zel_info_set_internal_msg_cb(nullptr, nullptr);
    EXPECT_EQ("caught 2", text);
    EXPECT_EQ("* logged 1\n", logged());
}
