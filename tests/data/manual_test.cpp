// The manual names every menu entry, button and key of the editor.

#include "data/shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using zel_test::matches;
using zel_test::text_of;

TEST(Manual, NamesWhatTheMenusHold)
{
    const std::string code = text_of("src/editor/frame/edit-menus.cpp");
    std::vector<std::string> texts =
        matches(code, R"re(\{entry::\w+, \w+,\s+"\w+",\s+"([^"]+)")re");
    for (const char *row : {R"re(\btitle\(\w+, "([^"]+)"\))re", R"re(export_text = "([^"]+)")re",
                            R"re(\{tool::\w+, \w+, \w+,\s+"([^"]+)")re"})
        for (const std::string &text : matches(code, row))
            texts.push_back(std::regex_replace(text, std::regex("_"), ""));
    EXPECT_GE(texts.size(), 30U);
    std::string manual = std::regex_replace(text_of("data/doc/manual.md"), std::regex("\\s+"), " ");
    std::erase(manual, '\\'); // which keeps an asterisk an asterisk
    for (const std::string &text : texts)
        EXPECT_THAT(manual, HasSubstr(text));
}

TEST(Manual, NamesTheKeys)
{
    const std::string manual = text_of("data/doc/manual.md");
    const std::string code = text_of("src/editor/frame/edit-menus.cpp");
    for (const char *modifier : {"CONTROL", "MOD1"})
        for (std::string key :
             matches(code, "GDK_KEY_(\\w+), +GDK_" + std::string(modifier) + "_MASK")) {
            if (key.size() == 1)
                key[0] = static_cast<char>(std::toupper(key[0]));
            EXPECT_THAT(manual, HasSubstr((*modifier == 'C' ? "Ctrl+" : "Alt+") + key));
        }
}

} // namespace
