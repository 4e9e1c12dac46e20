// Texts that mean harm: one that is judged in a time that grows with its square, or by a function
// that calls itself for each of its signs, keeps a build server busy or ends the editor.

#include "lint/judge.h"

#include <ctime>

#include <gtest/gtest.h>

namespace {

using zel_test::judge;

std::string many(std::string_view piece)
{
    constexpr int pieces = 50000;
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

TEST(HostileTextSlow, LanguagesAreFoundAtOnce)
{
    const std::clock_t begin = std::clock();
    constexpr std::size_t count = 50000;
    constexpr std::size_t known = count / 5;
    zel_test::made_source source;
    item_t *item = source.add("g", "i", {{"english", "x"}});
    for (std::size_t i = 0; i < count; ++i)
        item->langs = g_list_prepend(
            item->langs, zel_test::made_source::entry("unknown" + std::to_string(i), "x"));
    EXPECT_EQ(source.findings(zel_test::only("undefined")).size(), count);
    for (std::size_t i = 0; i < known; ++i) {
        lang_t *lang = alloc_lang();
        lang->name = zel_strdup(("l" + std::to_string(i)).c_str());
        source.get()->langs = g_list_prepend(source.get()->langs, lang);
    }
    EXPECT_EQ(source.findings(zel_test::only("missing")).size(), known + 1) << "and german";
    EXPECT_LT(std::clock() - begin, 15 * CLOCKS_PER_SEC);
}

} // namespace
