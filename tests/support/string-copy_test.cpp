#include "family/string-copy.h"
#include "support/file-call.h"

#include "log-fixture.h"

#include <gtest/gtest.h>

using zel_test::capture_stderr;
using zel_test::take;

namespace {

using string_copy_log = zel_test::with_log;

} // namespace

TEST(copies, of_empty_strings)
{
    EXPECT_EQ("(null)", take(zel_strdup("")));
    EXPECT_EQ("", take(zel_strdup2("")));
    EXPECT_EQ("(null)", take(zel_strdup2(nullptr)));
    EXPECT_EQ("(null)", take(_zel_str_add(nullptr, "", "f", 1)));
    EXPECT_EQ("ab", take(_zel_str_add(zel_strdup("a"), "b", "f", 1)));
    EXPECT_EQ("a", take(_zel_str_add(zel_strdup("a"), nullptr, "f", 1)));
    EXPECT_EQ("ab", take(_zel_strdup_add("a", "b")));
    char *self = zel_strdup(std::string(5000, 'x').c_str());
    self = _zel_str_add(self, self + 2000, "f", 1); // a part of itself
    EXPECT_EQ(std::string(8000, 'x'), take(self));
    EXPECT_EQ("b", take(_zel_strdup_add(nullptr, "b")));
    EXPECT_EQ("(null)", take(_zel_strdup_add("", nullptr)));
}

TEST_F(string_copy_log, unlink_reports_only_what_was_there)
{
    const std::string path = dir / "sub";
    EXPECT_EQ("", capture_stderr([&] { EXPECT_EQ(0, _zel_unlink("a.c", 1, path.c_str())); }));
    std::filesystem::create_directory(path);
    const std::string err =
        capture_stderr([&] { EXPECT_NE(0, _zel_unlink("a.c", 1, path.c_str())); });
    EXPECT_EQ("zel_unlink: a.c:1 ERROR  errno 21 >" + path + "<>Is a directory<\n", err);
    EXPECT_EQ("* " + err, logged());
}
