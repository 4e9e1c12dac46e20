// The settings file while something fails, while the process is killed, and where somebody prepared
// the folder: the file is the old one or the new one, whole, and nobody else's is touched.

#include "config/lang-cfg.h"

#include "failing-calls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

#include "working-dir.h"

namespace {

using testing::HasSubstr;
using zel_test::armed;
using zel_test::read_file;
using zel_test::write_file;
namespace fs = std::filesystem;

constexpr const char *old_file = "version=1\n\n[s]\nkey=old\n";
constexpr const char *new_file = "version=2\n\n[s]\nkey=old\n";

class StoreFaults : public zel_test::working_dir {
protected:
    // A program's whole way with its settings: read, change, write, close.
    template <class Begin, class End>
    void run(Begin begin, End end)
    {
        printed = zel_test::capture_stdout([&] {
            said = zel_test::capture_stderr([&] {
                begin();
                lang_cfg_guard store(lang_cfg_new("a.ini"));
                opened = lang_cfg_open(store.get(), 0);
                store->version = 2;
                written = lang_cfg_write(store.get());
                lang_cfg_close(store.get());
                end();
            });
        });
    }
    void run()
    {
        run([] {}, [] {});
    }
    void prepare()
    {
        for (const auto &file : fs::directory_iterator("."))
            fs::remove_all(file);
        write_file("a.ini", old_file);
    }
    static std::size_t file_count()
    {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator("."), fs::directory_iterator()));
    }

    std::string printed;
    std::string said;
    int opened = -7;
    int written = -7;
};

using StoreFaultsSlow = StoreFaults;

// Of every call with every error, `./dev faults` tells that no setting is lost.
TEST_F(StoreFaults, AWriteThatFailsLeavesTheOldFileAndNothingBesideIt)
{
    for (const auto &row : {std::pair{"write", ENOSPC},
                            {"fsync", EIO},
                            {"rename", EXDEV},
                            {"fdopen", ENOMEM},
                            {"open", EMFILE}}) {
        const char *const call = row.first;
        prepare();
        run([&] { armed = {call, 1, row.second, true, false, {}}; }, [] { armed.call = ""; });
        EXPECT_TRUE(armed.struck) << call;
        EXPECT_EQ(read_file("a.ini"), old_file) << call;
        EXPECT_EQ(file_count(), 1U) << call;
        EXPECT_THAT(printed,
                    HasSubstr(opened == 0 ? "cfg_write: ERROR " : "lang_write_cfg: error 2\n"));
    }
}

TEST_F(StoreFaultsSlow, KilledAtEverySystemCall)
{
    zel_test::death death = zel_test::death::killed;
    int stop = 0;
    for (; death == zel_test::death::killed; ++stop) {
        SCOPED_TRACE(stop);
        prepare();
        death = zel_test::kill_at(stop, [&] { run(); });
        if (death == zel_test::death::not_allowed)
            GTEST_SKIP() << "needs the right to trace a process";
        const std::string found = read_file("a.ini");
        EXPECT_TRUE(found == old_file || found == new_file) << found;
        run(); // what was left does not hinder the next one
        EXPECT_EQ(read_file("a.ini"), new_file);
        EXPECT_EQ(file_count(), 1U);
    }
    EXPECT_GT(stop, 60);
}

TEST_F(StoreFaultsSlow, TwoProgramsWriteOneFile)
{
    for (int round = 0; round < 40; ++round) {
        prepare();
        pid_t children[2];
        for (pid_t &child : children) {
            std::fflush(nullptr);
            child = fork();
            if (child == 0) {
                run();
                _exit(written);
            }
        }
        for (const pid_t child : children) {
            int status = -1;
            waitpid(child, &status, 0);
            EXPECT_EQ(status, 0);
        }
        EXPECT_EQ(read_file("a.ini"), new_file);
        EXPECT_EQ(file_count(), 1U);
    }
}

// --- a folder that somebody prepared -------------------------------------------------------------

void put_in_the_way(const std::string &path, int kind)
{
    if (kind == 0)
        fs::create_symlink("other", path);
    else if (kind == 1)
        fs::create_symlink("nowhere", path);
    else if (kind == 2)
        ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
    else if (kind == 3)
        fs::create_hard_link("other", path);
    else
        fs::create_directories(path + "/full");
}

TEST_F(StoreFaults, LinksPipesAndFoldersAreNeitherFollowedNorWaitedFor)
{
    for (const std::string name : {"a.ini.lock", "a.ini.tmp", "a.ini"}) {
        for (int kind = 0; kind < 5; ++kind) {
            SCOPED_TRACE(name + " " + std::to_string(kind));
            prepare();
            write_file("other", "precious=1\n");
            if (name == "a.ini")
                fs::remove("a.ini");
            put_in_the_way(name, kind);
            run();
            EXPECT_EQ(read_file("other"), "precious=1\n");
            EXPECT_FALSE(fs::exists("nowhere"));
            const bool is_file = kind == 3;
            const bool refused = name == "a.ini" ? !is_file : kind == 4;
            EXPECT_EQ(written != 0, refused);
            EXPECT_EQ(said.empty(), !refused) << said;
            if (name != "a.ini") {
                EXPECT_EQ(read_file("a.ini"), refused ? old_file : new_file);
            }
        }
    }
    EXPECT_THAT(said, HasSubstr("lang: a.ini cannot be used: "));
}

TEST_F(StoreFaults, ALockThatCannotBeRemovedIsSaid)
{
    prepare();
    fs::create_directory("a.ini.lock");
    run();
    EXPECT_EQ(opened, CFG_LOCKED);
    EXPECT_EQ(said, "lang: a.ini.lock cannot be made: " + std::string(std::strerror(EEXIST)) +
                        "; the settings are not used\n");
    fs::remove("a.ini.lock");
    fs::create_directory("a.ini.tmp");
    run();
    EXPECT_EQ(written, CFG_NOT_WRITTEN);
    EXPECT_THAT(said, testing::ContainsRegex("zel_unlink: .*ERROR  errno [0-9]+ >a.ini.tmp<>"));
}

TEST_F(StoreFaults, TheFileKeepsItsMode)
{
    prepare();
    chmod("a.ini", 0600);
    run();
    EXPECT_EQ(read_file("a.ini"), new_file);
    EXPECT_EQ(fs::status("a.ini").permissions(), fs::perms(0600));
}

} // namespace
