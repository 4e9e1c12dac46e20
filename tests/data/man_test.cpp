// The man pages name what there is: what is missing in one is found here, not by a reader.

#include "data/shell.h"
#include "working-dir.h"

#include <regex>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using zel_test::in_root;
using zel_test::matches;
using zel_test::shell;
using zel_test::text_of;

// A page as a reader sees its words: without the signs that keep a dash or a blank together.
std::string page(const std::string &name)
{
    std::string text = text_of("data/man/" + name);
    text = std::regex_replace(text, std::regex(R"(\\f[BIRP]|\\[|&])"), "");
    return std::regex_replace(text, std::regex(R"(\\(-|\s))"), "$1");
}

bool names(const std::string &text, const std::string &word)
{
    const std::string plain = std::regex_replace(word, std::regex(R"([?.*+()])"), R"(\$&)");
    return std::regex_search(text, std::regex("(^|[^A-Za-z0-9_-])" + plain + "($|[^A-Za-z0-9_-])"));
}

void expect_all(const std::string &name, const std::vector<std::string> &words, std::size_t least)
{
    const std::string text = page(name);
    EXPECT_GE(words.size(), least);
    for (const std::string &word : words)
        EXPECT_TRUE(names(text, word)) << name << " does not name " << word;
}

TEST(Man, EveryWordOfTheCommandLine)
{
    std::vector<std::string> words =
        matches(text_of("src/cli/driver.cpp"), R"re(\{"([^"]+)", +(?:word_|compile_|[12]))re");
    for (const std::string &word :
         matches(text_of("src/checker/check.cpp"), R"re(\{"([^"]+)", +OPTION_)re"))
        words.push_back("--" + word);
    expect_all("lang.1", words, 32);
    // What the program itself offers.
    expect_all("lang.1", matches(shell("lang help").out, R"(\n(-[a-z-]+|[a-z]+) +)"), 5);
}

TEST(Man, EveryNameOfTheLibrary)
{
    expect_all("liblang.3", matches(text_of("src/langlib/liblang.map"), R"(\n +([A-Za-z_0-9]+);)"),
               62);
    expect_all("liblang.3", matches(text_of("src/langlib/lang.h"), R"(#define (lang_[a-z_]+)\()"),
               8);
}

TEST(Man, EveryKeywordOfASource)
{
    auto words = matches(text_of("src/source/source-grammar.cpp"), R"re(\{"([a-z_0-9]+)", key_)re");
    for (std::string &word : words)
        for (char &letter : word)
            letter = static_cast<char>(std::toupper(letter));
    expect_all("lang-source.5", words, 30);
}

TEST(Man, EveryWordAndOptionOfTheCompanion)
{
    const auto words = matches(shell("lang-kit --help").out, R"(\n  ([a-z]+) )");
    expect_all("lang-kit.1", words, 12);
    std::set<std::string> options;
    for (const std::string &word : words)
        for (const std::string &option :
             matches(shell("lang-kit " + word + " --help").out, R"(\n  (?:-[a-z], )?(--[a-z-]+))"))
            options.insert(option);
    expect_all("lang-kit.1", {options.begin(), options.end()}, 20);
}

TEST(Man, PagesAreWellFormed)
{
    if (shell("command -v mandoc").status != 0)
        return zel_test::missing("mandoc");
    const auto run = shell("mandoc -Tlint " + in_root("data/man/*"));
    EXPECT_EQ(run.out + run.err, "");
    EXPECT_EQ(run.status, 0);
}

} // namespace
