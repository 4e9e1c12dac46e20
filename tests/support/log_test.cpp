#include "log-fixture.h"
#include "working-dir.h"

#include "family/log.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using zel_test::capture_stderr;
using zel_test::capture_stdout;
using zel_test::read_file;
using zel_test::temp_dir;
using zel_test::write_file;

namespace {

constexpr const char *stamps = "[0-9]+-[0-9]+-[0-9]+ [0-9]+:[0-9]+:[0-9]+:[0-9]+\n";

// The stamp of a line: time and thread.
constexpr const char *line_stamp = "[0-9]+:[0-9]+:[0-9]+:[0-9]+-[0-9a-f]+ ";

std::string whole_log(const std::string &lines)
{
    return std::string("Start logging Version 1\\.2  ") + stamps + "\nLinux or unknown\n\n" +
           lines + "End logging " + stamps + "________EOF________";
}

using log_open = zel_test::with_log;

} // namespace

TEST(log, file_holds_head_lines_and_end)
{
    const temp_dir dir;
    EXPECT_EQ(0, LogOpen((dir / "a.log").c_str(), LOG_OPEN_NEW, "1.2"));
    LogPrint(1, "one %d", 1);
    LogPrint(0, " two\n");
    LogSpeed(SPEED_CYCLE_END, "work");
    LogSpeed(7, nullptr);
    EXPECT_EQ(1, LogWrite("raw\n", 1, 4));
    EXPECT_EQ(dir / "a.log", LogGetFile());
    LogClose();
    EXPECT_THAT(read_file(dir / "a.log"),
                MatchesRegex(whole_log(std::string(line_stamp) + "one 1 two\n" +
                                       "SPEED_CYCLE_END 0 \"work\"\nNONE0 \" \"\nraw\n")));
    EXPECT_EQ(nullptr, LogGetFile());
    EXPECT_EQ(nullptr, LogGetFd());
}

TEST(log, closed_log_takes_nothing)
{
    const std::string out = capture_stdout([] {
        EXPECT_EQ(0, LogPrint(1, "nothing\n"));
        LogSpeed(SPEED_ENTRY, "nothing");
        EXPECT_EQ(1, LogWrite("nothing", 1, 7));
        EXPECT_EQ(0, LogClose());
        EXPECT_EQ(0, dbg_printf("nothing\n"));
    });
    EXPECT_EQ("", out);
}

TEST(log, new_file_moves_the_one_before)
{
    const temp_dir dir;
    write_file(dir / "a.log", "before");
    write_file(dir / "a.log.old", "long before");
    LogOpen((dir / "a.log").c_str(), LOG_OPEN_NEW | LOG_OPEN_APPEND, "1.2");
    LogClose();
    EXPECT_EQ("before", read_file(dir / "a.log.old"));
    EXPECT_THAT(read_file(dir / "a.log"), MatchesRegex(whole_log("")));

    LogOpen((dir / "a.log").c_str(), LOG_OPEN_APPEND, "1.2");
    LogClose();
    EXPECT_THAT(read_file(dir / "a.log"), MatchesRegex(whole_log("") + whole_log("")));

    fs::remove(dir / "a.log");
    LogOpen((dir / "a.log").c_str(), LOG_OPEN_NEW, "1.2");
    LogClose();
    EXPECT_FALSE(fs::exists(dir / "a.log.old")) << "it is not of the run before";
}

TEST(log, begins_in_its_place_where_the_folder_gives_nothing_up)
{
    const temp_dir dir;
    const std::string path = dir / "a.log";
    write_file(path, "before");
    fs::permissions(path, fs::perms(0666));
    fs::permissions(dir / "", fs::perms(0555));
    const bool is_root = geteuid() == 0;
    ASSERT_TRUE(!is_root || seteuid(65534) == 0);
    LogOpen(path.c_str(), LOG_OPEN_NEW, "1.2");
    LogClose();
    ASSERT_TRUE(!is_root || seteuid(0) == 0);
    fs::permissions(dir / "", fs::perms(0755));
    EXPECT_THAT(read_file(path), MatchesRegex(whole_log("")));
}

TEST(log, without_a_file_the_streams_still_get_everything)
{
    const temp_dir dir;
    const std::string path = dir / "missing/a.log";
    std::string err;
    const std::string out = capture_stdout([&] {
        err = capture_stderr([&] {
            LogOpen(path.c_str(), LOG_OPEN_NEW | LOG_OPEN_STDOUT | LOG_OPEN_STDERR, "1.2");
            LogPrint(1, "line\n");
            LogClose();
        });
    });
    std::string whole = whole_log(std::string(line_stamp) + "line\n");
    whole.resize(whole.size() - 19); // no marker on the streams
    EXPECT_THAT(out, MatchesRegex(whole));
    EXPECT_THAT(err, MatchesRegex(whole));
}

// Whatever bears the log's name: nothing is written through it, and nothing waits for it.
TEST(log, follows_no_link_and_moves_no_folder)
{
    const temp_dir dir;
    const std::string path = dir / "a.log";
    for (const unsigned flags : {LOG_OPEN_NEW + 0U, LOG_OPEN_APPEND + 0U}) {
        for (int kind = 0; kind < 4; ++kind) {
            write_file(dir / "other", "precious");
            if (kind == 0)
                fs::create_symlink("other", path);
            else if (kind == 1)
                fs::create_symlink("nowhere", path);
            else if (kind == 2)
                ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
            else
                fs::create_directories(path + "/inside");
            LogOpen(path.c_str(), flags, "1.2");
            LogPrint(1, "line\n");
            EXPECT_EQ(flags == LOG_OPEN_NEW && kind < 2, LogGetFd() != nullptr) << kind;
            LogClose();
            if (kind >= 2) {
                EXPECT_EQ(nullptr, zel_log_open(path.c_str(), "1", 0)) << kind;
            }
            EXPECT_EQ("precious", read_file(dir / "other"));
            EXPECT_FALSE(fs::exists(dir / "nowhere"));
            EXPECT_EQ(kind == 3, fs::exists(path + "/inside"));
            EXPECT_EQ(kind == 2, fs::is_fifo(path));
            fs::remove_all(path);
            fs::remove_all(path + ".old");
        }
    }
}

TEST(log, is_not_written_over_a_link_of_somebody_else)
{
    const temp_dir dir;
    fs::create_directory(dir / "real");
    fs::create_symlink("real", dir / "link");
    const std::string path = dir / "link/a.log";
    LogOpen(path.c_str(), LOG_OPEN_NEW, "1.2"); // over one's own it is
    LogClose();
    EXPECT_TRUE(fs::exists(dir / "real/a.log"));
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the right to give files away";
    fs::remove(dir / "real/a.log");
    ASSERT_EQ(lchown((dir / "link").c_str(), 1234, 1234), 0);
    LogOpen(path.c_str(), LOG_OPEN_NEW, "1.2");
    EXPECT_EQ(nullptr, LogGetFd());
    LogClose();
    LogOpen(path.c_str(), LOG_OPEN_APPEND, "1.2");
    EXPECT_EQ(nullptr, LogGetFd());
    LogClose();
    EXPECT_TRUE(fs::is_empty(dir / "real"));
}

TEST_F(log_open, second_open_is_refused_and_logged)
{
    const std::string other = dir / "b.log";
    LogOpen(other.c_str(), LOG_OPEN_NEW | LOG_OPEN_STDOUT, "2");
    LogOpen(nullptr, 8, "2");
    EXPECT_EQ("* LogOpen: 0x00000006 >" + other + "< already open -> return\n" +
                  "* LogOpen: 0x00000008 already open -> return\n",
              logged());
    EXPECT_FALSE(std::filesystem::exists(other));
}

TEST_F(log_open, data_is_dumped_by_lines_of_sixteen)
{
    unsigned char bytes[18];
    for (unsigned char i = 0; i < 18; ++i)
        bytes[i] = i;
    LogPrintData(0, bytes, 18);
    LogPrintData(1, bytes, 0);
    EXPECT_EQ("00 01 02 03 04 05 06 07 - 08 09 0A 0B 0C 0D 0E 0F\n10 11 \n", logged());
}

TEST(log, crash_check_looks_for_the_end_marker)
{
    const temp_dir dir;
    LogOpen((dir / "a.log").c_str(), LOG_OPEN_NEW, "1");
    LogClose();
    EXPECT_EQ(0, LogCheckCrash((dir / "a.log").c_str()));
    std::string text = read_file(dir / "a.log");
    text.pop_back();
    write_file(dir / "cut.log", text);
    write_file(dir / "short.log", std::string(37, 'x'));
    write_file(dir / "least.log", std::string(38, 'x'));
    EXPECT_EQ(0, LogCheckCrash((dir / "short.log").c_str()));
    EXPECT_EQ(1, LogCheckCrash((dir / "least.log").c_str()));

    dbg_printf_on(1);
    const std::string said = capture_stdout([&] {
        EXPECT_EQ(1, LogCheckCrash((dir / "cut.log").c_str()));
        EXPECT_EQ(0, LogCheckCrash(dir.path().c_str()));
        EXPECT_EQ(0, LogCheckCrash((dir / "none").c_str()));
    });
    dbg_printf_on(0);
    EXPECT_EQ("LogCheckCrash: exit(6), eof does't match\nLogCheckCrash: exit(0), " + dir.path() +
                  " not found\nLogCheckCrash: exit(1), " + (dir / "none") + " error stat\n",
              said);
}

TEST(own_log, stamps_as_asked_and_has_no_end)
{
    const temp_dir dir;
    const std::string path = dir / "own.log";
    write_file(path, "before");
    const auto before = zel_test::open_files();
    zel_log_guard log(
        zel_log_open(path.c_str(), "1.2", ZEL_LOG_TIME | ZEL_LOG_THREAD | ZEL_LOG_HEADER));
    ASSERT_NE(nullptr, log);
    EXPECT_EQ(path, zel_log_get_file(log.get()));
    zel_log_print(log.get(), "a %s\n", "b");
    zel_log_puts(log.get(), "text\n");
    log.reset();
    EXPECT_EQ(before, zel_test::open_files());
    EXPECT_THAT(read_file(path),
                MatchesRegex(std::string("Start logging Version 1\\.2  ") + stamps +
                             "\nLinux or unknown\n\n[0-9:]+ -[0-9a-f]+ a b\n-[0-9a-f]+ text\n"));
    EXPECT_EQ("before", read_file(path + ".old"));
}
