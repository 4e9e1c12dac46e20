// The completion of all three shells, asked as the shell asks it and compared with what the
// programs say of themselves.

#include "data/shell.h"
#include "working-dir.h"

#include <filesystem>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using zel_test::matches;
using zel_test::shell;
using zel_test::write_file;

using strings = std::set<std::string>;

constexpr char zsh_functions[] = R"(
_describe() { print -rl -- ${(P)2} }
_arguments() { print -rl -- "$@" }
_files() { [[ $1 = -/ ]] && print -rl -- *(/) || print -rl -- * }
words=("$@") CURRENT=$#
. "$file"
)";

constexpr char bash_functions[] = R"(
. "$file"
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_${1//-/_}
printf "%s\n" "${COMPREPLY[@]}"
)";

class Shells : public testing::TestWithParam<const char *> {
protected:
    void SetUp() override
    {
        if (shell(std::string("command -v ") + GetParam()).status != 0)
            zel_test::missing(GetParam());
    }

    // What is offered for the last word; of what stands there only the candidate itself.
    static strings offered(const std::string &line)
    {
        const std::string shell_name = GetParam();
        const std::string program = line.substr(0, line.find(' '));
        const std::string folder = LANG_SOURCE_ROOT "/data/completion/";
        std::string run;
        if (shell_name == "fish")
            run = "fish --no-config -c '. \"" + folder + program + ".fish\"; complete -C \"" +
                  line + "\"'";
        else if (shell_name == "zsh")
            run = "file='" + folder + "_" + program + "' zsh -f -c '" + zsh_functions + "' zsh " +
                  line;
        else
            run = "file='" + folder + program + ".bash' bash --norc -c '" + bash_functions +
                  "' bash " + line;
        if (line.ends_with(' ') && shell_name != "fish")
            run += "''";
        const auto result = shell(run);
        EXPECT_EQ(result.err, "") << line;
        strings found;
        std::istringstream lines(result.out);
        for (std::string one; std::getline(lines, one);)
            if (const auto names = matches(one, R"(^(?:\([^)]*\)|\*)?([^*:\t\[][^:\t\[]*))");
                !names.empty())
                found.insert(names[0].back() == '/' ? names[0].substr(0, names[0].size() - 1)
                                                    : names[0]);
        return found;
    }

    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_P(Shells, EveryWordAndOptionOfTheCompanion)
{
    strings words{"--help", "--version"};
    for (const std::string &word : matches(shell("lang-kit --help").out, R"(\n  ([a-z]+) )")) {
        words.insert(word);
        strings offers = offered("lang-kit " + word + " -");
        std::erase_if(offers, [](const std::string &name) { return !name.starts_with("--"); });
        const auto options = matches(shell("lang-kit " + word + " --help").out,
                                     R"(\n  (?:-[a-z], )?(--[a-z0-9-]+)[ \n])");
        EXPECT_EQ(offers, strings(options.begin(), options.end())) << word;
    }
    EXPECT_EQ(offered("lang-kit "), words);
}

TEST_P(Shells, EveryCommandAndOptionOfTheProgram)
{
    const strings commands = offered("lang ");
    // The usage's lines; "-used-only" is the older spelling of an option of convert.
    EXPECT_THAT(commands,
                IsSupersetOf(matches(shell("lang help").out, R"(\n(?!lang )([a-z]+) +[^:\n])")));
    EXPECT_THAT(commands, IsSupersetOf({"excel", "help", "-output-lang-1", "-zel2", "-log"}));
    EXPECT_THAT(offered("lang compile -"), ElementsAre("-dst-dir", "-help"));
    EXPECT_THAT(offered("lang convert -"), ElementsAre("-only-used"));
    EXPECT_THAT(offered("lang check -"), ElementsAre("--help"));
    EXPECT_THAT(offered("lang excel "), ElementsAre("unicode"));
    EXPECT_THAT(offered("lang oformat "), ElementsAre("gtk", "lang"));
}

TEST_P(Shells, FilesAndFolders)
{
    write_file("a.lang-src", "");
    write_file("b.c", "");
    std::filesystem::create_directory("folder");
    EXPECT_THAT(offered("lang compile "), Contains("a.lang-src"));
    EXPECT_THAT(offered("lang compile -dst-dir "), ElementsAre("folder"));
    EXPECT_THAT(offered("lang check a.lang-src "), Contains("b.c"));
    if (GetParam() != std::string("bash"))
        return; // the others' values are described in a form of their own
    write_file("b c.po", "");
    EXPECT_THAT(offered("lang-kit diff --format "), ElementsAre("json", "text"));
    EXPECT_THAT(offered("lang-kit lint --fail-on w"), ElementsAre("warning"));
    EXPECT_THAT(offered("lang-kit lint --only mi"), ElementsAre("missing"));
    EXPECT_THAT(offered("lang-kit show "), ElementsAre("a.lang-src", "folder"));
    EXPECT_THAT(offered("lang-kit import a.lang-src b"), ElementsAre("b c.po"));
    EXPECT_THAT(offered("lang-kit export --output "), ElementsAre("folder"));
    EXPECT_THAT(offered("lang-kit pseudo --name "), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, Shells, testing::Values("bash", "zsh", "fish"),
                         [](const auto &param) { return std::string(param.param); });

} // namespace
