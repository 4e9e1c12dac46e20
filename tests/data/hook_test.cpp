// What `./dev hook` sets up, in a clone.

#include "data/shell.h"
#include "working-dir.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using zel_test::in_root;
using zel_test::shell;
using zel_test::write_file;

TEST(HookSlow, LooksAtWhatIsCommitted)
{
    if (shell("command -v git && command -v clang-format").status != 0)
        return zel_test::missing("git or clang-format");
    if (!std::filesystem::exists(in_root(".git")))
        GTEST_SKIP() << "not a repository";
    const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
    ASSERT_EQ(shell("git clone -q '" LANG_SOURCE_ROOT "' clone").status, 0);
    std::filesystem::current_path("clone");
    for (const char *file : {"dev", "tools/pre-commit"})
        std::filesystem::copy_file(in_root(file), file,
                                   std::filesystem::copy_options::overwrite_existing);
    // Nothing is to be installed here: dpkg-query answers that everything is there.
    std::filesystem::create_directories("stub");
    write_file("stub/dpkg-query",
               "#!/bin/sh\nshift 3\nfor one; do echo \"$one installed\"; done\n");
    write_file("stub/clang-tidy", "#!/bin/sh\necho stub-finding\nexit 1\n");
    const std::string commit =
        "git add src && git -c user.name=a -c user.email=a@b commit -qm test";
    const auto run = [](const std::string &words) {
        return shell("chmod +x stub/*; PATH=$PWD/stub:$PATH; " + words);
    };
    ASSERT_EQ(run("./dev hook").status, 0);

    write_file("src/support/new.cpp", "int  badly( int a ){return a;}\n");
    auto refused = run(commit);
    EXPECT_NE(refused.status, 0);
    EXPECT_THAT(refused.err, HasSubstr("src/support/new.cpp"));

    // What is staged counts, not what lies in the folder.
    write_file("src/support/new.cpp", "int well(int a) { return a; }\n");
    ASSERT_EQ(run("git add src").status, 0);
    write_file("src/support/new.cpp", "int  badly( int a ){return a;}\n");
    EXPECT_EQ(run("git -c user.name=a -c user.email=a@b commit -qm test").status, 0);

    write_file("src/support/new.cpp", "int better(int a) { return a; }\n");
    std::filesystem::create_directories("build/lint");
    write_file("build/lint/compile_commands.json",
               "[{\"directory\": \"" + std::filesystem::current_path().string() +
                   "\", \"file\": \"src/support/new.cpp\", \"command\": \"c++ new.cpp\"}]");
    refused = run(commit);
    EXPECT_NE(refused.status, 0);
    EXPECT_THAT(refused.err, HasSubstr("stub-finding"));

    // Somebody's own hook stays.
    write_file(".git/hooks/pre-commit", "#!/bin/sh\nexit 0\n");
    EXPECT_NE(run("./dev hook").status, 0);
    EXPECT_EQ(zel_test::read_file(".git/hooks/pre-commit"), "#!/bin/sh\nexit 0\n");
}

} // namespace
