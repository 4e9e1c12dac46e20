// The tests that the tables of decisions name are there.

#include "data/shell.h"

#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

namespace {

using zel_test::in_root;
using zel_test::matches;

// Suite.Test of the sources, names of ctest, cases/NAME and pages/NAME.
std::set<std::string> names_of_tests()
{
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(in_root("tests"))) {
        const std::filesystem::path &path = entry.path();
        const std::string folder = path.parent_path().filename();
        if (folder == "cases" || folder == "pages")
            names.insert(folder + "/" + path.stem().string());
        if (!entry.is_regular_file() ||
            (path.extension() != ".cpp" && path.filename() != "CMakeLists.txt" &&
             path.extension() != ".cmake"))
            continue;
        const std::string text = zel_test::read_file(path);
        const std::regex test(R"(\nTEST(?:_F|_P)?\((\w+), +(\w+)\))");
        for (std::sregex_iterator at(text.begin(), text.end(), test), end; at != end; ++at)
            names.insert((*at)[1].str() + "." + (*at)[2].str());
        for (const std::string &name : matches(text, R"(add_test\(NAME (\w+))"))
            names.insert(name);
    }
    return names;
}

TEST(Decisions, EachNamesTheTestThatHoldsIt)
{
    const std::set<std::string> tests = names_of_tests();
    std::size_t without = 0;
    for (const char *page : {"docs/decisions.md", "docs/decisions-editor.md"}) {
        std::istringstream lines(zel_test::text_of(page));
        std::size_t rows = 0;
        for (std::string line; std::getline(lines, line);) {
            if (!line.starts_with("| ") || line.ends_with("| held by |"))
                continue;
            ++rows;
            const std::string held = line.substr(line.rfind(" | ") + 3);
            without += held == "none |" ? 1 : 0;
            const auto named = matches(held, "`([^`]+)`");
            EXPECT_TRUE(!named.empty() || held == "none |") << page << ": " << line;
            for (const std::string &name : named)
                EXPECT_TRUE(tests.contains(name)) << page << " names " << name;
        }
        EXPECT_GT(rows, 100U) << page;
    }
    EXPECT_LE(without, 12U) << "a decision that no test holds is a wish";
}

} // namespace
