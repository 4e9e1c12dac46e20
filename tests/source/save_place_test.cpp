// Where a save puts its text, and whose the new file is: links, rights, and what others left in the
// folder.

#include "source/save-fixture.h"

#include <cerrno>
#include <cstring>
#include <sys/sysmacros.h>
#include <sys/xattr.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using zel_test::old_text;
using zel_test::read_file;
using zel_test::write_file;
namespace fs = std::filesystem;

constexpr uid_t nobody = 65534;

class SavePlace : public zel_test::saving {
protected:
    SavePlace() { fs::permissions(".", fs::perms::all); }

    // Saves as somebody whom permissions bind.
    void save_as_anybody(const std::string &path)
    {
        const bool is_root = geteuid() == 0;
        ASSERT_TRUE(!is_root || seteuid(nobody) == 0);
        save(path);
        ASSERT_TRUE(!is_root || seteuid(0) == 0);
    }
    static struct stat status_of(const std::string &path)
    {
        struct stat status {};
        EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
        return status;
    }
};

// --- links ---------------------------------------------------------------------------------------

TEST_F(SavePlace, ASourceBehindALinkIsSavedWhereTheLinkPoints)
{
    fs::create_directory("real");
    fs::create_directory("links");
    write_file("real/app.lang-src", old_text);
    fs::create_symlink("../real/app.lang-src", "links/link");
    fs::create_symlink("links/link", "app.lang-src");
    save("app.lang-src");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(fs::read_symlink("app.lang-src"), "links/link");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status("real/app.lang-src")));
    expect_nothing_lost("real/app.lang-src");
    EXPECT_THAT(backup, StartsWith("links/../real/app.lang-src-2"));

    fs::create_symlink("real/new.lang-src", "new.lang-src"); // leads to nothing yet
    save("new.lang-src");
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(fs::is_symlink("new.lang-src"));
    EXPECT_TRUE(is_new_text("real/new.lang-src"));
}

TEST_F(SavePlace, LinksInACircleAreRefused)
{
    fs::create_symlink("b", "a");
    fs::create_symlink("a", "b");
    save("a");
    EXPECT_EQ(result, 1);
    EXPECT_THAT(printed, StartsWith("lang_write_file(1): error(" + std::to_string(ELOOP) +
                                    ") rename a to "));
    EXPECT_TRUE(fs::is_symlink("a") && fs::is_symlink("b"));
}

TEST_F(SavePlace, OtherNamesOfTheFileAreTold)
{
    write_file("app.lang-src", old_text);
    fs::create_hard_link("app.lang-src", "other");
    save("app.lang-src");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(said, "lang: app.lang-src has other names, which keep the old text\n");
    EXPECT_EQ(read_file("other"), old_text);
    expect_nothing_lost("app.lang-src");
    fs::remove(backup);
    save("app.lang-src");
    EXPECT_EQ(said, "");
}

// --- what is no file -----------------------------------------------------------------------------

TEST_F(SavePlace, WhatIsNoRegularFileIsNeitherMovedNorReplaced)
{
    fs::create_directory("folder");
    write_file("folder/inside", old_text);
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    fs::create_symlink("pipe", "link");
    std::vector<std::string> paths = {"folder", "pipe", "link"};
    int unnamed[2];
    ASSERT_EQ(pipe(unnamed), 0);
    paths.push_back("/proc/self/fd/" + std::to_string(unnamed[1]));
    if (mknod("null", S_IFCHR | 0666, makedev(1, 3)) == 0)
        paths.push_back("null"); // as root
    for (const std::string &path : paths) {
        const ino_t before = status_of(path).st_ino;
        save(path);
        EXPECT_EQ(result, 1) << path;
        EXPECT_THAT(printed, testing::MatchesRegex("lang_write_file\\(1\\): error\\([0-9]+\\) "
                                                   "rename " +
                                                   path + " to .*\\.bak\n"));
        EXPECT_EQ(said, "lang: " + path + " cannot be saved: " +
                            (path == "folder" ? std::strerror(EISDIR) : "it is no regular file") +
                            "\n");
        EXPECT_EQ(status_of(path).st_ino, before);
    }
    EXPECT_EQ(read_file("folder/inside"), old_text);
    EXPECT_FALSE(fs::exists("lang.tmp"));
    close(unnamed[0]);
    close(unnamed[1]);
}

// --- rights --------------------------------------------------------------------------------------

TEST_F(SavePlace, TheNewFileIsAsOpenToOthersAsTheOldOne)
{
    const zel_test::elsewhere other;
    for (const std::string &start : {std::string("a"), other.path() + "/a"}) {
        for (const mode_t mode : {0600U, 0664U, 0440U}) {
            const std::string path = start + std::to_string(mode); // no backup waits for another
            write_file(path, old_text);
            ASSERT_EQ(chmod(path.c_str(), mode), 0);
            ASSERT_TRUE(geteuid() != 0 || chown(path.c_str(), 1234, 4321) == 0);
            const struct stat before = status_of(path);
            save(path);
            EXPECT_EQ(result, 0);
            EXPECT_EQ(status_of(path).st_mode, before.st_mode);
            EXPECT_EQ(status_of(path).st_uid, before.st_uid);
            EXPECT_EQ(status_of(path).st_gid, before.st_gid);
        }
        save(start); // a new one is as open as any
        write_file("plain", "");
        EXPECT_EQ(status_of(start).st_mode, status_of("plain").st_mode);
    }
}

TEST_F(SavePlace, AGroupThatCannotBeKeptGivesNobodyMore)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the right to give files away";
    write_file("app.lang-src", old_text);
    ASSERT_EQ(chmod("app.lang-src", 0664), 0);
    ASSERT_EQ(chown("app.lang-src", 1234, 4321), 0);
    save_as_anybody("app.lang-src");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(status_of("app.lang-src").st_uid, nobody);
    EXPECT_EQ(status_of("app.lang-src").st_mode & 0777, 0644U);
    EXPECT_EQ(status_of(backup).st_uid, 1234U);
}

TEST_F(SavePlace, AttributesAreKept)
{
    write_file("app.lang-src", old_text);
    if (setxattr("app.lang-src", "user.note", "mine", 4, 0) != 0)
        GTEST_SKIP() << "needs a file system with extended attributes";
    save("app.lang-src");
    char value[8] = "";
    EXPECT_EQ(getxattr("app.lang-src", "user.note", value, sizeof value), 4);
    EXPECT_STREQ(value, "mine");
}

TEST_F(SavePlace, FoldersWithoutPermission)
{
    fs::create_directory("sub");
    const zel_test::elsewhere other;
    for (const std::string &folder : {other.path(), std::string("sub")}) {
        const std::string path = folder + "/app.lang-src";
        write_file(path, old_text);
        chmod(folder.c_str(), 0555);
        save_as_anybody(path);
        EXPECT_EQ(result, 1);
        EXPECT_THAT(printed, StartsWith("lang_write_file(1): error(" + std::to_string(EACCES) +
                                        ") rename " + path + " to " + path + "-2"));
        expect_nothing_lost(path);
    }

    save_as_anybody("sub/new.lang-src");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(printed, "lang_write_file(3): error(" + std::to_string(EACCES) +
                           ") rename lang.tmp to sub/new.lang-src\n");
    EXPECT_TRUE(is_new_text("lang.tmp"));
    fs::remove("lang.tmp");

    chmod("sub", 0); // nobody can see whether there is a file
    save_as_anybody("sub/app.lang-src");
    EXPECT_EQ(result, 1);
    EXPECT_THAT(printed, StartsWith("lang_write_file(1): error(" + std::to_string(EACCES) + ")"));
    EXPECT_FALSE(fs::exists("lang.tmp"));

    chmod("sub", 0777);
    write_file("here.lang-src", old_text);
    chmod(".", 0555);
    save_as_anybody("here.lang-src"); // neither its dated name nor lang.tmp can be made
    EXPECT_EQ(result, 1);
    EXPECT_THAT(printed, StartsWith("lang_write_file(1): error(" + std::to_string(EACCES) + ")"));
    save_as_anybody("sub/app.lang-src");
    EXPECT_EQ(result, -1);
    expect_nothing_lost("sub/app.lang-src");
    EXPECT_EQ(read_file("sub/app.lang-src"), old_text);
    chmod(".", 0777);
}

TEST_F(SavePlace, WhereNoFileCanBe)
{
    write_file("file", "");
    for (const auto &[path, error] : {std::pair(std::string("no/app.lang-src"), ENOENT),
                                      {"file/app.lang-src", ENOTDIR},
                                      {std::string(300, 'n'), ENAMETOOLONG}}) {
        save(path);
        EXPECT_EQ(result, 1);
        EXPECT_EQ(printed, "lang_write_file(3): error(" + std::to_string(error) +
                               ") rename lang.tmp to " + path + "\n");
        EXPECT_TRUE(is_new_text("lang.tmp"));
    }
}

TEST_F(SavePlace, ANameThatLeavesNoRoomForTheStamp)
{
    const std::string path(250, 'n');
    write_file(path, old_text);
    save(path);
    EXPECT_EQ(result, 1);
    EXPECT_THAT(printed, StartsWith("lang_write_file(1): error(" + std::to_string(ENAMETOOLONG) +
                                    ") rename " + path + " to " + path + "-2"));
    expect_nothing_lost(path);
}

// --- the temporary file's name -------------------------------------------------------------------

TEST_F(SavePlace, WhatBearsTheTemporaryNameIsRemovedOrTheSaveRefused)
{
    write_file("other", "precious");
    const auto prepare = [](int kind) {
        if (kind == 0)
            fs::create_symlink("other", "lang.tmp");
        else if (kind == 1)
            fs::create_hard_link("other", "lang.tmp");
        else if (kind == 2)
            fs::create_symlink("nowhere", "lang.tmp");
        else if (kind == 3)
            ASSERT_EQ(mkfifo("lang.tmp", 0666), 0);
        else if (kind == 4)
            fs::create_directory("lang.tmp");
        else
            fs::create_directories("lang.tmp/full");
    };
    for (int kind = 0; kind < 6; kind++) {
        SCOPED_TRACE(kind);
        fs::create_directory("sub");
        write_file("sub/app.lang-src", old_text);
        prepare(kind);
        save("sub/app.lang-src");
        EXPECT_EQ(result, kind < 4 ? 0 : -1);
        EXPECT_EQ(fs::exists("lang.tmp"), result != 0);
        expect_nothing_lost("sub/app.lang-src", true);
        EXPECT_EQ(read_file("other"), "precious");
        EXPECT_FALSE(fs::exists("nowhere"));
        fs::remove_all("sub");
        fs::remove_all("lang.tmp");
    }
}

// In a folder like /tmp the names of others cannot be removed.
TEST_F(SavePlace, SomebodyElsesFolderWithPreparedNames)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the right to give files away";
    write_file("other", "precious");
    chmod("other", 0666);
    write_file("app.lang-src", old_text);
    ASSERT_EQ(chown("app.lang-src", nobody, nobody), 0);
    for (const bool link : {false, true}) {
        if (link)
            fs::create_symlink("other", "lang.tmp");
        else
            ASSERT_EQ(mkfifo("lang.tmp", 0666), 0);
        chmod(".", 01777);
        save_as_anybody("app.lang-src");
        EXPECT_EQ(result, -1);
        EXPECT_EQ(printed, "ERROR open output file lang.tmp app.lang-src\n");
        EXPECT_EQ(read_file("app.lang-src"), old_text);
        EXPECT_EQ(read_file("other"), "precious");
        fs::remove("lang.tmp");
    }
    ASSERT_EQ(chown("app.lang-src", 0, 0), 0);
    chmod("app.lang-src", 0666); // may be written, but not replaced
    save_as_anybody("app.lang-src");
    EXPECT_EQ(result, 1);
    EXPECT_THAT(printed, StartsWith("lang_write_file(1): error(" + std::to_string(EPERM) + ")"));
    fs::remove("other");
    expect_nothing_lost("app.lang-src");

    write_file(".lang.lock", "");
    ASSERT_EQ(chown("app.lang-src", nobody, nobody), 0);
    save_as_anybody("app.lang-src");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(said, std::string("lang: app.lang-src was saved without waiting for others: ") +
                        std::strerror(EPERM) + "\n");
    expect_nothing_lost("app.lang-src", true);
}

TEST_F(SavePlace, ASourceMayBearTheTemporaryName)
{
    write_file("lang.tmp", old_text);
    save("lang.tmp");
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(is_new_text("lang.tmp"));
    look_beside("lang.tmp");
    EXPECT_THAT(backups, ElementsAre(old_text));
}

TEST_F(SavePlace, NothingIsWrittenOverATextThatMayNotBeReplaced)
{
    write_file("app.lang-src", old_text);
    zel::write_how how;
    how.now = std::time(nullptr);
    for (const int looks :
         {0, 1}) { // another program may write beside the turns until the last moment
        int left = looks;
        how.may_replace = [&left] { return left-- > 0; };
        EXPECT_EQ(zel::write_source("app.lang-src", source.get(), how).code,
                  zel::write_not_allowed);
        EXPECT_EQ(read_file("app.lang-src"), old_text);
        look_beside("app.lang-src");
        EXPECT_THAT(backups, ElementsAre());
    }
    how.may_replace = [] { return true; };
    const zel::write_answer written = zel::write_source("app.lang-src", source.get(), how);
    EXPECT_EQ(written.code, 0);
    EXPECT_TRUE(zel::is_named("app.lang-src", written.file));
    EXPECT_EQ(read_file(written.backup), old_text);
    look_beside("app.lang-src"); // and nothing else lies here
    EXPECT_THAT(backups, ElementsAre(old_text));
}

} // namespace
