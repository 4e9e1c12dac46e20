#include "app/global.h"

#include "test-support.h"

#include "support/log.h"

#include <cstdlib>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using ::testing::StartsWith;

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
    lang_global_init();
    EXPECT_EQ(std::string(2047, 'x'), lang_global.log_file);
}

