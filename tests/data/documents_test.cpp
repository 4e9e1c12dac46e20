// What the documents name is there: links of an installation, and the tests of decisions.

#include "data/shell.h"

#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

namespace {

using zel_test::in_root;
using zel_test::matches;

// Suite.Test of the sources and of the editor's scenes, names of ctest, cases/NAME, pages/NAME and
// examples/NAME.
std::set<std::string> names_of_tests()
{
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(in_root("tests"))) {
        const std::filesystem::path &path = entry.path();
        const std::string folder = path.parent_path().filename();
        if (folder == "cases" || folder == "pages")
            names.insert(folder + "/" + path.stem().string());
        if (folder == "gui" && !path.has_extension()) // a script for the real editor
            names.insert("gui_" + path.filename().string());
        if (!entry.is_regular_file() ||
            (path.extension() != ".cpp" && path.filename() != "CMakeLists.txt" &&
             path.extension() != ".cmake" && folder != "scenes"))
            continue;
        std::istringstream lines(zel_test::read_file(path));
        for (std::string line; std::getline(lines, line);)
            if (std::smatch found; line.find("add_test(NAME ") != std::string::npos &&
                                   std::regex_search(line, found, std::regex(R"(NAME (\w+))")))
                names.insert(found[1]);
            else if (folder == "scenes" && std::regex_match(line, std::regex(R"(\w+\.\w+)")))
                names.insert(line);
            else if (line.starts_with("TEST") &&
                     std::regex_search(line, found, std::regex(R"(\((\w+), (\w+)\))")))
                names.insert(found[1].str() + "." + found[2].str());
    }
    for (const auto &entry : std::filesystem::directory_iterator(in_root("examples")))
        if (std::filesystem::exists(entry.path() / "run.sh"))
            names.insert("examples/" + entry.path().filename().string());
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

// As cmake/install.cmake has it.
bool is_installed(const std::string &path)
{
    const std::regex installed(
        R"((README|CHANGELOG)\.md|examples/.*|docs/(?!architecture|decisions).*\.(md|png))");
    return std::regex_match(path, installed) && std::filesystem::exists(in_root(path));
}

TEST(Documents, LinksOfInstalledOnesLeadToInstalledOnes)
{
    std::vector<std::filesystem::path> pages{"README.md", "CHANGELOG.md"};
    for (const auto &entry : std::filesystem::directory_iterator(in_root("docs")))
        pages.push_back("docs" / entry.path().filename());
    std::size_t links = 0;
    for (const std::filesystem::path &page : pages)
        if (page.extension() == ".md" && is_installed(page))
            for (const std::string &link :
                 matches(zel_test::text_of(page), R"([^\[]\]\(([^)#:]+)\))")) {
                ++links;
                EXPECT_TRUE(is_installed((page.parent_path() / link).lexically_normal()))
                    << page << " leads to " << link;
            }
    EXPECT_GT(links, 20U);
}

} // namespace
