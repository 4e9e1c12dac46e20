// Whole commands in a process whose memory runs out, at every allocation in turn: whatever is
// missing, no file is left that lacks something, and the old text stays.

#include "failing-memory.h"
#include "fault-files.h"
#include "working-dir.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
using zel_test::read_file;

using zel_test::files;
using zel_test::files_below;
using zel_test::old_source;

struct run {
    int status;       // as wait gives it
    std::string said; // on both standard streams
    bool untouched;   // no allocation was made to fail
    files left;
};

// The status of a command is 0. GLib's allocator of small pieces aborts, which the program takes
// for a lack of memory only while there is one.
bool ended_in_order(const run &result, bool forever)
{
    if (WIFEXITED(result.status))
        return WEXITSTATUS(result.status) == 0;
    return !forever && WIFSIGNALED(result.status) && WTERMSIG(result.status) == SIGABRT &&
           result.said.find("GSlice: failed to allocate") != result.said.npos;
}

class CommandFaultsSlow : public zel_test::working_dir {
protected:
    void SetUp() override
    {
        if (!zel_test::memory_can_fail())
            GTEST_SKIP() << "the sanitizer's allocator cannot be replaced";
        fs::create_directory("home");
    }

    // Runs the program in a fresh folder with the n-th allocation failing (0: none).
    static run run_program(const std::vector<std::string> &words, std::size_t n, bool forever)
    {
        fs::remove_all("work");
        fs::create_directories("work/out");
        zel_test::write_file("work/app.lang-src", old_source());
        zel_test::write_file("work/code.c", zel_test::application_code());
        fs::remove("untouched");
        std::vector<std::string> environment = {
            "HOME=" + fs::absolute("home").string(), "LC_ALL=C",
            std::string("LD_PRELOAD=") + LANG_FAILING_MEMORY, "LANG_FAIL_AT=" + std::to_string(n),
            "LANG_FAIL_UNTOUCHED=" + fs::absolute("untouched").string()};
        if (forever)
            environment.emplace_back("LANG_FAIL_ON=1");
        run result{};
        result.status = spawn(words, environment);
        result.said = read_file("said");
        result.untouched = fs::exists("untouched");
        result.left = files_below("work");
        return result;
    }

    // The program with each of its allocations failing in turn; good looks at what a run left, and
    // at what it leaves when nothing fails.
    template <class Good>
    static void fail_everywhere(const std::vector<std::string> &words, Good &&good)
    {
        const files whole = run_program(words, 0, false).left;
        std::size_t points = 0;
        for (const bool forever : {false, true})
            for (std::size_t n = 1;; ++n) {
                SCOPED_TRACE("allocation " + std::to_string(n) + (forever ? " and on" : ""));
                const run result = run_program(words, n, forever);
                if (result.untouched) {
                    EXPECT_GT(n, 50U) << "as if there were nothing to allocate";
                    break;
                }
                ++points;
                EXPECT_TRUE(ended_in_order(result, forever)) << result.status << " " << result.said;
                good(result, whole);
                if (HasFailure())
                    return;
            }
        if (std::getenv("LANG_FAULTS_SHOW") != nullptr)
            std::printf("%-18s %6zu allocations failed, no losses\n", words[1].c_str(), points);
    }

private:
    static std::vector<char *> pointers(const std::vector<std::string> &words)
    {
        std::vector<char *> all;
        for (const std::string &word : words)
            all.push_back(const_cast<char *>(word.c_str()));
        all.push_back(nullptr);
        return all;
    }

    static int spawn(const std::vector<std::string> &words,
                     const std::vector<std::string> &environment)
    {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, fs::absolute("said").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_adddup2(&actions, 1, 2);
        posix_spawn_file_actions_addchdir_np(&actions, "work");
        pid_t child = 0;
        int status = -1;
        if (posix_spawn(&child, LANG_PROGRAM, &actions, nullptr, pointers(words).data(),
                        pointers(environment).data()) == 0)
            waitpid(child, &status, 0);
        posix_spawn_file_actions_destroy(&actions);
        return status;
    }
};

// The file is there and whole, or it is not there at all.
void expect_whole_or_none(const files &left, const files &whole, const std::string &name)
{
    if (const auto found = left.find(name); found != left.end()) {
        EXPECT_EQ(found->second, whole.at(name)) << name;
    }
}

TEST_F(CommandFaultsSlow, ConvertWritesAllOrNothing)
{
    fail_everywhere({"lang", "convert", "app.lang-src", "new.lang-src"},
                    [](const run &result, const files &whole) {
                        EXPECT_EQ(result.left.at("app.lang-src"), old_source());
                        expect_whole_or_none(result.left, whole, "new.lang-src");
                        if (result.left.count("new.lang-src") == 0) {
                            EXPECT_NE(result.said, "") << "nothing is written, and nothing said";
                        }
                    });
}

TEST_F(CommandFaultsSlow, CheckKeepsTheOldSource)
{
    fail_everywhere({"lang", "check", "app.lang-src", "code.c"},
                    [](const run &result, const files &whole) {
                        // The source is the old one or the new one; the new one's backup is the old
                        // one.
                        const auto now = result.left.find("app.lang-src");
                        ASSERT_NE(now, result.left.end());
                        if (now->second != old_source()) {
                            EXPECT_EQ(now->second, whole.at("app.lang-src")) << result.said;
                            EXPECT_EQ(result.left.at("app.lang-src-NOW.bak"), old_source());
                        }
                    });
}

TEST_F(CommandFaultsSlow, ExcelWritesAWholeTable)
{
    fail_everywhere({"lang", "excel", "unicode", "app.lang-src", "keys.slk"},
                    [](const run &result, const files &whole) {
                        expect_whole_or_none(result.left, whole, "keys.slk");
                    });
}

TEST_F(CommandFaultsSlow, CompileWritesWholeFiles)
{
    fail_everywhere({"lang", "compile", "-dst-dir", "out", "app.lang-src"},
                    [](const run &result, const files &whole) {
                        EXPECT_EQ(result.left.at("app.lang-src"), old_source());
                        expect_whole_or_none(result.left, whole, "out/english-edit/english.lang");
                        expect_whole_or_none(result.left, whole, "out/german-edit/german.lang");
                    });
}

} // namespace
