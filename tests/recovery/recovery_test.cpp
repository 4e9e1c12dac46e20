// Recovery files, the state of a file, and locks: what needs no window.

#include "app/global.h"
#include "recovery/place.h"
#include "recovery/recovery-file.h"
#include "recovery/source-lock.h"
#include "source/lang-read.h"
#include "source/lang-write.h"
#include "test-support.h"
#include "working-dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace zel;
using testing::EndsWith;
using testing::HasSubstr;

namespace {

namespace fs = std::filesystem;

constexpr char notes[] = R"(version 1
mtime 1234
define file "e.lang" lang "english" 200 200 1
GROUP "menu" {
  ITEM "Open" { CTIME 100 USED YES LANG "english" { "Open " } COMMENT "english" { "a" "b" } }
  ITEM "Close" { CTIME 200 USED YES LANG "english" { "Close" } }
}
GROUP "empty" { }
GROUP "last" { ITEM "End" { CTIME 300 LANG "english" { } LANG "german" { } } }
)";

// HOME is a fresh folder.
class Recovery : public testing::Test {
protected:
    Recovery() : old_home_(getenv("HOME") == nullptr ? "" : getenv("HOME"))
    {
        set_home(dir.path());
        folder = recovery_folder();
        zel_test::write_file(source, notes);
    }
    ~Recovery() override { set_home(old_home_); }

    static void set_home(const std::string &home)
    {
        if (home.empty())
            unsetenv("HOME");
        else
            setenv("HOME", home.c_str(), 1);
        lang_home_free();
    }
    source_guard read() const { return read_source(source.c_str(), {}).source; }

    // Writes the state of the source into a file of that name, some items at a time.
    int write(const std::string &path, const LangSource *state, std::size_t items = 1000,
              std::int64_t now = 5000)
    {
        recovery_writer writer;
        writer.begin(path, source, state_of(source.c_str()), now, state, nullptr);
        while (writer.step(items))
            ;
        return writer.finish();
    }

    zel_test::temp_dir dir;
    const std::string source = dir / "notes.lang-src";
    std::string folder;

private:
    std::string old_home_;
};

mode_t mode_of(const std::string &path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

std::string written_by(const char *to, LangSource *source)
{
    fs::remove(to); // of which a backup would wait for a name of its own
    EXPECT_EQ(write_source(to, source, {nullptr, nullptr, 1, nullptr, true}).code, 0);
    return zel_test::read_file(to);
}

} // namespace

TEST_F(Recovery, IsASourceThatAnybodyCanReadBelowACommentAndPrivate)
{
    ASSERT_EQ(folder, dir / "Morvalix 6.00/recovery");
    const source_guard state = read();
    const std::string path = recovery_path(folder, source, 77);
    for (const std::size_t items : {1U, 2U, 3U, 1000U}) { // three pieces, two, one that is full
        ASSERT_EQ(write(path, state.get(), items), 0);
        // The writer's text, but for its trimming of texts, and nothing of the source has changed.
        EXPECT_EQ(state->mtime, 1234);
        const source_guard back = read_source(path.c_str(), {}).source;
        ASSERT_TRUE(back);
        EXPECT_EQ(written_by((dir / "a").c_str(), back.get()),
                  written_by((dir / "a").c_str(), read().get()));
        for (const char *kept : {"\"Open \"", "ITEM   \"Close\"", "ITEM   \"End\""})
            EXPECT_THAT(zel_test::read_file(path), HasSubstr(kept)) << items;
    }
    EXPECT_EQ(mode_of(folder), 0700U);
    EXPECT_EQ(mode_of(path), 0600U);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "nothing else is left";

    const auto found = find_recovery_files(folder, source);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(found[0].source.same_text(state_of(source.c_str())));
    EXPECT_EQ(found[0].source.nanoseconds, state_of(source.c_str()).nanoseconds);
    EXPECT_EQ(found[0].written, 5000);
    EXPECT_THAT(path, HasSubstr("-notes.77-"));
    EXPECT_THAT(zel_test::read_file(path), HasSubstr("source  \"" + source + "\"\n"));
    EXPECT_THAT(zel_test::read_file(path), EndsWith("/* EOF " + source + " */\n"));
}

TEST_F(Recovery, BelongsToOneSource)
{
    const source_guard state = read();
    ASSERT_EQ(write(recovery_path(folder, source, 1), state.get()), 0);
    EXPECT_TRUE(find_recovery_files(folder, dir / "other.lang-src").empty());
    // Names that would end the comment, or its line, or are of other letters.
    for (const char *name : {"a*/b", "a\"\nhash 12", "\xd0\xb9\xff", "*\\/"}) {
        const std::string other = dir / name;
        recovery_writer writer;
        const std::string path = recovery_path(folder, other, 1);
        // Also where it is not known what the source held.
        writer.begin(path, other, name[0] == 'a' ? state_of(source.c_str()) : file_state(), 1,
                     state.get(), nullptr);
        ASSERT_EQ(writer.finish(), 0) << name;
        EXPECT_EQ(find_recovery_files(folder, other).size(), 1U) << name;
        EXPECT_TRUE(read_source(path.c_str(), {}).source) << name;
    }
}

TEST_F(Recovery, ThatIsCutOrOfSomethingElseIsNotOffered)
{
    const source_guard state = read();
    const std::string path = recovery_path(folder, source, 1);
    ASSERT_EQ(write(path, state.get()), 0);
    const std::string whole = zel_test::read_file(path);
    for (std::size_t size = 0; size + 4 < whole.size(); size += whole.size() - size > 80 ? 11 : 1) {
        zel_test::write_file(path, whole.substr(0, size));
        ASSERT_TRUE(find_recovery_files(folder, source).empty()) << size;
    }
    zel_test::write_file(path, whole);
    EXPECT_EQ(find_recovery_files(folder, source).size(), 1U);
}

TEST_F(Recovery, AHomeThatMayNotBeWrittenHasNone)
{
    const bool is_root = geteuid() == 0; // whom no mode stops
    const std::string home = dir / "sealed";
    fs::permissions(dir.path(), fs::perms(0755));
    fs::create_directory(home);
    fs::permissions(home, fs::perms(0500));
    ASSERT_TRUE(!is_root || (chown(home.c_str(), 65534, 65534) == 0 && seteuid(65534) == 0));
    set_home(home);
    EXPECT_EQ(recovery_folder(), "");
    EXPECT_TRUE(fs::is_empty(home));
    ASSERT_TRUE(!is_root || seteuid(0) == 0);
}

TEST_F(Recovery, NoKeepsItOnceAndThenItGoes)
{
    const source_guard state = read();
    ASSERT_EQ(write(recovery_path(folder, source, 1), state.get(), 9, 100), 0);
    ASSERT_EQ(write(recovery_path(folder, source, 2), state.get(), 9, 200), 0);
    auto found = find_recovery_files(folder, source);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].written, 200) << "the younger first";
    EXPECT_EQ(decline(found[0]), 0);
    found = find_recovery_files(folder, source);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].written, 100) << "what was declined comes last";
    EXPECT_TRUE(found[1].declined);
    EXPECT_EQ(decline(found[1]), 0);
    EXPECT_EQ(find_recovery_files(folder, source).size(), 1U);
}

TEST_F(Recovery, AFailedWriteLeavesTheFileBefore)
{
    const source_guard state = read();
    const std::string path = recovery_path(folder, source, 1);
    ASSERT_EQ(write(path, state.get()), 0);
    const std::string whole = zel_test::read_file(path);
    {
        recovery_writer writer; // ended half way
        writer.begin(path, source, {}, 1, state.get(), nullptr);
        ASSERT_TRUE(writer.step(1));
    }
    EXPECT_EQ(zel_test::read_file(path), whole);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
    fs::create_directory(dir / "in the way");
    EXPECT_EQ(write(dir / "in the way", state.get()), EISDIR);
    EXPECT_EQ(write(dir / "nowhere/file", state.get()), ENOENT);
    EXPECT_NE(write("/dev/full", state.get()), 0);
}

TEST_F(Recovery, LeavesOutEntriesThatAreOnlyThereToBeTypedIn)
{
    const source_guard state = read();
    const auto *group = static_cast<edit_t *>(g_list_last(state->groups)->data);
    const auto *item = static_cast<item_t *>(group->items->data);
    const auto *german = static_cast<lang_entry_t *>(g_list_last(item->langs)->data);
    source_text text(state.get(), {"x", nullptr, nullptr, false,
                                   [&](const lang_entry_t *entry) { return entry == german; }});
    std::string out;
    while (text.append(out, 1))
        ;
    EXPECT_THAT(out, testing::Not(HasSubstr("LANG   \"german\"")));
    EXPECT_THAT(out, HasSubstr("LANG   \"english\" {\n    }\n"));
}

TEST_F(Recovery, AHomeThatCannotBeUsedGivesNoFolder)
{
    fs::remove_all(dir / "Morvalix 6.00");
    for (const std::string &home : {std::string(), std::string("relative")}) {
        set_home(home);
        EXPECT_EQ(recovery_folder(), "") << home;
        EXPECT_FALSE(fs::exists("relative"));
    }
    set_home(dir.path());
    zel_test::write_file(dir / "Morvalix 6.00", "a file");
    EXPECT_EQ(recovery_folder(), "");
    fs::remove(dir / "Morvalix 6.00");
    fs::create_directories(dir / "Morvalix 6.00/recovery");
    fs::permissions(dir / "Morvalix 6.00/recovery", fs::perms::all);
    EXPECT_EQ(mode_of(recovery_folder()), 0700U);
    fs::remove_all(dir / "Morvalix 6.00/recovery");
    fs::create_directory_symlink(dir.path(), dir / "Morvalix 6.00/recovery");
    EXPECT_EQ(recovery_folder(), "") << "nothing is written through a link";
}

TEST_F(Recovery, AnotherTextIsNoticedAndANewTimeIsNone)
{
    const auto before = zel_test::open_files();
    file_state known = state_of(source.c_str());
    EXPECT_EQ(zel_test::open_files(), before);
    EXPECT_EQ(known.hash.size(), 64U);
    EXPECT_EQ(news_of(source.c_str(), known), file_news::same);
    const auto later = fs::last_write_time(source) + std::chrono::hours(1);
    fs::last_write_time(source, later);
    EXPECT_EQ(news_of(source.c_str(), known), file_news::same);
    EXPECT_EQ(known.seconds, state_of(source.c_str()).seconds)
        << "it is read once, not at each look";
    std::string other = notes;
    other.back() = ' '; // of the same size
    zel_test::write_file(dir / "other", other);
    fs::last_write_time(dir / "other", later); // of the same time
    fs::rename(dir / "other", source);
    EXPECT_EQ(news_of(source.c_str(), known), file_news::changed);
    fs::remove(source);
    EXPECT_EQ(news_of(source.c_str(), known), file_news::gone);
}

TEST_F(Recovery, TheSecondLockNamesTheFirst)
{
    const std::string lock = folder + "/" + name_of_source(source) + ".lock";
    const auto before = zel_test::open_files();
    source_lock first;
    source_lock second;
    ASSERT_TRUE(first.take(folder, source));
    EXPECT_EQ(mode_of(lock), 0600U);
    EXPECT_FALSE(second.take(folder, source));
    char host[65] = "";
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    EXPECT_EQ(second.holder(), host + (", process " + std::to_string(getpid())));
    second.release();
    EXPECT_TRUE(fs::exists(lock)) << "it is not the second's to remove";
    first.release();
    EXPECT_FALSE(fs::exists(lock));
    // What a dead editor left, what is no lock file, what cannot be locked.
    zel_test::write_file(lock, "1 some host\n");
    EXPECT_TRUE(second.take(folder, source));
    second.release();
    second.release(); // once is enough, and the second time nothing is closed
    EXPECT_EQ(zel_test::open_files(), before);
    fs::create_directory(lock);
    EXPECT_TRUE(second.take(folder, source));
    EXPECT_TRUE(first.take("", source));
}
