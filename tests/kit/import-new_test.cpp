// A project comes over with any catalogs; pages/import-new.md tells what becomes of good ones.

#include "exchange/sources.h"
#include "kit/run-kit.h"

#include <gtest/gtest.h>

namespace {

using zel_test::kit;

// What was exported and is made again holds the same texts under the same keys.
TEST(ImportNew, TakesItsOwnExportsForWhatTheyAre)
{
    const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
    zel_test::write_file("a.lang-src", zel_test::awkward_source(4, false).make(40));
    ASSERT_EQ(kit("export --format po a.lang-src").status, 0);
    ASSERT_EQ(kit("import --format po --fuzzy --new -o b.lang-src *.po").status, 0);
    ASSERT_EQ(kit("export --format po a.lang-src").status, 0);
    const auto again = kit("import --format po --fuzzy b.lang-src *.po");
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(again.out, "");
}

} // namespace
