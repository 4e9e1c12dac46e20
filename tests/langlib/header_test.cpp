// The public header among the project's own: what both declare must be the same, and either may
// come first. The compiler compares.

#include "langlib/lang.h"

#include "langlib/lang-request.h"
#include "lex/lex-misc.h"
#include "lex/min_lex.h"
#include "support/info.h"
#include "support/list.h"
#include "support/log.h"

#include <gtest/gtest.h>

TEST(LangHeader, FormsTakeAdjacentLiterals)
{
    static const char *const table[] = {lang_dummy("colour", "g", "Red"), lang_dummy("colour", "g",
                                                                                     "Gr"
                                                                                     "een")};
    EXPECT_STREQ(table[1], "Green");
    EXPECT_STREQ(lang_get_string("g", "two "
                                      "parts"),
                 "two parts");
    EXPECT_STREQ(lang_get("note", "g",
                          "two "
                          "parts"),
                 "two parts");
}
