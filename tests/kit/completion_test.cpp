// The completion of the shell, asked as the shell asks it.

#include "kit/run-kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;
using zel_test::kit;
using zel_test::read_file;
using zel_test::write_file;

class Completion : public testing::Test {
protected:
    // What is offered for the last word of a line.
    std::vector<std::string> offered(const std::vector<std::string> &words)
    {
        std::string script = "source '" LANG_SOURCE_ROOT "/data/completion/lang-kit.bash'\n"
                             "COMP_WORDS=('" LANG_KIT "'";
        for (const std::string &word : words)
            script += " '" + word + "'";
        script += ")\nCOMP_CWORD=" + std::to_string(words.size()) +
                  "\n_lang_kit\n[ ${#COMPREPLY[@]} = 0 ] || printf '%s\\n' \"${COMPREPLY[@]}\"\n";
        write_file(work / "script", script);
        const auto run = kit("--version >/dev/null; bash --norc '" + (work / "script") + "'");
        EXPECT_EQ(run.err, "");
        std::vector<std::string> lines;
        std::istringstream in(run.out);
        for (std::string line; std::getline(in, line);)
            lines.push_back(line);
        return lines;
    }

    zel_test::temp_dir work;
    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_F(Completion, ValuesAndFiles)
{
    write_file("a.lang-src", "");
    write_file("b c.po", "");
    std::filesystem::create_directory("folder");
    EXPECT_THAT(offered({"diff", "--format", ""}), UnorderedElementsAre("text", "json"));
    EXPECT_THAT(offered({"lint", "--fail-on", "w"}), ElementsAre("warning"));
    EXPECT_THAT(offered({"export", "--format", ""}), IsSupersetOf({"po", "xliff", "csv", "json"}));
    EXPECT_THAT(offered({"lint", "--only", "mi"}), ElementsAre("missing"));
    EXPECT_THAT(offered({"show", ""}), UnorderedElementsAre("a.lang-src", "folder"));
    EXPECT_THAT(offered({"import", "a.lang-src", "b"}), ElementsAre("b c.po"));
    EXPECT_THAT(offered({"export", "-o", ""}), ElementsAre("folder"));
    EXPECT_THAT(offered({"export", "--output", ""}), ElementsAre("folder"));
    EXPECT_THAT(offered({"pseudo", "--name", ""}), IsEmpty());
    EXPECT_THAT(offered({"nothing", ""}), UnorderedElementsAre("a.lang-src", "folder"));
}

} // namespace
