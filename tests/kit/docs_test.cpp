// The commands of the documents do what the documents say. Lines "$ command" of an indented block
// are run by a shell, "> more" continues one, and the lines below, if there are any, are its whole
// output. Each "## " section begins in a folder of its own that holds the example.

#include "test-support.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <sys/wait.h>
#include <vector>

#include <gtest/gtest.h>

namespace {

using zel_test::read_file;
using zel_test::write_file;

constexpr char root[] = LANG_SOURCE_ROOT;

struct command {
    std::size_t line;
    std::string words;
    std::string output;
};

struct section {
    std::string title;
    std::vector<command> commands;
};

std::vector<section> sections_of(const std::string &document)
{
    std::vector<section> sections{{"", {}}};
    std::istringstream lines(document);
    bool in_command = false;
    std::string line;
    for (std::size_t number = 1; std::getline(lines, line); ++number) {
        const std::string text = line.starts_with("    ") ? line.substr(4) : "";
        auto &commands = sections.back().commands;
        if (line.starts_with("## ")) {
            sections.push_back({line.substr(3), {}});
            in_command = false;
        } else if (text.starts_with("$ ")) {
            commands.push_back({number, text.substr(2) + "\n", ""});
            in_command = true;
        } else if (text.empty()) {
            in_command = false;
        } else if (in_command && text.starts_with(">")) {
            commands.back().words += (text.size() > 2 ? text.substr(2) : "") + "\n";
        } else if (in_command) {
            commands.back().output += text + "\n";
        }
    }
    return sections;
}

class DocsSlow : public testing::TestWithParam<const char *> {};

TEST_P(DocsSlow, CommandsDoWhatIsSaid)
{
    const std::string kit = LANG_KIT;
    setenv("PATH", (kit.substr(0, kit.rfind('/')) + ":" + std::getenv("PATH")).c_str(), 1);
    std::size_t count = 0;
    for (const section &part : sections_of(read_file(std::string(root) + "/" + GetParam()))) {
        const zel_test::temp_dir outside;
        const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
        std::filesystem::create_directories("src");
        std::filesystem::create_directories("examples");
        const std::string example = read_file(std::string(root) + "/examples/notes.lang-src");
        write_file("notes.lang-src", example);
        write_file("examples/notes.lang-src", example);
        for (const command &one : part.commands) {
            const std::string out = outside / "out";
            write_file(outside / "command", "exec >'" + out + "' 2>&1\n" + one.words);
            const int status = std::system(("sh '" + outside / "command" + "'").c_str());
            EXPECT_LT(WEXITSTATUS(status), 2) << GetParam() << ":" << one.line;
            std::string said = read_file(out);
            // A mark for spreadsheets and carriage returns do not show in a document.
            for (const char *hidden : {"\xEF\xBB\xBF", "\r"})
                for (auto at = said.find(hidden); at != std::string::npos; at = said.find(hidden))
                    said.erase(at, std::string(hidden).size());
            if (!one.output.empty()) {
                EXPECT_EQ(said, one.output) << GetParam() << ":" << one.line << ": " << one.words;
            }
            ++count;
        }
    }
    EXPECT_GE(count, 2U);
}

INSTANTIATE_TEST_SUITE_P(Files, DocsSlow,
                         testing::Values("README.md", "docs/formats.md", "docs/teams.md"),
                         [](const auto &param) {
                             const std::string name = param.param;
                             const std::size_t start = name.find('/') + 1;
                             return name.substr(start, name.find('.') - start);
                         });

} // namespace
