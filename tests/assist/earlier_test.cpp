// What a text was when it was translated, from the backups of its source.

#include "assist/earlier.h"

#include "source/lang-read.h"
#include "working-dir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <glib.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace zel_test;
using zel::assist::earlier_limits;
using zel::assist::earlier_texts;

// A source with one item: "ENGLISH|GERMAN", with " ready" behind it.
std::string file_with(const std::string &item)
{
    const std::size_t bar = item.find('|');
    const std::size_t end = item.find(" ready");
    const bool is_ready = end != item.npos;
    return "GROUP \"g\" { ITEM \"name\" { USED YES READY " + std::string(is_ready ? "1" : "0") +
           " LANG \"english\" { \"" + item.substr(0, bar) + "\" } LANG \"german\" { \"" +
           item.substr(bar + 1, is_ready ? end - bar - 1 : end) + "\" } } }\n";
}

class Earlier : public working_dir {
protected:
    void put(const std::string &item) { write_file("a.lang-src", file_with(item)); }
    static void keep(const std::string &date, const std::string &text)
    {
        write_file("a.lang-src-2024-" + date + "-00-00.bak", text);
    }
    // What the item's text was; the number of backups and versions and a colon before it.
    static std::string was(earlier_limits limits = {}, const char *path = "a.lang-src",
                           std::size_t german = 1)
    {
        earlier_texts texts(limits);
        const source_guard source = zel::read_source(path, {}).source;
        zel::assist::neighbour_texts::query wanted{path, "english", {}};
        wanted.langs[german] = "german";
        texts.begin(wanted, *source);
        int turns = 0;
        for (; texts.step({}) && turns < 10000; ++turns)
            if (turns > 100) // git may be at work
                usleep(1000);
        EXPECT_LT(turns, 10000) << "no end";
        const auto *group = static_cast<const edit_t *>(source->groups->data);
        const auto *item = static_cast<const item_t *>(group->items->data);
        EXPECT_EQ(texts.of(*group, *item, 1 - german), "") << "no language is shown there";
        return std::to_string(texts.files()) + ":" + texts.of(*group, *item, german);
    }
};

TEST_F(Earlier, TheTextOfTheOldestBackupThatHasTheTranslation)
{
    struct {
        const char *now;
        std::vector<std::string> before; // the newest first
        const char *was;
        const char *why;
    } const rows[] = {
        {"B|t", {"A|t"}, "1:A", "changed since"},
        {"B|t", {"B|t", "A|t"}, "2:A", "one save later"},
        {"B|t", {"C|t", "A|t", "A|u"}, "3:A", "changed twice"},
        {"B|t", {"B|t", "A|u", "A|t"}, "3:", "translated after the change"},
        {"A|t", {"B|t", "A|t"}, "2:", "changed back"},
        {"B|t ready", {"B|t", "A|t ready"}, "2:", "somebody has looked at it since"},
        {"B|t ready", {"B|t ready", "A|t ready"}, "2:A", "nobody has"},
        {"B|", {"A|", "A|t"}, "2:", "not translated"},
        {"B|t", {"A|t", "|t"}, "2:A", "the item's name is no text"},
        {"B|t", {"A|t\\n"}, "1:A", "the end of the last line is no difference"},
    };
    for (const auto &row : rows) {
        put(row.now);
        int day = 20;
        for (const std::string &item : row.before)
            keep("05-" + std::to_string(day--) + "-10", file_with(item));
        const auto before = zel_test::open_files();
        EXPECT_EQ(was(), row.was) << row.why;
        EXPECT_EQ(was({}, "a.lang-src", 0), row.was) << row.why;
        EXPECT_EQ(zel_test::open_files(), before);
        for (; day < 20; ++day)
            std::filesystem::remove("a.lang-src-2024-05-" + std::to_string(day + 1) +
                                    "-10-00-00.bak");
    }
}

TEST_F(Earlier, TheNewestAndOneOfEachDayAreReadAndWhatIsNoBackupIsNot)
{
    put("B|t");
    keep("05-03-11", file_with("B|t"));
    keep("05-03-10", file_with("A|u"));
    keep("05-02-11", "nonsense {");
    keep("05-01-11", "DEFAULT LANG \"german\"\n" + file_with("X|t"));
    keep("04-01-11", file_with("A|t"));
    for (const char *name : {"a.lang-src-2025-01-01-10-00-00.bak.kept", "a.lang-src-new.bak",
                             "b.lang-src-2025-01-01-10-00-00.bak"})
        write_file(name, file_with("Z|t"));
    EXPECT_EQ(was({1, 9}), "4:A");
    EXPECT_EQ(was({2, 9}), "5:");
    EXPECT_EQ(was({1, 3}), "3:");
    const std::size_t size = file_with("B|t").size();
    EXPECT_EQ(was({1, 9, size * 9, size - 1}), "1:") << "of another size";
}

constexpr const char *kept_path = "a b/-a.lang-src";

// The same beside a repository, of which a backup tells nothing.
class EarlierInGitSlow : public Earlier {
protected:
    void SetUp() override
    {
        std::filesystem::create_directory("a b");
        if (!git("init"))
            zel_test::missing("git");
    }
    static bool run(const std::string &command)
    {
        return std::system(("cd 'a b' && exec >/dev/null 2>&1; " + command).c_str()) == 0;
    }
    static bool git(const std::string &words)
    {
        return run("git -c user.name=a -c user.email=a -c commit.gpgSign=no " + words);
    }
    static void commit(const std::string &item)
    {
        write_file(kept_path, file_with(item));
        EXPECT_TRUE(git("add -A") && git("commit --allow-empty -m one"));
    }
    static std::string was(earlier_limits limits = {}) { return Earlier::was(limits, kept_path); }
    static bool has_child()
    {
        siginfo_t ignored;
        return waitid(P_ALL, 0, &ignored, WEXITED | WNOHANG | WNOWAIT) == 0;
    }
};

TEST_F(EarlierInGitSlow, TheVersionsTellWhatTheBackupsDoNot)
{
    struct {
        const char *now;
        const char *backup;                 // or null
        std::vector<std::string> committed; // the oldest first
        const char *was;
        const char *why;
    } const rows[] = {
        {"B|t", nullptr, {}, "0:", "nothing is committed"},
        {"B|t", nullptr, {"A|t"}, "1:A", "changed since"},
        {"B|t", nullptr, {"A|u", "A|t", "B|t"}, "3:A", "and committed"},
        {"B|t", "B|t", {"A|t"}, "2:A", "the backup is too young"},
        {"B|t", "C|t", {"A|t"}, "2:C", "the backup tells"},
        {"B|t", "B|u", {"A|t"}, "2:", "translated since the backup"},
    };
    for (const auto &row : rows) {
        std::filesystem::remove_all("a b");
        SetUp();
        for (const std::string &item : row.committed)
            commit(item);
        write_file(kept_path, file_with(row.now));
        if (row.backup != nullptr)
            write_file(std::string(kept_path) + "-2024-05-01-10-00-00.bak", file_with(row.backup));
        EXPECT_EQ(was(), row.was) << row.why;
    }
    earlier_limits fewer;
    fewer.bytes_of_one = file_with("B|t").size() - 1;
    EXPECT_EQ(was(fewer), "0:") << "of another size";
    {
        earlier_texts texts;
        const source_guard source = zel::read_source(kept_path, {}).source;
        texts.begin({kept_path, "english", {"", "german"}}, *source);
        while (!has_child())
            ASSERT_TRUE(texts.step({}));
    }
    for (int turns = 0; has_child() && turns < 1000; ++turns) {
        g_main_context_iteration(nullptr, FALSE);
        usleep(1000);
    }
    EXPECT_FALSE(has_child()) << "git is left";
}

// Somebody else's settings name programs wherever git would run one; a lost version would be
// fetched by another.
TEST_F(EarlierInGitSlow, NothingOfARepositoryIsRun)
{
    commit("A|t");
    commit("C|t");
    commit("B|t");
    EXPECT_TRUE(run("rm .git/objects/$(git rev-parse HEAD^:./-a.lang-src | sed 's|^..|&/|')"));
    const std::string touch = "touch '" + std::filesystem::current_path().string() + "/ran'";
    for (const char *key : {"core.fsmonitor", "core.pager", "gpg.program", "filter.x.smudge",
                            "diff.x.textconv", "core.sshCommand", "alias.rev-list"})
        EXPECT_TRUE(git(std::string("config ") + key + " \"" + touch + "\""));
    const std::string fetch =
        "ext::sh -c touch% " + std::filesystem::current_path().string() + "/ran";
    EXPECT_TRUE(git("config remote.o.url '" + fetch + "'") &&
                git("config remote.o.promisor true") && git("config protocol.ext.allow always") &&
                git("config core.repositoryFormatVersion 1") &&
                git("config extensions.partialClone o"));
    write_file("a b/.gitattributes", "* filter=x diff=x\n");
    for (const char *program : {"git", "a b/git"}) {
        write_file(program, "#!/bin/sh\n" + touch + "\n");
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }
    const std::string path = std::getenv("PATH");
    setenv("PATH", (":.:" + path).c_str(), 1);
    setenv("GIT_DIR", "/nowhere", 1);
    EXPECT_EQ(was(), "2:A") << "a version that is lost is passed over";
    unsetenv("GIT_DIR");
    setenv("GIT_TEST_ASSUME_DIFFERENT_OWNER", "1", 1);
    EXPECT_EQ(was(), "0:") << "git does not trust it";
    unsetenv("GIT_TEST_ASSUME_DIFFERENT_OWNER");
    setenv("PATH", "", 1);
    EXPECT_EQ(was(), "0:") << "there is no git";
    setenv("PATH", path.c_str(), 1);
    EXPECT_FALSE(std::filesystem::exists("ran"));
}

} // namespace
