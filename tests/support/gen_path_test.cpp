#include "support/gen_path.h"

#include "log-fixture.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

using gen_path_log = zel_test::with_log;

} // namespace

TEST(gen_path, puts_one_separator_between_components)
{
    char path[64] = "before";
    EXPECT_EQ(0, gen_path(path, 0, "out", "deutsch-edit", "de.lang", nullptr));
    EXPECT_STREQ("out/deutsch-edit/de.lang", path);
    gen_path(path, 0, "/tmp/", "a/", "/b", nullptr);
    EXPECT_STREQ("/tmp/a/b", path);
    gen_path(path, 0, "d", nullptr);
    gen_path(path, 1, "e", nullptr);
    EXPECT_STREQ("d/e", path);
    gen_path(path, 0, "/tmp/a/b", nullptr);
    gen_path(path, 1, "c", "", "unreached", nullptr);
    EXPECT_STREQ("/tmp/a/b/c", path);
    gen_path(path, 0, "\\abs\\", "\\x\\", nullptr);
    EXPECT_STREQ("/abs\\x", path);
}

TEST(gen_path, roots_keep_their_separator)
{
    char path[64];
    gen_path(path, 0, "/", nullptr);
    EXPECT_STREQ("/", path);
    gen_path(path, 0, "c:", nullptr);
    EXPECT_STREQ("c:/", path);
    gen_path(path, 0, "ab/", nullptr);
    EXPECT_STREQ("ab", path);
}

TEST_F(gen_path_log, needs_a_buffer)
{
    EXPECT_EQ(1, gen_path(nullptr, 0, "a", nullptr));
    EXPECT_EQ("* gen_path: ERROR: no buffer\n", logged());
}

TEST(gen_path, stays_within_the_size)
{
    char path[16];
    std::memset(path, '#', sizeof path);
    EXPECT_EQ(1, gen_path_ext(path, 0, 8, "abc", "def", nullptr));
    EXPECT_STREQ("abc/", path);
    EXPECT_EQ('#', path[8]);
    EXPECT_EQ(0, gen_path_ext(path, 0, 10, "abc", "def", nullptr));
    EXPECT_STREQ("abc/def", path);
    EXPECT_EQ(0, gen_path_ext(path, 1, 10, nullptr, nullptr));
    EXPECT_STREQ("abc/def/", path);
    EXPECT_EQ(1, gen_path_ext(path, 1, 9, "x", nullptr));
    EXPECT_EQ(1, gen_path_ext(path, 0, 1, "x", nullptr));
    EXPECT_STREQ("", path);
}
