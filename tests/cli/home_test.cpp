// HOME as a hostile or careless environment has it: commands work, and nothing is made anywhere.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "working-dir.h"

namespace {

namespace fs = std::filesystem;

class Home : public zel_test::working_dir {
protected:
    void SetUp() override
    {
        zel_test::write_file("app.lang-src", "group \"g\" { item \"i\" { used yes } }\n");
        fs::create_directory("folder");
        fs::create_symlink("folder", "link");
        fs::create_symlink("nowhere", "dangling");
        fs::create_symlink("circle", "circle");
        zel_test::write_file("file", "precious");
        mkfifo("pipe", 0666);
        fs::create_directories("in-the-way/Morvalix 6.00");
        mkfifo("in-the-way/Morvalix 6.00/log", 0666);
        fs::create_directories("pipe-log/Morvalix 6.00/log");
        mkfifo("pipe-log/Morvalix 6.00/log/lang.log", 0666);
        fs::create_directories("linked-log/Morvalix 6.00/log");
        fs::create_symlink("../../../file", "linked-log/Morvalix 6.00/log/lang.log");
    }
    // Every path below the folder but those of logs.
    static std::size_t count_paths()
    {
        std::size_t count = 0;
        for (const auto &entry : fs::recursive_directory_iterator("."))
            count += entry.path().string().find("/log/") != std::string::npos ? 0 : 1;
        return count;
    }
};

TEST_F(Home, WhateverItIsCommandsWork)
{
    for (const char *home :
         {"unset HOME", "HOME=", "HOME=.", "HOME=folder", "HOME=../..//", "HOME=\"$PWD/link\"",
          "HOME=dangling", "HOME=circle", "HOME=\"$PWD/file\"", "HOME=\"$PWD/pipe\"",
          "HOME=/proc/self", "HOME=/dev/null", "HOME=in-the-way", "HOME=pipe-log",
          "HOME=linked-log", "HOME=\"$(printf 'a\\nb')\""}) {
        SCOPED_TRACE(home);
        const std::size_t before = count_paths();
        const std::string command = std::string(home) +
                                    "; export HOME; timeout 20 '" LANG_PROGRAM
                                    "' convert app.lang-src new >/dev/null 2>&1";
        const int status = std::system(command.c_str());
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        EXPECT_TRUE(zel_test::read_file("new").ends_with("/* EOF new */\n"));
        fs::remove("new");
        EXPECT_EQ(count_paths(), before);
        EXPECT_EQ(zel_test::read_file("file"), "precious");
        EXPECT_FALSE(fs::exists("nowhere"));
    }
}

// As somebody whom the modes of files bind.
TEST_F(Home, WhereNothingMayBeWrittenCommandsWork)
{
    const bool is_root = getuid() == 0;
    const std::string anybody =
        is_root ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
    fs::permissions(".", fs::perms::all);
    for (const char *home : {"sealed", "unreadable", "inside-sealed/Morvalix 6.00"})
        fs::create_directories(home);
    for (const auto &[folder, mode] : {std::pair{"sealed", 0500}, std::pair{"unreadable", 0},
                                       std::pair{"inside-sealed/Morvalix 6.00", 0500}}) {
        ASSERT_TRUE(!is_root || chown(folder, 65534, 65534) == 0);
        fs::permissions(folder, fs::perms(mode));
    }
    for (const char *home : {"sealed", "unreadable", "inside-sealed"}) {
        SCOPED_TRACE(home);
        const std::size_t before = is_root ? count_paths() : 0;
        const std::string command = "HOME=\"$PWD/" + std::string(home) + "\" timeout 20 " +
                                    anybody +
                                    "'" LANG_PROGRAM "' convert app.lang-src new >/dev/null 2>err";
        const int status = std::system(command.c_str());
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        EXPECT_EQ(zel_test::read_file("err"), "");
        EXPECT_TRUE(zel_test::read_file("new").ends_with("/* EOF new */\n"));
        fs::remove("new");
        fs::remove("err");
        EXPECT_EQ(is_root ? count_paths() : 0, before);
    }
    for (const char *home : {"sealed", "unreadable", "inside-sealed/Morvalix 6.00"})
        fs::permissions(home, fs::perms::all); // so that they can be removed
}

} // namespace
