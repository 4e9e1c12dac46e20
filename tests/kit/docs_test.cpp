// The commands of the documents do what the documents say. Lines "$ command" of an indented block
// are run by a shell, "> more" continues one, and the lines below, if there are any, are its whole
// output. Each "## " section begins in a folder of its own that holds the example; a page that
// tells one story goes on in the folder in which it began, with the programs and the library as
// they are installed. A command that opens a window must do so, and the window is closed.
//
// The pages of this folder tell what lang-kit's words do in the same way, beside menu.lang-src; of
// them every output counts, also none, and every command must end well.

#include "working-dir.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <regex>
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

void add_programs_to_path()
{
    const std::string kit = LANG_KIT;
    setenv("PATH", (kit.substr(0, kit.rfind('/')) + ":" + std::getenv("PATH")).c_str(), 1);
}

// Runs a command in the current folder and compares what it says; strictly also where nothing is
// told about it.
void expect_command(const std::string &document, const command &one, bool strictly = false)
{
    const zel_test::temp_dir outside;
    const std::string out = outside / "out";
    write_file(outside / "command", "exec >'" + out + "' 2>&1\n" + one.words);
    const int status = std::system(("sh '" + outside / "command" + "'").c_str());
    EXPECT_LT(WEXITSTATUS(status), strictly ? 1 : 2) << document << ":" << one.line;
    std::string said = read_file(out);
    // A mark for spreadsheets and carriage returns do not show in a document.
    for (const char *hidden : {"\xEF\xBB\xBF", "\r"})
        for (auto at = said.find(hidden); at != std::string::npos; at = said.find(hidden))
            said.erase(at, std::string(hidden).size());
    if (strictly || !one.output.empty()) {
        EXPECT_EQ(said, one.output) << document << ":" << one.line << ": " << one.words;
    }
}

// The programs and the library as they are installed, in front of everything else.
class installation {
public:
    installation()
    {
        const std::string kit = LANG_KIT;
        const std::string build = kit.substr(0, kit.rfind('/'));
        const std::string command = "cmake --install '" + build + "' --prefix '" + prefix_.path() +
                                    "' --component Unspecified >/dev/null && cmake --install '" +
                                    build + "' --prefix '" + prefix_.path() +
                                    "' --component liblang >/dev/null";
        zel_test::require(std::system(command.c_str()) == 0, "install");
        const std::string lib = prefix_ / "lib";
        setenv("PATH", ((prefix_ / "bin:") + std::getenv("PATH")).c_str(), 1);
        setenv("PKG_CONFIG_PATH", (lib + "/pkgconfig").c_str(), 1);
        setenv("LD_LIBRARY_PATH", lib.c_str(), 1);
    }

private:
    zel_test::temp_dir prefix_;
};

// What a shell runs for a command that opens a window: it is waited for, its title is told, and it
// is closed.
bool opens_window(const std::string &words)
{
    return words.starts_with("./hello") || words.starts_with("lang edit");
}

std::string title_of_window(const std::string &words)
{
    const zel_test::temp_dir dir;
    write_file(dir / "show", words.substr(0, words.size() - 1) + R"( >/dev/null &
for try in $(seq 100); do
    xdotool search --onlyvisible --all --pid $! --name . getwindowname %@ && break
    sleep 0.1
done
kill $!
wait $! || : # it ends in order, and wants its display for that
)");
    const std::string tool = std::string(root) + "/tools/with-display";
    EXPECT_EQ(
        std::system(("'" + tool + "' sh '" + dir / "show" + "' >'" + dir / "out" + "' 2>/dev/null")
                        .c_str()),
        0);
    return read_file(dir / "out");
}

TEST(WindowSlow, TheFirstOne)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "an application without the sanitizer cannot load the library with it";
#endif
    if (std::system("command -v xdotool Xvfb pkg-config >/dev/null") != 0)
        return zel_test::missing("xdotool, Xvfb or pkg-config");
    const installation installed;
    const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
    std::string titles;
    for (const section &part : sections_of(read_file(std::string(root) + "/docs/start.md")))
        for (const command &one : part.commands)
            if (opens_window(one.words))
                titles += title_of_window(one.words);
            else
                expect_command("docs/start.md", one);
    EXPECT_EQ(titles, "My notes\nTarvik language editor version 1.4\nMeine Notizen\n");
}

class Story : public testing::TestWithParam<std::string> {};

TEST_P(Story, CommandsDoWhatIsSaid)
{
    add_programs_to_path();
    const std::string document = read_file(root + ("/" + GetParam()));
    std::optional<installation> installed;
    if (document.find("pkg-config") != std::string::npos) {
#if defined(__SANITIZE_ADDRESS__)
        GTEST_SKIP() << "an application without the sanitizer cannot load the library with it";
#endif
        installed.emplace();
    }
    if (document.find("lconvert") != std::string::npos &&
        std::system("command -v lconvert >/dev/null") != 0)
        return zel_test::missing("lconvert");
    const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
    const bool is_page = GetParam().starts_with("tests/");
    if (is_page)
        write_file("menu.lang-src",
                   read_file(std::string(root) + "/tests/kit/pages/menu.lang-src"));
    std::size_t count = 0;
    for (const section &part : sections_of(document))
        for (const command &one : part.commands) {
            expect_command(GetParam(), one, is_page);
            ++count;
        }
    EXPECT_GE(count, 4U);
}

std::string name_of_page(const testing::TestParamInfo<std::string> &page)
{
    std::string name = std::filesystem::path(page.param).stem();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

// Every page of the folder is played.
std::vector<std::string> pages()
{
    std::vector<std::string> out;
    for (const auto &one : std::filesystem::directory_iterator(LANG_SOURCE_ROOT "/tests/kit/pages"))
        if (one.path().extension() == ".md")
            out.push_back("tests/kit/pages/" + one.path().filename().string());
    std::sort(out.begin(), out.end());
    return out;
}

INSTANTIATE_TEST_SUITE_P(ComingOver, Story,
                         testing::Values("docs/from-po.md", "docs/from-ts.md", "docs/from-json.md"),
                         name_of_page);
INSTANTIATE_TEST_SUITE_P(Words, Story, testing::ValuesIn(pages()), name_of_page);

class DocsSlow : public testing::TestWithParam<std::string> {};

TEST_P(DocsSlow, CommandsDoWhatIsSaid)
{
    add_programs_to_path();
    std::size_t count = 0;
    const std::regex door(R"(\./dev kit )"); // of a clone
    const std::string document = read_file(root + ("/" + GetParam()));
    for (const section &part : sections_of(std::regex_replace(document, door, "lang-kit "))) {
        const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
        std::filesystem::create_directories("examples");
        const std::string example = read_file(std::string(root) + "/examples/notes.lang-src");
        write_file("notes.lang-src", example);
        write_file("examples/notes.lang-src", example);
        for (const command &one : part.commands) {
            expect_command(GetParam(), one);
            ++count;
        }
    }
    EXPECT_GE(count, 2U);
}

INSTANTIATE_TEST_SUITE_P(Files, DocsSlow,
                         testing::Values("README.md", "docs/formats.md", "docs/teams.md"),
                         name_of_page);

} // namespace
