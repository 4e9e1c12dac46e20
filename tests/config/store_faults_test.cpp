// The settings file while something fails, while the process is killed, and where somebody prepared
// the folder: the file is the old one or the new one, whole, and nobody else's is touched.

#include "config/lang-cfg.h"

#include "failing-calls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sched.h>
#include <string>
#include <sys/mount.h>

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

TEST_F(StoreFaultsSlow, EveryCallFailsInTurn)
{
    constexpr zel_test::call_that_fails calls[] = {
        {"open", EMFILE},  {"write", ENOSPC}, {"fsync", EIO},     {"close", EDQUOT},
        {"rename", EPERM}, {"rename", EXDEV}, {"fdopen", ENOMEM}, {"flock", ENOLCK},
        {"lstat", EIO},    {"unlink", EIO}};
    for (const bool lasting : {false, true}) {
        for (const zel_test::call_that_fails &call : calls) {
            bool struck = true;
            for (int nth = 1; struck && nth < 60; nth++) {
                SCOPED_TRACE(std::string(call.name) + " " + std::to_string(nth) +
                             (lasting ? " and later ones fail" : " fails"));
                prepare();
                run([&] { armed = {call.name, nth, call.error, lasting, false, {}}; },
                    [] { armed.call = ""; });
                struck = armed.struck;
                EXPECT_EQ(read_file("a.ini"), written == 0 ? new_file : old_file);
                if (std::strcmp(call.name, "unlink") != 0 && std::strcmp(call.name, "lstat") != 0) {
                    EXPECT_EQ(file_count(), 1U);
                }
                if (written != 0) {
                    EXPECT_THAT(printed, HasSubstr(opened == 0 ? "cfg_write: ERROR "
                                                               : "lang_write_cfg: error 2\n"));
                }
            }
            EXPECT_FALSE(struck) << call.name;
            EXPECT_EQ(written, 0);
        }
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

TEST_F(StoreFaults, AFullDiskLeavesTheOldFile)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        fs::create_directory("small");
        if (unshare(CLONE_NEWNS) != 0 ||
            mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", "small", "tmpfs", 0, "size=16k") != 0 || chdir("small") != 0)
            _exit(77);
        prepare();
        std::string text = old_file;
        while (text.size() < 9000)
            text += "key" + std::to_string(text.size()) + "=value\n";
        write_file("a.ini", text);
        run();
        EXPECT_EQ(written, CFG_NOT_WRITTEN);
        EXPECT_THAT(printed, HasSubstr("cfg_write: ERROR write fp_tmp errno " +
                                       std::to_string(ENOSPC) + "\n"));
        EXPECT_EQ(read_file("a.ini"), text);
        EXPECT_EQ(file_count(), 1U);
        _exit(HasFailure() ? 1 : 40);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 77)
        GTEST_SKIP() << "needs the right to mount a file system";
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 40);
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
