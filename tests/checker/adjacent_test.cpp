// Requests in pieces of which only the first is read.

#include "checker/adjacent.h"

#include "test-support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// "LINE:COLUMN what group/read/whole" of each request that is found in the code.
std::vector<std::string> adjacent(const std::string &code)
{
    const zel_test::temp_dir dir;
    zel_test::write_file(dir / "a.c", code);
    std::vector<std::string> out;
    const std::string printed = zel_test::capture_stdout([&] {
        EXPECT_TRUE(zel::find_adjacent((dir / "a.c").c_str(), [&](const auto &found) {
            const char *what[] = {"group", "item", "description"};
            out.push_back(std::to_string(found.line) + ":" + std::to_string(found.column) + " " +
                          what[static_cast<int>(found.of)] + " " + found.group + "/" + found.read +
                          "/" + found.whole);
        }));
    });
    EXPECT_EQ(printed, "");
    return out;
}

TEST(Adjacent, AnItemInPieces)
{
    EXPECT_THAT(adjacent("x = lang_get_string(\"main\", \"Open \" \"file\");\n"
                         "y = lang_tooltip(\"main\",\n  \"One\"\n  \"Two\" \"Three\");\n"
                         "z = LANG_GET_STR(handle(1), \"main\", \"A\" B);\n"),
                ElementsAre("1:36 item main/Open /Open file", "4:2 item main/One/OneTwoThree",
                            "5:40 item main/A/AB"));
}

TEST(Adjacent, NamesHaveTheirValues)
{
    EXPECT_THAT(adjacent("#define NAME \"Open\"\n#define NAME \"again\"\n"
                         "lang_get_string(\"main\", NAME \" it\")\n"
                         "lang_get_string(\"main\", NAME)\n"
                         "lang_get_string(\"main\", unknown \"it\")\n"
                         "lang_get_string(\"main\", yes ? \"a\" : \"b\")\n"),
                ElementsAre("3:29 item main/Open/Open it"));
}

TEST(Adjacent, WhereARequestIsNotReadAtAll)
{
    EXPECT_THAT(adjacent("lang_get_string(\"ma\" \"in\", \"Open\")\n"
                         "lang_get(\"first \" \"second\", \"main\", \"Open\" \"file\")\n"
                         "lang_sym(list, \"text\", \"ma\" \"in\", \"Open\")\n"
                         "lang_get(\"text\", \"main\", \"good \" \"pieces\")\n"),
                ElementsAre("1:21 group ma/ma/main", "2:18 description /first /first second",
                            "3:28 group ma/ma/main"));
}

TEST(Adjacent, WhatTheCheckDoesNotReadIsPassedOver)
{
    EXPECT_THAT(adjacent("// lang_get_string(\"a\", \"b\" \"c\")\n"
                         "ZEL_LANGUAGE_CHECK_STOP lang_get_string(\"a\", \"b\" \"c\")\n"
                         "ZEL_LANGUAGE_CHECK_START\n"
                         "my_lang_get_string(\"a\", \"b\" \"c\")\n"
                         "lang_get_info(h, r, 1, 2, \"a\", \"b\" \"c\", \"d\")\n"
                         "lang_get_string(\"a\""),
                IsEmpty());
}

TEST(Adjacent, InsideAStringItStandsAtTheString)
{
    EXPECT_THAT(
        adjacent("\n  run(\"lang_get_string(\\\"a\\\", \\\"b\\\" \"\n   \"\\\"c\\\")\");\n"),
        ElementsAre("2:6 item a/b/bc"));
}

TEST(Adjacent, AFileThatIsNotThere)
{
    EXPECT_FALSE(zel::find_adjacent("/none/such.c", [](const auto &) {}));
}

} // namespace
