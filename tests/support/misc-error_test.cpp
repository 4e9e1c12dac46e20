#include "support/misc-error.h"

#include "log-fixture.h"

#include <gtest/gtest.h>

using zel_test::capture_stderr;

namespace {

using misc_error_log = zel_test::with_log;

} // namespace

TEST_F(misc_error_log, reports_name_their_place)
{
    const std::string err = capture_stderr([] {
        EXPECT_EQ(0, _zel_fatal("a.c", 7, "bad"));
        EXPECT_EQ(0, _zel_error("b.c", 8, "worse"));
    });
    EXPECT_EQ("FATAL: a.c:7 bad\nERROR: b.c:8 worse\n", err);
    EXPECT_EQ("* FATAL: a.c:7 bad\n* ERROR: b.c:8 worse\n", logged());
}
