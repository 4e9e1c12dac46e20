// Saving while something fails, while the process is killed, and while others save beside it.

#include "source/save-fixture.h"

#include "failing-calls.h"

#include <chrono>
#include <sched.h>
#include <sys/mount.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using zel_test::armed;
using zel_test::old_text;
using zel_test::read_file;
using zel_test::write_file;
namespace fs = std::filesystem;

constexpr const char *leftover_text = "left from before";

class SaveFaults : public zel_test::saving {
protected:
    static void clear(const std::string &folder)
    {
        for (const auto &file : fs::directory_iterator(folder))
            fs::remove(file);
    }

    static bool is_held(const char *path)
    {
        const int fd = open(path, O_RDONLY | O_CLOEXEC);
        const bool held = fd >= 0 && flock(fd, LOCK_EX | LOCK_NB) != 0;
        close(fd);
        return held;
    }

    // Runs the checks of a function in a process of its own; it returns false where this machine
    // does not let it make them.
    template <class Function>
    void in_child(Function function)
    {
        // Not 0: a child that the code under test ends has not come through.
        enum { good = 40, not_allowed = 41 };
        std::fflush(nullptr);
        const pid_t child = fork();
        if (child == 0) {
            const bool made = function();
            std::fflush(nullptr);
            _exit(HasFailure() ? 1 : made ? good : not_allowed);
        }
        int status = 0;
        waitpid(child, &status, 0);
        if (WIFEXITED(status) && WEXITSTATUS(status) == not_allowed)
            GTEST_SKIP() << "needs the right to mount a file system";
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == good) << status;
    }
};

// --- single calls (of every call with every error, the fault machine tells that nothing is lost)
// --

TEST_F(SaveFaults, WithoutLinksTheOldFileIsMovedAsBefore)
{
    write_file("app.lang-src", old_text);
    save(
        "app.lang-src", [] { armed = {"link", 1, EPERM, true, false, {}}; },
        [] { armed.call = ""; });
    EXPECT_EQ(result, 0);
    expect_nothing_lost("app.lang-src");
}

// What a power cut leaves: the text is on the disk before anything happens to the old file, and the
// folder is once the new one has its name.
TEST_F(SaveFaults, TheTextIsSyncedBeforeAndTheFolderAfterIt)
{
    for (const int nth : {1, 2}) {
        clear(".");
        write_file("app.lang-src", old_text);
        save(
            "app.lang-src",
            [&] {
                armed = {"fsync", nth, 0, false, false, [&] {
                             look_beside("app.lang-src");
                             EXPECT_EQ(is_new_text("lang.tmp"), nth == 1);
                             EXPECT_EQ(is_new_text("app.lang-src"), nth == 2);
                             EXPECT_EQ(backups.size(), nth == 1 ? 0U : 1U);
                             EXPECT_TRUE(nth == 2 || is_held("lang.tmp"));
                         }};
            },
            [] { armed.call = ""; });
        EXPECT_TRUE(armed.struck);
        EXPECT_EQ(result, 0);
    }
}

// --- no room -------------------------------------------------------------------------------------

class size_limit {
public:
    explicit size_limit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~size_limit() { setrlimit(RLIMIT_FSIZE, &before_); }
    size_limit(const size_limit &) = delete;
    size_limit &operator=(const size_limit &) = delete;

private:
    rlimit before_;
};

TEST_F(SaveFaults, WithoutRoomTheOldFileStaysInItsPlace)
{
    grow(300000);
    write_file("app.lang-src", old_text);
    for (rlim_t bytes : {0UL, 65536UL, 290000UL}) {
        SCOPED_TRACE(bytes);
        {
            const size_limit limit(bytes);
            save("app.lang-src");
        }
        EXPECT_EQ(result, -1);
        expect_nothing_lost("app.lang-src");
    }
    EXPECT_THAT(said, HasSubstr(std::strerror(EFBIG)));
    save("app.lang-src"); // and with room all is well again
    EXPECT_EQ(result, 0);
    expect_nothing_lost("app.lang-src");
}

// A small file system that only this process sees, at "small".
bool mount_small()
{
    fs::create_directory("small");
    return unshare(CLONE_NEWNS) == 0 &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", "small", "tmpfs", 0, "size=64k") == 0;
}

TEST_F(SaveFaults, AFullDiskAtTheWorkingDirectory)
{
    grow(300000);
    in_child([&] {
        if (!mount_small())
            return false;
        EXPECT_EQ(chdir("small"), 0);
        for (const char *path : {"../app.lang-src", "app.lang-src"}) {
            write_file(path, old_text);
            save(path);
            EXPECT_EQ(result, -1);
            expect_nothing_lost(path, true);
            EXPECT_FALSE(fs::exists("lang.tmp"));
        }
        return true;
    });
}

TEST_F(SaveFaults, AFullDiskAtThePathLeavesTheOldFileThere)
{
    grow(300000);
    in_child([&] {
        if (!mount_small())
            return false;
        write_file("small/app.lang-src", old_text);
        save("small/app.lang-src");
        EXPECT_EQ(result, 1);
        EXPECT_EQ(printed, "lang_write_file(3): error(" + std::to_string(ENOSPC) +
                               ") rename lang.tmp to small/app.lang-src\n");
        expect_nothing_lost("small/app.lang-src");
        EXPECT_EQ(read_file("small/app.lang-src"), old_text);
        return true;
    });
}

// Two views of one file system are two for renaming, and only that says so.
TEST_F(SaveFaults, AnotherViewOfTheSameFileSystem)
{
    in_child([&] {
        fs::create_directory("there");
        fs::create_directory("view");
        if (unshare(CLONE_NEWNS) != 0 ||
            mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("there", "view", nullptr, MS_BIND, nullptr) != 0)
            return false;
        write_file("view/app.lang-src", old_text);
        // The copy takes a while, in which another program may have saved.
        int looks = 0;
        zel::write_how how;
        how.may_replace = [&looks] { return ++looks < 3; };
        EXPECT_EQ(zel::write_source("view/app.lang-src", source.get(), how).code,
                  zel::write_not_allowed);
        EXPECT_EQ(read_file("view/app.lang-src"), old_text);
        save("view/app.lang-src");
        EXPECT_EQ(result, 0);
        expect_nothing_lost("view/app.lang-src");
        return true;
    });
}

// --- the end of the process ----------------------------------------------------------------------

using KilledSlow = SaveFaults;

TEST_F(KilledSlow, AtEverySystemCall)
{
    grow(3000);
    const zel_test::elsewhere other;
    for (const std::string &path : {std::string("app.lang-src"), other.path() + "/app.lang-src"}) {
        zel_test::death death = zel_test::death::killed;
        int stop = 0;
        for (; death == zel_test::death::killed; ++stop) {
            SCOPED_TRACE(path + ", stop " + std::to_string(stop));
            clear(".");
            clear(folder_of(path));
            write_file(path, old_text);
            death = zel_test::kill_at(stop, [&] { lang_write_file(path.c_str(), source.get()); });
            if (death == zel_test::death::not_allowed)
                GTEST_SKIP() << "needs the right to trace a process";
            expect_whole(path);
        }
        EXPECT_GT(stop, 40);
        EXPECT_TRUE(is_new_text(path));
    }
}

// Without hard links the path is empty for a moment, but never while a text is on its way.
TEST_F(KilledSlow, AtEverySystemCallWithoutLinks)
{
    grow(100000); // several writes
    const zel_test::elsewhere other;
    const std::string path = other.path() + "/app.lang-src";
    zel_test::death death = zel_test::death::killed;
    int stop = 0;
    int empty = 0;
    for (; death == zel_test::death::killed; ++stop) {
        clear(".");
        clear(other.path());
        write_file(path, old_text);
        death = zel_test::kill_at(stop, [&] {
            armed = {"link", 1, EPERM, true, false, {}};
            lang_write_file(path.c_str(), source.get());
        });
        if (death == zel_test::death::not_allowed)
            GTEST_SKIP() << "needs the right to trace a process";
        if (fs::exists(path)) {
            expect_whole(path);
            continue;
        }
        ++empty;
        look_beside(path);
        EXPECT_THAT(backups, ElementsAre(old_text));
        EXPECT_TRUE(is_new_text("lang.tmp"));
    }
    EXPECT_GT(stop, 60);
    EXPECT_LT(empty, 10);
}

// --- several at once -----------------------------------------------------------------------------

using TogetherSlow = SaveFaults;

// LANG_TEST_PAIRS names another number.
TEST_F(TogetherSlow, TwoProgramsInOneFolderEachSaveTheirOwn)
{
    const char *named = std::getenv("LANG_TEST_PAIRS");
    const int pairs = named == nullptr ? 60 : std::atoi(named);
    for (int pair = 0; pair < pairs; ++pair) {
        pid_t children[2];
        for (int n = 0; n < 2; ++n) {
            const std::string path = "source-" + std::to_string(n);
            fs::remove(path);
            std::fflush(nullptr);
            children[n] = fork();
            if (children[n] == 0) {
                zel::replace_string(source->app, zel_strdup(path.c_str()));
                _exit(lang_write_file(path.c_str(), source.get()));
            }
        }
        for (int n = 0; n < 2; ++n) {
            int status = -1;
            waitpid(children[n], &status, 0);
            EXPECT_EQ(status, 0) << pair;
            const std::string path = "source-" + std::to_string(n);
            ASSERT_THAT(read_file(path), HasSubstr("\napp \"" + path + "\"\n")) << pair;
            ASSERT_THAT(read_file(path), testing::EndsWith("/* EOF " + path + " */\n")) << pair;
        }
        ASSERT_FALSE(fs::exists("lang.tmp")) << pair;
    }
}

// Whoever does not go on with what he holds is not waited for any longer.
TEST_F(TogetherSlow, WhoHoldsAFileForEverStopsNoSave)
{
    for (const char *name : {"lang.tmp", ".lang.lock"}) {
        clear(".");
        write_file("app.lang-src", old_text);
        write_file(name, leftover_text);
        const int held = open(name, O_RDONLY | O_CLOEXEC);
        ASSERT_EQ(flock(held, LOCK_EX), 0);
        const auto start = std::chrono::steady_clock::now();
        save("app.lang-src");
        EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
        EXPECT_EQ(said, "lang: process " + std::to_string(getpid()) + " has held " + name +
                            " for 8 seconds\n");
        EXPECT_EQ(result, 0);
        expect_nothing_lost("app.lang-src");
        close(held);
    }
}

// Who may only read the folder has no part in the turns, and the file by which they are taken can
// be opened by those who may write there.
TEST_F(SaveFaults, WhoMayReadTheFolderKeepsNobodyFromSaving)
{
    for (const mode_t mode : {0755U, 0775U, 0777U}) {
        clear(".");
        write_file("app.lang-src", old_text);
        ASSERT_EQ(chmod(".", mode), 0);
        const int folder = open(".", O_RDONLY | O_CLOEXEC);
        ASSERT_EQ(flock(folder, LOCK_EX), 0);
        mode_t others = 0;
        save(
            "app.lang-src",
            [&] {
                armed = {"link", 1, 0, false, false, [&] {
                             struct stat status {};
                             EXPECT_TRUE(is_held(".lang.lock"));
                             EXPECT_EQ(lstat(".lang.lock", &status), 0);
                             others = status.st_mode & 0777;
                         }};
            },
            [] { armed.call = ""; });
        EXPECT_EQ(result, 0);
        EXPECT_EQ(said, "");
        EXPECT_EQ(others, mode == 0755 ? 0600U : mode == 0775 ? 0660U : 0666U);
        expect_nothing_lost("app.lang-src");
        close(folder);
    }
}

// Somebody who knows no lock takes the temporary file away, or puts another one in its place, once
// the text is whole or at the very last moment.
TEST_F(SaveFaults, WhatIsPutInPlaceIsTheFileThatWasWritten)
{
    for (const char *moment : {"fsync", "rename"}) {
        for (const bool another : {false, true}) {
            SCOPED_TRACE(std::string(moment) + (another ? ": another file" : ": no file"));
            clear(".");
            write_file("app.lang-src", old_text);
            const auto steal = [&] {
                fs::remove("lang.tmp");
                if (another)
                    write_file("lang.tmp", "something else");
            };
            save(
                "app.lang-src", [&] { armed = {moment, 1, 0, false, false, steal}; },
                [] { armed.call = ""; });
            EXPECT_TRUE(armed.struck);
            EXPECT_EQ(result, 0);
            expect_nothing_lost("app.lang-src", true);
        }
    }
}

// Another program, which held the lock next, has saved before this one has looked whether its text
// is in place: it is the later one.
TEST_F(SaveFaults, ASaveThatFollowsAtOnceStays)
{
    const std::string later = "/* saved by another program */\n";
    const auto follow = [&] {
        write_file("other.tmp", later);
        fs::rename("other.tmp", "app.lang-src");
    };
    bool has_followed = false;
    for (int look = 1; !has_followed; ++look) {
        clear(".");
        write_file("app.lang-src", old_text);
        const auto follow_once_saved = [&] {
            has_followed = read_file("app.lang-src") != old_text;
            if (has_followed)
                follow();
        };
        save(
            "app.lang-src", [&] { armed = {"lstat", look, 0, false, false, follow_once_saved}; },
            [] { armed.call = ""; });
        ASSERT_TRUE(armed.struck);
        EXPECT_EQ(result, 0);
    }
    EXPECT_EQ(read_file("app.lang-src"), later);
    look_beside("app.lang-src");
    EXPECT_THAT(backups, testing::ElementsAre(old_text));
}

} // namespace
