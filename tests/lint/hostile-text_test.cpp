// Texts that mean harm: one that is judged in a time that grows with its square, or by a function
// that calls itself for each of its signs, keeps a build server busy or ends the editor.

#include "lint/judge.h"

#include <gtest/gtest.h>

namespace {

using zel_test::judge;

std::string many(std::string_view piece)
{
    constexpr int pieces = 100000;
    std::string text;
    for (int i = 0; i < pieces; ++i)
        for (const char c : piece)
            text += c == '#' ? std::to_string(i) : std::string(1, c);
    return text;
}

TEST(HostileTextSlow, IsJudgedInItsOwnTime)
{
    const struct {
        const char *rule, *reference, *text, *end; // "#" is a number
        const char *said;                          // what that begins with
    } rows[] = {
        {"ending", "(", ")", "", ""},
        {"ending", "x.", ".)", "", ""},
        {"format", "one|", "ein|", "%d", ""},
        {"format", "one|", "%s|", "%d", "the item asks for \"%d\", the text for \"%s\""},
        {"length", "only one note|", "einer und noch einer und noch einer|", "%d",
         "35 characters, the reference has 13"},
        {"symbol", "%N#% ", "%N#% ", "", ""},
        {"symbol", "%N#% ", "%n#z% ", "", "the item has no symbol \"%n0z%\""},
        {"markup", "<x#>", "<x#></x#>", "", "the reference has no tag </x0>"},
        {"mnemonic", "fine_word ", "fine_word ", "", ""},
        {"link", "# ", "# ", "", ""},
        {"link", "1# ", "#,1", "", ""},
        {"link", "/", ".@", "", ""},
        {"link", "http://a/# ", "http://b/# ", "", "the address http://a/0 is http://b/0"},
    };
    for (const auto &row : rows) {
        const std::string said =
            judge(row.rule, many(row.reference) + row.end, many(row.text) + row.end);
        const std::string expected = *row.said == '\0' ? "" : "german: " + std::string(row.said);
        EXPECT_EQ(said.substr(0, expected.empty() ? 80 : expected.size()), expected)
            << row.rule << ": " << row.reference << " | " << row.text;
    }
}

} // namespace
