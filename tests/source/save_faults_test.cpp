// Saving while something fails: whatever it is, the old text is whole at its path or in its backup,
// the new one is not said to be saved unless it stands at the path, and nothing else lies around.

#include "source/lang-write.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "source/group.h"
#include "source/lang-read.h"
#include "source/source-text.h"
#include "support/string-copy.h"
#include "working-dir.h"

// --- calls that fail when asked to
// -----------------------------------------------------------------

namespace {

struct fault {
    const char *call = ""; // the call that fails,
    int countdown = 0;     // this many calls of it from now,
    int error = 0;         // with this errno
    bool struck = false;
};
fault armed;

bool fails(const char *call)
{
    if (std::strcmp(armed.call, call) != 0 || --armed.countdown != 0)
        return false;
    armed.struck = true;
    errno = armed.error;
    return true;
}

template <class Function>
Function *real(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int rename(const char *from, const char *to) noexcept
{
    static auto *next = real<int(const char *, const char *)>("rename");
    return fails("rename") ? -1 : next(from, to);
}

int unlink(const char *path) noexcept
{
    static auto *next = real<int(const char *)>("unlink");
    return fails("unlink") ? -1 : next(path);
}

int fsync(int fd)
{
    static auto *next = real<int(int)>("fsync");
    return fails("fsync") ? -1 : next(fd);
}

int fflush(std::FILE *stream)
{
    static auto *next = real<int(std::FILE *)>("fflush");
    return fails("fflush") ? EOF : next(stream);
}

int fclose(std::FILE *stream)
{
    static auto *next = real<int(std::FILE *)>("fclose");
    const bool fail = fails("fclose");
    const int error = errno;
    const int result = next(stream); // it is closed all the same
    if (!fail)
        return result;
    errno = error;
    return EOF;
}

int open(const char *path, int flags, ...)
{
    static auto *next = real<int(const char *, int, ...)>("open");
    std::va_list args;
    va_start(args, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(args, mode_t) : 0;
    va_end(args);
    return fails("open") ? -1 : next(path, flags, mode);
}

std::FILE *fdopen(int fd, const char *mode) noexcept
{
    static auto *next = real<std::FILE *(int, const char *)>("fdopen");
    return fails("fdopen") ? nullptr : next(fd, mode);
}

ssize_t write(int fd, const void *data, std::size_t size)
{
    static auto *next = real<ssize_t(int, const void *, std::size_t)>("write");
    return fails("write") ? -1 : next(fd, data, size);
}

ssize_t read(int fd, void *data, std::size_t size)
{
    static auto *next = real<ssize_t(int, void *, std::size_t)>("read");
    return fails("read") ? -1 : next(fd, data, size);
}

} // extern "C"

namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::StartsWith;
using zel_test::describe;
using zel_test::read_file;
using zel_test::write_file;

const std::string old_text = "group \"old\" { item \"kept\" { lang \"e\" { \"precious\" } } }\n";

const std::string leftover_text = "left from before";

class SaveFaults : public zel_test::working_dir {
protected:
    SaveFaults() { insert_group_item(source.get(), "new", "item")->ctime = 5; }

    // A text of about that many bytes.
    void grow(std::size_t bytes)
    {
        auto *entry = alloc_lang_entry("german");
        for (std::size_t n = 0; n < bytes; n += 1000)
            entry->texts = g_list_prepend(entry->texts, zel_strdup(std::string(989, 'x').c_str()));
        auto *item = get_item_ptr(source.get(), "new", "item");
        item->langs = g_list_append(item->langs, entry);
    }

    // Standard output is a pipe meanwhile, which no limit on files touches.
    void save(const std::string &path)
    {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        std::fflush(stdout);
        const int saved = dup(STDOUT_FILENO);
        dup2(ends[1], STDOUT_FILENO);
        close(ends[1]);
        result = lang_write_file(path.c_str(), source.get());
        armed = {"", 0, 0, armed.struck};
        std::fflush(stdout);
        dup2(saved, STDOUT_FILENO);
        close(saved);
        printed.clear();
        char block[4096];
        for (ssize_t size = 0; (size = read(ends[0], block, sizeof block)) > 0;)
            printed.append(block, static_cast<std::size_t>(size));
        close(ends[0]);
    }

    static std::string folder_of(const std::string &path)
    {
        const std::string folder = std::filesystem::path(path).parent_path();
        return folder.empty() ? "." : folder;
    }
    // What lies beside the path: the backups' texts and the names that do not belong there.
    void look_beside(const std::string &path)
    {
        backups.clear();
        strangers.clear();
        const std::string name = std::filesystem::path(path).filename();
        for (const auto &file : std::filesystem::directory_iterator(folder_of(path))) {
            const std::string found = file.path().filename();
            if (found.starts_with(name + "-2") && found.ends_with(".bak"))
                backups.push_back(read_file(file.path()));
            else if (found != name && found != "lang.tmp" && found != "other")
                strangers.push_back(found);
        }
    }
    bool is_new_text(const std::string &path)
    {
        if (!std::filesystem::exists(path))
            return false;
        LangSource *read_back = nullptr;
        zel_test::capture_stdout([&] { read_back = lang_read_file(path.c_str()); });
        const source_guard guard(read_back);
        return describe(read_back) == as_read();
    }
    std::string as_read()
    {
        const std::uint32_t format = source->format;
        source->format = LANG_SOURCE_ASCII; // what none is written as
        item_t *item = get_item_ptr(source.get(), "new", "item");
        zel::replace_string(item->description, zel_strdup("none"));
        std::string text = describe(source.get());
        zel::replace_string(item->description, nullptr);
        source->format = format;
        return text;
    }

    // What must hold after a save to a path that held the old text. A temporary file may stay
    // only where it cannot be removed.
    void expect_nothing_lost(const std::string &path, const std::string &what,
                             bool may_stay = false)
    {
        SCOPED_TRACE(what + ": result " + std::to_string(result) + ", " + printed);
        look_beside(path);
        EXPECT_TRUE(strangers.empty()) << strangers.front();
        const bool old_at_path = read_file(path) == old_text;
        const bool old_in_backup =
            std::find(backups.begin(), backups.end(), old_text) != backups.end();
        EXPECT_TRUE(old_at_path || old_in_backup);
        if (result == 0) {
            EXPECT_TRUE(is_new_text(path));
            EXPECT_TRUE(may_stay || !std::filesystem::exists("lang.tmp"));
        } else if (result == 1) {
            EXPECT_THAT(printed, AnyOf(HasSubstr("lang_write_file(1): error("),
                                       HasSubstr("lang_write_file(3): error(")));
            EXPECT_TRUE(old_at_path || is_new_text("lang.tmp"));
        } else {
            EXPECT_EQ(result, -1);
            EXPECT_EQ(printed, "ERROR open output file lang.tmp " + path + "\n");
        }
        if (std::filesystem::exists("lang.tmp") &&
            !(may_stay && read_file("lang.tmp") == leftover_text)) {
            EXPECT_TRUE(is_new_text("lang.tmp"));
        }
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

    zel_test::fresh_global global;
    source_guard source{lang_alloc_group()};
    std::string printed;
    int result = -7;
    std::vector<std::string> backups;
    std::vector<std::string> strangers;
};

// --- every call in turn
// ----------------------------------------------------------------------------

struct call_that_fails {
    const char *name;
    int error;
};
constexpr call_that_fails calls[] = {
    {"open", EMFILE}, {"fdopen", ENOMEM}, {"fflush", ENOSPC}, {"fsync", EIO},    {"fclose", EDQUOT},
    {"unlink", EIO},  {"rename", EXDEV},  {"rename", EACCES}, {"write", ENOSPC}, {"read", EIO}};

class EachCall : public SaveFaults {
protected:
    void every_call_fails_in_turn(const std::string &path, bool leftover)
    {
        for (const call_that_fails &call : calls) {
            for (int nth = 1; nth < 20; nth++) {
                for (const auto &file : std::filesystem::directory_iterator(folder_of(path)))
                    std::filesystem::remove(file);
                std::filesystem::remove("lang.tmp");
                write_file(path, old_text);
                if (leftover)
                    write_file("lang.tmp", leftover_text);
                armed = {call.name, nth, call.error, false};
                save(path);
                expect_nothing_lost(path,
                                    std::string(call.name) + " " + std::to_string(nth) +
                                        " fails with " + std::to_string(call.error),
                                    std::strcmp(call.name, "unlink") == 0);
                if (!armed.struck) {
                    EXPECT_EQ(result, 0);
                    EXPECT_EQ(printed, "");
                    break;
                }
            }
        }
    }
};

TEST_F(EachCall, OnOneFileSystem)
{
    std::filesystem::create_directory("sub");
    every_call_fails_in_turn("sub/app.lang-src", false);
}

TEST_F(EachCall, WithALeftoverTemporaryFile)
{
    std::filesystem::create_directory("sub");
    every_call_fails_in_turn("sub/app.lang-src", true);
}

// A directory on another file system than the working directory.
class elsewhere {
public:
    elsewhere()
    {
        if (mkdtemp(path_.data()) == nullptr)
            path_.clear();
    }
    ~elsewhere()
    {
        std::error_code ignored;
        if (!path_.empty())
            std::filesystem::remove_all(path_, ignored);
    }
    elsewhere(const elsewhere &) = delete;
    elsewhere &operator=(const elsewhere &) = delete;
    bool is_other() const
    {
        struct stat here, there;
        return !path_.empty() && stat(".", &here) == 0 && stat(path_.c_str(), &there) == 0 &&
               here.st_dev != there.st_dev;
    }
    const std::string &path() const { return path_; }

private:
    std::string path_ = "/dev/shm/lang-test-XXXXXX";
};

TEST_F(EachCall, AcrossFileSystems)
{
    const elsewhere other;
    if (!other.is_other())
        GTEST_SKIP() << "no second file system";
    every_call_fails_in_turn(other.path() + "/app.lang-src", false);
}

TEST_F(SaveFaults, APathOnAnotherFileSystemIsNoFailure)
{
    const elsewhere other;
    if (!other.is_other())
        GTEST_SKIP() << "no second file system";
    grow(300000);
    const std::string path = other.path() + "/app.lang-src";
    write_file(path, old_text);
    save(path);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(printed, "");
    expect_nothing_lost(path, "another file system");
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    write_file("plain", "");
    struct stat plain;
    ASSERT_EQ(stat("plain", &plain), 0);
    EXPECT_EQ(status.st_mode, plain.st_mode); // as open to others as any new file
}

// --- no temporary file
// -----------------------------------------------------------------------------

TEST_F(SaveFaults, WhereTheTemporaryFileCannotBeCreatedTheOldFileIsInItsBackup)
{
    for (bool full : {false, true}) {
        std::filesystem::remove_all("lang.tmp");
        std::filesystem::create_directories(full ? "lang.tmp/full" : "lang.tmp");
        std::filesystem::create_directory("sub");
        write_file("sub/app.lang-src", old_text);
        save("sub/app.lang-src");
        EXPECT_EQ(result, -1);
        EXPECT_EQ(printed, "ERROR open output file lang.tmp sub/app.lang-src\n");
        look_beside("sub/app.lang-src");
        EXPECT_THAT(backups, testing::ElementsAre(old_text));
        EXPECT_FALSE(std::filesystem::exists("sub/app.lang-src"));
        std::filesystem::remove_all("sub");
    }
}

using SaveFaultsSlow = SaveFaults;
TEST_F(SaveFaultsSlow, ALeftoverLinkIsNotFollowed)
{
    write_file("other", "precious");
    for (int kind = 0; kind < 3; kind++) {
        if (kind == 0)
            std::filesystem::create_symlink("other", "lang.tmp");
        else if (kind == 1)
            std::filesystem::create_hard_link("other", "lang.tmp");
        else
            std::filesystem::create_symlink("nowhere", "lang.tmp");
        write_file("app.lang-src", old_text);
        save("app.lang-src");
        EXPECT_EQ(result, 0);
        expect_nothing_lost("app.lang-src", "link " + std::to_string(kind));
        EXPECT_EQ(read_file("other"), "precious");
        EXPECT_FALSE(std::filesystem::exists("nowhere"));
        EXPECT_FALSE(std::filesystem::is_symlink("app.lang-src"));
    }
}

TEST_F(SaveFaults, ASourceMayBearTheTemporaryName)
{
    write_file("lang.tmp", old_text);
    save("lang.tmp");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(printed, "");
    EXPECT_TRUE(is_new_text("lang.tmp"));
    look_beside("lang.tmp");
    EXPECT_THAT(backups, testing::ElementsAre(old_text));
}

// --- no room
// ---------------------------------------------------------------------------------------

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
    for (rlim_t bytes : {0UL, 1UL, 4096UL, 65536UL, 262144UL, 290000UL}) {
        {
            const size_limit limit(bytes);
            save("app.lang-src");
        }
        SCOPED_TRACE(bytes);
        EXPECT_EQ(result, -1);
        EXPECT_EQ(printed, "ERROR open output file lang.tmp app.lang-src\n");
        EXPECT_EQ(read_file("app.lang-src"), old_text);
        EXPECT_FALSE(std::filesystem::exists("lang.tmp"));
        look_beside("app.lang-src");
        EXPECT_TRUE(backups.empty());
        EXPECT_TRUE(strangers.empty());
    }
    save("app.lang-src"); // and with room all is well again
    EXPECT_EQ(result, 0);
    expect_nothing_lost("app.lang-src", "with room");
}

TEST_F(SaveFaults, AWriteErrorIsLoggedWithItsCause)
{
    grow(300000);
    zel_test::log_capture log;
    {
        const size_limit limit(100000);
        save("app.lang-src");
    }
    EXPECT_THAT(log.text(), HasSubstr(std::strerror(EFBIG)));
    EXPECT_FALSE(std::filesystem::exists("app.lang-src"));
}

// A small file system that only this process sees, at "small".
bool mount_small()
{
    std::filesystem::create_directory("small");
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
            EXPECT_EQ(printed, "ERROR open output file lang.tmp " + std::string(path) + "\n");
            EXPECT_EQ(read_file(path), old_text);
            EXPECT_FALSE(std::filesystem::exists("lang.tmp"));
        }
        return true;
    });
}

TEST_F(SaveFaults, AFullDiskAtThePath)
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
        expect_nothing_lost("small/app.lang-src", "full");
        return true;
    });
}

// --- places that cannot be written
// -----------------------------------------------------------------

TEST_F(SaveFaults, ADirectoryThatDoesNotExist)
{
    save("no/app.lang-src");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(printed, "lang_write_file(3): error(" + std::to_string(ENOENT) +
                           ") rename lang.tmp to no/app.lang-src\n");
    EXPECT_TRUE(is_new_text("lang.tmp"));
}

TEST_F(SaveFaults, ANameThatLeavesNoRoomForTheStamp)
{
    const std::string path(250, 'n');
    write_file(path, old_text);
    save(path);
    EXPECT_EQ(result, 1);
    EXPECT_THAT(printed, StartsWith("lang_write_file(1): error(" + std::to_string(ENAMETOOLONG) +
                                    ") rename " + path + " to " + path + "-2"));
    EXPECT_EQ(read_file(path), old_text);
    EXPECT_FALSE(std::filesystem::exists("lang.tmp"));
}

TEST_F(SaveFaults, ADirectoryAtThePathIsMovedAwayWhole)
{
    std::filesystem::create_directory("app.lang-src");
    write_file("app.lang-src/inside", old_text);
    save("app.lang-src");
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(is_new_text("app.lang-src"));
    bool found = false;
    for (const auto &file : std::filesystem::recursive_directory_iterator("."))
        found = found || (file.is_regular_file() && read_file(file.path()) == old_text);
    EXPECT_TRUE(found);
}

// Runs as somebody whom permissions bind.
template <class Function>
void as_anybody(Function function)
{
    const bool is_root = geteuid() == 0;
    if (is_root && seteuid(65534) != 0)
        return;
    function();
    if (is_root) {
        EXPECT_EQ(seteuid(0), 0);
    }
}

TEST_F(SaveFaults, DirectoriesWithoutPermission)
{
    std::filesystem::permissions(".", std::filesystem::perms::all);
    std::filesystem::create_directory("sub");
    write_file("sub/app.lang-src", old_text);
    chmod("sub", 0555);
    as_anybody([&] { save("sub/app.lang-src"); });
    EXPECT_EQ(result, 1);
    EXPECT_THAT(printed, StartsWith("lang_write_file(1): error(" + std::to_string(EACCES) +
                                    ") rename sub/app.lang-src to sub/app.lang-src-2"));
    EXPECT_EQ(read_file("sub/app.lang-src"), old_text);
    EXPECT_FALSE(std::filesystem::exists("lang.tmp"));

    as_anybody([&] { save("sub/other.lang-src"); });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(printed, "lang_write_file(3): error(" + std::to_string(EACCES) +
                           ") rename lang.tmp to sub/other.lang-src\n");
    EXPECT_TRUE(is_new_text("lang.tmp"));
    std::filesystem::remove("lang.tmp");

    chmod("sub", 0777);
    chmod(".", 0555);
    as_anybody([&] { save("sub/app.lang-src"); });
    EXPECT_EQ(result, -1);
    EXPECT_EQ(printed, "ERROR open output file lang.tmp sub/app.lang-src\n");
    look_beside("sub/app.lang-src");
    EXPECT_THAT(backups, testing::ElementsAre(old_text));
    chmod(".", 0777);
}

// --- the end of the process
// ------------------------------------------------------------------------

TEST_F(SaveFaultsSlow, KilledAtAnyMoment)
{
    grow(2000000);
    timespec start, end;
    clock_gettime(CLOCK_MONOTONIC, &start);
    save("app.lang-src");
    clock_gettime(CLOCK_MONOTONIC, &end);
    const long needed =
        (end.tv_sec - start.tv_sec) * 1000000L + (end.tv_nsec - start.tv_nsec) / 1000;
    const int rounds = 16;
    for (int round = 0; round < rounds; round++) {
        for (const auto &file : std::filesystem::directory_iterator("."))
            std::filesystem::remove(file);
        write_file("app.lang-src", old_text);
        const pid_t child = fork();
        if (child == 0) {
            lang_write_file("app.lang-src", source.get());
            _exit(0);
        }
        usleep(static_cast<useconds_t>(needed * round / (rounds - 4)));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);

        look_beside("app.lang-src");
        const bool moved = !backups.empty();
        EXPECT_EQ(moved ? backups.front() : read_file("app.lang-src"), old_text) << round;
        if (moved) {
            EXPECT_TRUE(is_new_text("app.lang-src") || is_new_text("lang.tmp")) << round;
        }
    }
}

} // namespace
