#include "app/global.h"

#include "test-support.h"

#include "family/log.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

using ::testing::HasSubstr;
using ::testing::StartsWith;
namespace fs = std::filesystem;

namespace {

// A home directory of its own for the test.
class global : public ::testing::Test {
protected:
    void SetUp() override { use_home(dir.path()); }

    void TearDown() override
    {
        LogClose();
        lang_home_free();
    }

    static void use_home(const std::string &home)
    {
        setenv("HOME", home.c_str(), 1);
        lang_home_free();
    }

    // Starts anew and gives what is said on standard error.
    static std::string start()
    {
        LogClose();
        return zel_test::capture_stderr([] { lang_global_init(); });
    }

    zel_test::temp_dir dir;
};

} // namespace

TEST_F(global, home_is_computed_once)
{
    EXPECT_EQ(dir / "Morvalix 6.00", lang_get_home());
    setenv("HOME", "/elsewhere", 1);
    EXPECT_EQ(dir / "Morvalix 6.00", lang_get_home());
    lang_home_free();
    EXPECT_STREQ("/elsewhere/Morvalix 6.00", lang_get_home());
    lang_home_free();
    unsetenv("HOME");
    EXPECT_STREQ("/Morvalix 6.00", lang_get_home());
    const std::string far(5000, 'x');
    use_home(far);
    EXPECT_EQ(far + "/Morvalix 6.00", lang_get_home());
}

TEST_F(global, start_opens_the_log_and_fills_the_record)
{
    const std::string log = dir / "Morvalix 6.00/log/lang.log";
    std::filesystem::create_directories(dir / "Morvalix 6.00/log");
    zel_test::write_file(log, "before");
    lang_global.editor_mode = 2;
    lang_global_init();
    EXPECT_EQ(0U, lang_global.editor_mode);
    EXPECT_NEAR(static_cast<double>(std::time(nullptr)),
                static_cast<double>(lang_global.start_time), 5.0);
    EXPECT_EQ(log, lang_global.log_file);
    EXPECT_EQ("before", zel_test::read_file(log + ".old"));
    EXPECT_THAT(zel_test::read_file(log),
                StartsWith("Start logging Version ZEL Language editor  "));
}

TEST_F(global, data_is_found_from_the_program)
{
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    lang_global_init();
    const std::string above = std::filesystem::path(program).parent_path();
    EXPECT_EQ(above + "/share/lang/doc", lang_global.doc_dir) << "as it is installed";
    std::filesystem::create_directory(program + "/lang-data");
    lang_global_init();
    std::filesystem::remove(program + "/lang-data");
    EXPECT_EQ(program + "/lang-data/doc", lang_global.doc_dir) << "as it is built";
}

TEST_F(global, start_without_a_log_directory_and_again)
{
    lang_global_init();
    EXPECT_EQ(1, log_init);
    EXPECT_EQ(nullptr, LogGetFd());
    LogClose();
    use_home(std::string(3000, 'x'));
    EXPECT_THAT(start(), HasSubstr("there is no log\n"));
    EXPECT_EQ(std::string(2047, 'x'), lang_global.log_file);
}

// What is left of the path after cutting may be anything: the home directory, or a file in it.
TEST_F(global, a_path_that_had_to_be_cut_is_left_alone)
{
    for (const std::size_t length : {2047U, 2040U}) {
        std::string home = dir.path();
        while (home.size() + 201 < length)
            home += "/" + std::string(200, 'h');
        home += "/" + std::string(length - home.size() - 1, 'h');
        fs::create_directories(home);
        use_home(home);
        EXPECT_THAT(start(), HasSubstr("there is no log\n"));
        EXPECT_THAT(lang_global.log_file, StartsWith(home));
        EXPECT_EQ(nullptr, LogGetFd());
        EXPECT_TRUE(fs::is_directory(home) && fs::is_empty(home));
    }
}

TEST_F(global, a_home_of_any_kind)
{
    const std::string work = dir / "work";
    fs::create_directories(work + "/relative/Morvalix 6.00/log");
    fs::create_directories(dir / "real/Morvalix 6.00/log");
    fs::create_directory_symlink("real", dir / "link");
    const auto before = fs::current_path();
    fs::current_path(work);
    unsetenv("HOME"); // the root's folder of that name, which is not there
    lang_home_free();
    EXPECT_EQ("", start());
    use_home("relative");
    EXPECT_EQ("", start());
    EXPECT_TRUE(fs::exists("relative/Morvalix 6.00/log/lang.log"));
    use_home(dir / "link");
    EXPECT_EQ("", start());
    EXPECT_TRUE(fs::exists(dir / "real/Morvalix 6.00/log/lang.log"));
    use_home("/proc"); // nobody may write there
    EXPECT_EQ("", start());
    EXPECT_EQ(nullptr, LogGetFd());
    fs::current_path(before);
}

TEST_F(global, a_log_folder_behind_somebody_elses_link)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the right to give files away";
    fs::create_directories(dir / "theirs");
    fs::create_directory(dir / "Morvalix 6.00");
    fs::create_directory_symlink(dir / "theirs", dir / "Morvalix 6.00/log");
    ASSERT_EQ(lchown((dir / "Morvalix 6.00/log").c_str(), 1234, 1234), 0);
    EXPECT_EQ(start(), "lang: " + (dir / "Morvalix 6.00/log/lang.log") +
                           " is behind somebody else's link: there is no log\n");
    EXPECT_TRUE(fs::is_empty(dir / "theirs"));
}
