// The documents say what the program does: "    $ lang-kit ..." in them is run, and what stands
// below it is what must come out.

#include "kit/run-kit.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

struct shown_command {
    std::string words;
    std::string out; // empty: whatever comes out
};

std::vector<shown_command> commands_of(const std::string &document)
{
    const std::string mark = "    $ lang-kit ";
    std::vector<shown_command> found;
    std::istringstream lines(document);
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(mark)) {
            found.push_back({line.substr(mark.size()), ""});
            inside = true;
        } else if (inside && line.starts_with("    ")) {
            found.back().out += line.substr(4) + "\n";
        } else {
            inside = false;
        }
    }
    return found;
}

void run_all(const std::string &document, std::size_t least)
{
    const auto commands = commands_of(zel_test::read_file(LANG_SOURCE_ROOT "/" + document));
    EXPECT_GE(commands.size(), least) << document;
    for (const shown_command &one : commands) {
        const auto result = zel_test::kit(one.words + " 2>&1");
        EXPECT_LT(result.status, 2) << one.words << "\n" << result.out;
        if (!one.out.empty()) {
            EXPECT_EQ(result.out, one.out) << one.words;
        }
    }
}

TEST(Documents, TheReadmeShowsWhatIsPrinted)
{
    const std::filesystem::path back = std::filesystem::current_path();
    std::filesystem::current_path(LANG_SOURCE_ROOT);
    run_all("README.md", 2);
    std::filesystem::current_path(back);
}

TEST(Documents, EachCommandForTeamsRuns)
{
    const zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
    std::filesystem::copy_file(LANG_SOURCE_ROOT "/examples/notes.lang-src", "notes.lang-src");
    std::filesystem::create_directory("src");
    run_all("docs/teams.md", 9);
}

} // namespace
