// What other programs read of lint; pages/lint.md tells the rest of the word.

#include "kit/run-kit.h"

#include <gtest/gtest.h>

namespace {

using zel_test::kit;

// A script judges it: it is there for other programs.
TEST(Lint, SarifHoldsWhatItsReadersNeed)
{
    const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
    zel_test::write_file("a file.lang-src", R"(define format utf8
define file "e.lang" lang "english" 200 200 1
GROUP "main" {
  ITEM "%d %s" { USED YES READY 1 LANG "english" { "%d %s" } LANG "german" { "%s" } }
  ITEM "Name:" { USED YES READY 1 LANG "english" { "Name:" } LANG "german" { "Name" } }
}
define file "g.lang" lang "german" 200 200 1
define file "g.lang" lang "french" 200 200 1
)");
    const auto check = [](const std::string &sources, int status, const std::string &holds) {
        ASSERT_EQ(kit("lint --format sarif " + sources + " >out.sarif").status, status);
        EXPECT_EQ(std::system(("python3 '" LANG_SOURCE_ROOT "/tests/kit/check-sarif' out.sarif " +
                               holds + " >said 2>&1")
                                  .c_str()),
                  0)
            << zel_test::read_file("said");
    };
    check("'a file.lang-src'", 1, "5 'a%20file.lang-src'");
    check("'a file.lang-src' none.lang-src", 2, "5 'a%20file.lang-src' none.lang-src");
}

} // namespace
