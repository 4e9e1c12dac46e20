// The packages are in step with what the build installs and the library shows.

#include "data/shell.h"

#include <algorithm>
#include <filesystem>
#include <fnmatch.h>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using zel_test::in_root;
using zel_test::matches;
using zel_test::shell;
using zel_test::text_of;

std::set<std::string> set_of(const std::vector<std::string> &names)
{
    return {names.begin(), names.end()};
}

// A name that is new gets a line with the version in which it came.
TEST(Package, SymbolsAreThoseOfTheLibrary)
{
    EXPECT_EQ(
        set_of(matches(text_of("debian/liblang1.symbols"), R"(\n ([A-Za-z_0-9]+)@LANG_1 )")), [] {
            auto names =
                set_of(matches(text_of("src/langlib/liblang.map"), R"(\n +([A-Za-z_0-9]+);)"));
            names.insert("LANG_1");
            return names;
        }());
}

TEST(Package, VersionIsThatOfTheProject)
{
    EXPECT_EQ(matches(text_of("debian/changelog"), R"(^lang \(([0-9.]+)-)"),
              matches(text_of("CMakeLists.txt"), R"(project\(lang VERSION ([0-9.]+))"));
}

// Debian has folders of its own for libraries and zsh.
std::string as_built(std::string pattern)
{
    pattern = std::regex_replace(pattern, std::regex(R"(usr/lib/\*/)"), "usr/lib*/");
    return std::regex_replace(pattern, std::regex("vendor-completions"), "site-functions");
}

bool covers(const std::string &pattern, const std::string &path)
{
    return fnmatch(pattern.c_str(), path.c_str(), 0) == 0 ||
           fnmatch((pattern + "/*").c_str(), path.c_str(), 0) == 0;
}

TEST(PackageSlow, EachInstalledFileIsInOnePackage)
{
    std::vector<std::string> patterns;
    for (const char *package :
         {"lang", "lang-editor", "lang-kit", "liblang1", "liblang-dev", "python3-lang"}) {
        std::istringstream lines(text_of(std::string("debian/") + package + ".install"));
        for (std::string line; std::getline(lines, line);)
            patterns.push_back(as_built(line));
    }
    const zel_test::temp_dir root;
    const std::string kit = LANG_KIT;
    const auto run = shell("DESTDIR=" + root.path() + " cmake --install '" +
                           kit.substr(0, kit.rfind('/')) + "' --prefix /usr");
    ASSERT_EQ(run.status, 0) << run.err;

    std::set<std::string> unused(patterns.begin(), patterns.end());
    for (const auto &entry : std::filesystem::recursive_directory_iterator(root.path())) {
        if (entry.is_directory() && !entry.is_symlink())
            continue;
        const std::string path = entry.path().string().substr(root.path().size() + 1);
        int packages = 0;
        for (const std::string &pattern : patterns)
            if (covers(pattern, path)) {
                ++packages;
                unused.erase(pattern);
            }
        EXPECT_EQ(packages, 1) << path;
    }
    EXPECT_THAT(unused, testing::IsEmpty());
}

} // namespace
