// Whole runs of the program. A case is a folder below cases/:
//   cmd       shell commands; "lang" is the program, HOME a fresh folder beside the working one
//   in/       files that lie in the working folder at the start; without it those of cli/in
//   stdout    what the commands print; {NAME} in a line of its own is the file cli/texts/NAME
//   out/      the files that are there afterwards, as far as they are new or changed
// In names and texts the time of the run reads NOW, its stamp in backup names STAMP.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "cli/driver.h"
#include "locales.h"
#include "working-dir.h"

namespace {

namespace fs = std::filesystem;
using zel_test::read_file;

const fs::path cli_folder = LANG_SOURCE_ROOT "/tests/cli";
const fs::path cases_folder = cli_folder / "cases";

std::vector<std::string> case_names()
{
    std::vector<std::string> names;
    for (const auto &folder : fs::directory_iterator(cases_folder))
        names.push_back(folder.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

// The seconds of a run, in the texts that it leaves.
class time_mask {
public:
    std::string operator()(std::string text) const
    {
        for (std::time_t time = start_; time <= std::time(nullptr); time++) {
            const std::string seconds = " " + std::to_string(time) + "\n";
            for (std::size_t at = 0; (at = text.find(seconds, at)) != std::string::npos;)
                text.replace(at, seconds.size(), " NOW\n");
        }
        return zel_test::replace_pattern(text, "-0000-00-00-00-00-00.bak", "-STAMP.bak");
    }

private:
    std::time_t start_ = std::time(nullptr);
};

using folder_texts = std::map<std::string, std::string>;

folder_texts texts_of(const fs::path &folder)
{
    folder_texts texts;
    if (!fs::exists(folder))
        return texts;
    for (const auto &file : fs::recursive_directory_iterator(folder)) {
        if (file.is_regular_file())
            texts[fs::relative(file.path(), folder)] = read_file(file.path());
    }
    return texts;
}

// What a run left that was not there before, masked.
folder_texts left_by_run(const fs::path &work, const folder_texts &before, const time_mask &mask)
{
    folder_texts left;
    for (const auto &[name, text] : texts_of(work)) {
        const auto old = before.find(name);
        if (old == before.end() || old->second != text)
            left[mask(name)] = mask(text);
    }
    return left;
}

// The expected text, with the texts that many commands print in their places.
std::string with_texts(std::string expected)
{
    for (const auto &[name, text] : texts_of(cli_folder / "texts")) {
        const std::string mark = "{" + name + "}\n";
        for (std::size_t at = 0; (at = expected.find(mark, at)) != std::string::npos;
             at += text.size())
            expected.replace(at, mark.size(), text);
    }
    return expected;
}

void run_case(const std::string &name, const std::string &locale)
{
    const fs::path folder = cases_folder / name;
    const zel_test::temp_dir dir;
    const fs::path work = dir / "work";
    fs::create_directory(work);
    fs::create_directory(dir / "home");
    fs::copy(fs::exists(folder / "in") ? folder / "in" : cli_folder / "in", work,
             fs::copy_options::recursive);
    const folder_texts before = texts_of(work);

    const std::string command = "cd '" + work.string() + "' && HOME='" + (dir / "home") +
                                "' PATH='" + fs::path(LANG_PROGRAM).parent_path().string() +
                                "':\"$PATH\" DISPLAY= WAYLAND_DISPLAY= LC_ALL=" + locale +
                                " timeout 60 sh '" + (folder / "cmd").string() + "' >'" +
                                (dir / "stdout") + "' 2>'" + (dir / "stderr") + "'";
    const time_mask mask;
    const int status = std::system(command.c_str());
    EXPECT_EQ(status, 0) << read_file(dir / "stderr");

    EXPECT_EQ(mask(read_file(dir / "stdout")), with_texts(read_file(folder / "stdout")));
    EXPECT_EQ(left_by_run(work, before, mask), texts_of(folder / "out"));
}

class Cli : public testing::TestWithParam<std::string> {};

TEST_P(Cli, RunsAsExpected) { run_case(GetParam(), "C"); }

INSTANTIATE_TEST_SUITE_P(Cases, Cli, testing::ValuesIn(case_names()), [](const auto &param) {
    std::string name = param.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST(CliWords, AHelpWordOfCompileEndsTheProcess)
{
    char help[] = "-h";
    char file[] = "app.lang-src";
    char *words[] = {help, file};
    EXPECT_EXIT(compile_lang_file(2, words), testing::ExitedWithCode(0), "");
}

TEST(CliLocalesSlow, EveryCaseRunsAsExpected)
{
    if (!zel_test::find_locales())
        return zel_test::missing("localedef, or the definitions of locales,");
    for (const zel_test::test_locale &locale : zel_test::test_locales)
        for (const std::string &name : case_names()) {
            SCOPED_TRACE(name + " in " + locale.name);
            run_case(name, locale.name);
        }
}

} // namespace
