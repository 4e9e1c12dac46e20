#include "support/safe-file.h"

#include "working-dir.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using zel_test::read_file;
using zel_test::write_file;

namespace {

class safe_files : public zel_test::working_dir {
protected:
    static std::ptrdiff_t count()
    {
        return std::distance(fs::directory_iterator("."), fs::directory_iterator());
    }
};

} // namespace

TEST_F(safe_files, one_call_replaces_or_makes_a_file)
{
    EXPECT_EQ(0, zel::replace_file("new", "text"));
    EXPECT_EQ("text", read_file("new"));
    chmod("new", 0640);
    fs::create_symlink("new", "link");
    EXPECT_EQ(0, zel::replace_file("link", ""));
    EXPECT_TRUE(fs::is_symlink("link"));
    EXPECT_EQ("", read_file("new"));
    EXPECT_EQ(fs::perms(0640), fs::status("new").permissions());
    fs::create_directory("folder");
    EXPECT_EQ(EISDIR, zel::replace_file("folder", "text"));
    EXPECT_EQ(ENOENT, zel::replace_file("no/where", "text"));
    EXPECT_EQ(3, count());
}

// One that was taken away while nobody had it open is an error, not another file.
TEST_F(safe_files, rest_between_two_pieces)
{
    for (const bool stolen : {false, true}) {
        write_file("a", "old");
        zel::safe_file file;
        const zel::target_file old = zel::find_target("a", zel::links::replace);
        ASSERT_EQ(0, file.create_beside(old));
        EXPECT_EQ(0, file.append("one "));
        file.rest();
        if (stolen) {
            for (const auto &entry : fs::directory_iterator("."))
                if (entry.path().filename() != "a") {
                    const std::string name = entry.path();
                    fs::rename(name, "elsewhere");
                    write_file(name, "");
                    break;
                }
        }
        EXPECT_EQ(stolen ? ESTALE : 0, file.append("two"));
        EXPECT_EQ(stolen ? ESTALE : 0, file.finish(zel::synced::no));
        if (!stolen) {
            EXPECT_EQ(0, file.put(old));
        }
        EXPECT_EQ(stolen ? "old" : "one two", read_file("a"));
    }
}

// In a name space of one user the administrator outside has the number of all strangers.
TEST_F(safe_files, links_of_whom_a_name_space_does_not_know)
{
    for (const char *folder : {"closed", "open"}) {
        fs::create_directory(folder);
        fs::create_symlink("nowhere", std::string(folder) + "/link");
    }
    chmod(".", 0755);
    chmod("open", 01777);
    const bool is_root = geteuid() == 0;
    const pid_t child = fork();
    if (child == 0) {
        const uid_t user = is_root ? 1234 : geteuid();
        if (setresuid(user, user, user) != 0 || prctl(PR_SET_DUMPABLE, 1) != 0 ||
            unshare(CLONE_NEWUSER) != 0)
            _exit(77);
        write_file("/proc/self/uid_map", "0 " + std::to_string(user) + " 1\n");
        EXPECT_FALSE(zel::crosses_foreign_link("/dev/stdout"));
        EXPECT_FALSE(zel::is_foreign_link("closed/link"));
        EXPECT_EQ(is_root, zel::is_foreign_link("open/link")); // made by this test's user
        _exit(HasFailure() ? 1 : 40);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 77)
        GTEST_SKIP() << "needs the right to make a name space";
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 40);
}
