// Language sources in a real repository.

#include "kit/menu-source.h"
#include "kit/run-kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using zel_test::kit;
using zel_test::kit_run;
using zel_test::menu_source;
using zel_test::read_file;
using zel_test::with;
using zel_test::write_file;

const std::string kit_command = "'" LANG_KIT "' ";

// Runs words of a shell; both streams come back in out.
kit_run sh(const std::string &words)
{
    return kit("--version >/dev/null; { " + words + "; } 2>&1");
}

class Git : public testing::Test {
protected:
    Git()
    {
        // Nothing of the user's or the machine's set-up; file names in the messages are English.
        setenv("HOME", home.path().c_str(), 1);
        setenv("GIT_CONFIG_NOSYSTEM", "1", 1);
        setenv("LC_ALL", "C.UTF-8", 1);
        for (const char *name : {"XDG_CONFIG_HOME", "GIT_DIR", "GIT_INDEX_FILE", "GIT_WORK_TREE"})
            unsetenv(name);
        write_file(home / ".gitconfig",
                   "[user]\nname = a\nemail = a@b\n[init]\ndefaultBranch = main\n");
        git("init");
    }

    static std::string git(const std::string &words, int status = 0)
    {
        const kit_run run = sh("git " + words);
        EXPECT_EQ(run.status, status) << "git " << words << "\n" << run.out;
        return run.out;
    }
    static void commit(const std::string &message)
    {
        git("add -A");
        git("commit -m " + message);
    }
    static void change(const std::string &file, const std::string &what, const std::string &by)
    {
        write_file(file, with(read_file(file), what, by));
    }

    zel_test::temp_dir home;
    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_F(Git, SaysWhatItDidAndDoesItOnce)
{
    write_file(".gitignore", "*.o"); // without a line end
    const std::string untouched = read_file(".git/config");
    const std::string announced = kit("git --dry-run").out;
    EXPECT_EQ(read_file(".git/config") + read_file(".gitignore"), untouched + "*.o");
    EXPECT_FALSE(fs::exists(".gitattributes"));
    const auto run = kit("git");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, testing::StartsWith(announced + "now commit"));
    EXPECT_THAT(run.out, HasSubstr("git config merge.lang-src.driver: lang-kit merge "
                                   "--driver=%P %O %A %B\n"));
    EXPECT_EQ(read_file(".gitattributes"), "*.lang-src diff=lang-src merge=lang-src\n");
    const std::string ignored = read_file(".gitignore");
    EXPECT_EQ(ignored,
              "*.o\n*.lang-src-*.bak\n*.lang-src.????????\nlang.tmp\n.lang.lock\nlang.lang-ini*\n");
    const std::string config = read_file(".git/config");
    const auto again = kit("git");
    EXPECT_EQ(again.out, "nothing to do\n");
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(read_file(".git/config"), config);
    EXPECT_EQ(read_file(".gitignore"), ignored);
    // From anywhere in the tree; what is lacking again is done again. Outside of the path the
    // program has its whole name.
    fs::create_directories("deep/er");
    git("config --unset diff.lang-src.textconv");
    EXPECT_EQ(sh("cd deep/er && PATH=/usr/bin:/bin " + kit_command + "git").out,
              "git config merge.lang-src.driver: " + kit_command +
                  "merge --driver=%P %O %A %B\ngit config diff.lang-src.textconv: " + kit_command +
                  "show --or-file --\n");
    EXPECT_FALSE(fs::exists("deep/er/.gitattributes"));
}

TEST_F(Git, OnlyInARepositoryAndOnlyWithGit)
{
    const auto nowhere =
        kit("--version >/dev/null; cd '" + home.path() + "'; " + kit_command + "git");
    EXPECT_EQ(nowhere.status, 2);
    EXPECT_EQ(nowhere.err, "lang-kit git: this is no working tree of a repository\n");
    EXPECT_EQ(sh("git init --bare b && cd b && " + kit_command + "git").status, 2);
    const auto missing = kit("--version >/dev/null; PATH=/nowhere; " + kit_command + "git");
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.err, "lang-kit git: git is not installed\n");
    EXPECT_EQ(kit("git here").status, 2);
}

TEST_F(Git, WaitsForNoPipe)
{
    for (const std::string name : {".gitattributes", ".gitignore", ".git/hooks/pre-commit"}) {
        ASSERT_EQ(mkfifo(name.c_str(), 0666), 0);
        const auto run = kit("--version >/dev/null; timeout 20 " + kit_command + "git --hook");
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, "lang-kit git: " + name + ": it is no regular file\n");
        fs::remove(name);
    }
}

TEST_F(Git, GoesNowhereOutsideOfTheRepository)
{
    write_file(home / "attributes", "*.c text\n");
    fs::create_symlink(home / "attributes", ".gitattributes");
    const auto linked = kit("git");
    EXPECT_EQ(linked.status, 2);
    EXPECT_EQ(linked.err,
              "lang-kit git: .gitattributes: it is a link, which git does not follow\n");
    EXPECT_EQ(read_file(home / "attributes"), "*.c text\n");
    fs::remove(".gitattributes");
    git("config --global core.hooksPath " + home.path() + "/hooks");
    const auto shared = kit("git --hook");
    EXPECT_EQ(shared.status, 1);
    EXPECT_THAT(shared.err, HasSubstr("hooks/pre-commit is outside of the repository"));
    EXPECT_FALSE(fs::exists(home / "hooks"));
    // A name that begins with a sign of options is one.
    write_file("-x.lang-src", menu_source);
    commit("begin");
    change("-x.lang-src", "Sichern", "Speichern");
    EXPECT_THAT(git("diff"), HasSubstr("+  german \"Speichern"));
}

TEST_F(Git, LeavesWhatOthersSetUp)
{
    write_file(".gitattributes", "*.lang-src merge=union\n");
    write_file(".git/hooks/pre-commit", "#!/bin/sh\necho mine\n");
    const auto run = kit("git --hook");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("*.lang-src has merge=union already, which stays\n"));
    EXPECT_THAT(run.err, HasSubstr(".git/hooks/pre-commit is there already and stays"));
    EXPECT_EQ(read_file(".gitattributes"), "*.lang-src merge=union\n*.lang-src diff=lang-src\n");
    EXPECT_EQ(read_file(".git/hooks/pre-commit"), "#!/bin/sh\necho mine\n");
}

// The code has a head that two people change in two places, so that every request moves on both
// branches and the code itself merges.
std::string code()
{
    std::string text;
    for (int line = 0; line < 20; ++line)
        text += "// " + std::to_string(line) + "\n";
    text += "#include \"lang.h\"\nvoid f(void)\n{\n";
    for (const char *item : {"_Open", "_Save", "_Close", "_Quit"})
        text += "    show(lang_get_string(\"menu\", \"" + std::string(item) + "\"));\n";
    return text + "}\n";
}

class GitMergeSlow : public Git {
protected:
    GitMergeSlow()
    {
        kit("start --language german --language french app.lang-src");
        write_file("a.c", code());
        check();
        kit("git");
        commit("begin");
    }
    static void check()
    {
        EXPECT_EQ(std::system("'" LANG_PROGRAM "' check app.lang-src a.c >/dev/null"), 0);
    }
    // A branch that moves the code and translates an item.
    static void branch(const std::string &name, const std::string &code_line, std::size_t lines,
                       const std::string &item, const std::string &language,
                       const std::string &text)
    {
        git("checkout -b " + name + " main");
        change("a.c", code_line, code_line + std::string(lines, '\n'));
        check();
        const std::string english = "    LANG   \"english\" {\n        \"" + item + "\"\n    }\n";
        change("app.lang-src", english,
               english + "    LANG   \"" + language + "\" {\n        \"" + text + "\"\n    }\n");
        commit(name);
    }
};

TEST_F(GitMergeSlow, DifferentItemsAfterChecksThatMovedEverything)
{
    branch("german", "// 3\n", 2, "_Save", "german", "Sichern");
    branch("french", "// 15\n", 3, "_Quit", "french", "Quitter");
    // Merged as a text the places alone are a conflict.
    write_file(".git/info/attributes", "*.lang-src merge\n");
    EXPECT_THAT(git("merge german", 1), HasSubstr("CONFLICT (content)"));
    git("merge --abort");
    fs::remove(".git/info/attributes");
    const std::string merged = git("merge german");
    EXPECT_THAT(merged, Not(HasSubstr("conflict")));
    EXPECT_EQ(git("status --porcelain --ignored=no"), "");
    const std::string before = read_file("app.lang-src");
    EXPECT_THAT(before, HasSubstr("\n/* EOF app.lang-src */\n"));
    check();
    EXPECT_EQ(kit("diff app.lang-src app.lang-src").status, 0);
    const std::string shown = kit("show app.lang-src").out;
    EXPECT_THAT(
        shown,
        HasSubstr(
            "ITEM menu:_Save\n  typ 1\n  used yes\n  english \"_Save\"\n  german \"Sichern\"\n"));
    EXPECT_THAT(
        shown,
        HasSubstr(
            "ITEM menu:_Quit\n  typ 1\n  used yes\n  english \"_Quit\"\n  french \"Quitter\"\n"));
    // No backup and no temporary file is left beside what a check leaves.
    git("clean -fdX");
    for (const auto &entry : fs::directory_iterator("."))
        EXPECT_THAT(entry.path().filename().string(),
                    testing::AnyOf(".git", ".gitattributes", ".gitignore", "a.c", "app.lang-src"));
}

TEST_F(GitMergeSlow, DifferencesAreReadable)
{
    branch("german", "// 3\n", 2, "_Save", "german", "Sichern");
    const std::string shown = git("diff main german -- app.lang-src");
    EXPECT_THAT(shown, HasSubstr("+  german \"Sichern\"\n"));
    EXPECT_THAT(shown, Not(HasSubstr("mtime")));
    EXPECT_THAT(shown, Not(HasSubstr("a.c")));
    // The item is named above a piece that does not hold its line: of the text, and of the source.
    change(
        "app.lang-src", "        \"Sichern\"\n",
        "        \"a\\n\"\n        \"b\\n\"\n        \"c\\n\"\n        \"d\\n\"\n        \"e\"\n");
    commit("lines");
    change("app.lang-src", "\"e\"", "\"E\"");
    EXPECT_THAT(git("diff"), HasSubstr("@@ ITEM menu:_Save\n"));
    EXPECT_THAT(git("diff --no-textconv"),
                HasSubstr("@@ ITEM   \"_Save\"  { /* group  =  \"menu\" */\n"));
    write_file("app.lang-src", "<<<<<<< no source\n");
    EXPECT_THAT(git("diff"), HasSubstr("+<<<<<<< no source\n"));
}

TEST_F(Git, TheHookJudgesWhatIsCommitted)
{
    const auto run = kit("git --hook");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr(".git/hooks/pre-commit: lang-kit lint before every commit\n"));
    EXPECT_EQ(kit("git --hook").out, "nothing to do\n");
    fs::create_directory("a b");
    const std::string good = menu_source;
    const std::string bad = with(good, "\"_About\" }", "\"%d\" } LANG \"german\" { \"%s\" }");
    write_file("a b/app.lang-src", bad);
    git("add -A");
    write_file("a b/app.lang-src", good); // beside the index, which holds the bad one
    EXPECT_THAT(git("commit -m bad", 1),
                testing::AllOf(HasSubstr("./a b/app.lang-src:"), Not(HasSubstr(" info: "))));
    commit("good");
    // A commit without a source is none of its business.
    write_file("b.c", "");
    commit("code");
    EXPECT_EQ(git("log --oneline --format=%s"), "code\ngood\n");
    // Where the project names its code, the source must have what the code asks for.
    write_file("a b/lang-kit.ini", "[project]\ncode=.\n");
    write_file("a b/c.c", "lang_get_string(\"menu\", \"Gone\");\n");
    git("add -A");
    EXPECT_THAT(git("commit -m new", 1), HasSubstr("1 new: menu:Gone (./a b/./c.c:1)"));
    write_file("a b/c.c", "");
    commit("code");
    // A hook of an older version is renewed.
    write_file(".git/hooks/pre-commit", "#!/bin/sh\n# lang-kit git --hook: old\nexit 1\n");
    EXPECT_THAT(kit("git --hook").out, HasSubstr("pre-commit: lang-kit lint"));
    struct stat status {};
    EXPECT_EQ(stat(".git/hooks/pre-commit", &status), 0);
    EXPECT_EQ(status.st_mode & 0111, 0111U);
}

} // namespace
