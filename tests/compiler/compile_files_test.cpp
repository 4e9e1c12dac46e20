// Where compiled files go, and what is there while they are written, after something failed, and
// after the process was killed: each is the old file or the new one, whole.

#include "compiler/split.h"

#include "compiler/excel.h"

#include "failing-calls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <map>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <vector>

#include "source/lang-read.h"
#include "working-dir.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using zel_test::armed;
using zel_test::read_file;
using zel_test::write_file;
namespace fs = std::filesystem;

const std::string two_languages =
    "define file \"en\" lang \"english\" 1 2 1 file \"de\" lang \"deutsch\" 1 2 0 "
    "group \"g\" { item \"i\" { used yes lang \"english\" { \"Yes\" } lang \"deutsch\" { \"Ja\" } "
    "} }";

class Compiled : public zel_test::working_dir {
protected:
    static source_guard read(const std::string &text)
    {
        write_file("app.lang-src", text);
        return source_guard(lang_read_file("app.lang-src"));
    }
    template <class Begin, class End>
    void compile(LangSource *of, const char *destination, Begin begin, End end)
    {
        printed = zel_test::capture_stdout([&] {
            said = zel_test::capture_stderr([&] {
                begin();
                answer = zel::compile_source(of, destination, {false, 7});
                end();
            });
        });
    }
    void compile(LangSource *of, const char *destination = nullptr)
    {
        compile(
            of, destination, [] {}, [] {});
    }

    // The texts of all files below a folder.
    static std::map<std::string, std::string> texts(const std::string &folder)
    {
        std::map<std::string, std::string> found;
        for (const auto &file : fs::recursive_directory_iterator(folder))
            if (!file.is_directory())
                found[fs::relative(file.path(), folder)] = read_file(file.path());
        return found;
    }

    // Old files of both languages where the compiler puts new ones, and how those will read.
    void prepare()
    {
        fs::remove_all("out");
        for (const char *path : paths) {
            fs::create_directories(fs::path("out") / fs::path(path).parent_path());
            write_file("out/" + std::string(path), "old");
        }
    }
    void learn_new_texts(LangSource *of)
    {
        prepare();
        compile(of, "out");
        ASSERT_EQ(answer.code, 0);
        new_texts = texts("out");
        ASSERT_EQ(new_texts.size(), 2U);
    }
    void expect_old_or_new(bool may_stay)
    {
        std::map<std::string, std::string> found = texts("out");
        std::size_t news = 0;
        for (const char *path : paths) {
            news += found[path] == new_texts[path] ? 1 : 0;
            EXPECT_TRUE(found[path] == new_texts[path] || found[path] == "old") << found[path];
        }
        EXPECT_TRUE(may_stay || found.size() == 2) << "debris";
        all_new = news == 2;
    }

    static constexpr const char *paths[] = {"english-edit/en.lang", "deutsch-edit/de.lang"};
    std::map<std::string, std::string> new_texts;
    bool all_new = false;
    zel::compile_answer answer;
    std::string printed;
    std::string said;
};

// --- failures ------------------------------------------------------------------------------------

using CompiledSlow = Compiled;

TEST_F(CompiledSlow, EveryCallFailsInTurn)
{
    constexpr zel_test::call_that_fails calls[] = {
        {"open", EMFILE},   {"write", ENOSPC}, {"close", EDQUOT}, {"rename", EACCES},
        {"rename", ENOSPC}, {"fchmod", EPERM}, {"lstat", EIO},    {"unlink", EIO}};
    const source_guard source = read(two_languages);
    learn_new_texts(source.get());
    for (const bool lasting : {false, true}) {
        for (const zel_test::call_that_fails &call : calls) {
            bool struck = true;
            for (int nth = 1; struck && nth < 60; nth++) {
                SCOPED_TRACE(std::string(call.name) + " " + std::to_string(nth) +
                             (lasting ? " and later ones fail" : " fails"));
                prepare();
                compile(
                    source.get(), "out",
                    [&] { armed = {call.name, nth, call.error, lasting, false, {}}; },
                    [] { armed.call = ""; });
                struck = armed.struck;
                const bool no_look = std::strcmp(call.name, "lstat") == 0;
                expect_old_or_new(no_look || std::strcmp(call.name, "unlink") == 0);
                EXPECT_EQ(answer.code == 0, all_new);
                EXPECT_EQ(answer.failed.empty(), answer.code == 0);
                EXPECT_EQ(printed.find("ERROR ") == std::string::npos, answer.code == 0);
                const bool not_written = printed.find("ERROR write") != std::string::npos;
                EXPECT_TRUE(!said.empty() || !not_written);
            }
            EXPECT_FALSE(struck) << call.name;
        }
    }
}

// Runs the function in a process that mounts what only it sees.
template <class Function>
void with_own_mounts(Function function)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        if (unshare(CLONE_NEWNS) != 0 ||
            mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            _exit(77);
        function();
        _exit(testing::Test::HasFailure() ? 1 : 40);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 77)
        GTEST_SKIP() << "needs the right to mount a file system";
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 40);
}

TEST_F(Compiled, AFullDiskLeavesTheOldFileAndHindersNoOther)
{
    const source_guard source = read("define file \"a\" lang \"1\" 1 2 file \"b\" lang \"2\" group "
                                     "\"g\" { item \"i\" { used yes lang \"1\" { \"" +
                                     std::string(90000, 'x') + "\" } lang \"2\" { \"y\" } } }");
    with_own_mounts([&] {
        fs::create_directory("small");
        ASSERT_EQ(mount("none", "small", "tmpfs", 0, "size=64k"), 0);
        for (const char *folder : {"small/1-edit", "small/2-edit"})
            fs::create_directory(folder);
        write_file("small/1-edit/a.lang", "old a");
        write_file("small/2-edit/b.lang", "old b");
        compile(source.get(), "small");
        EXPECT_EQ(answer.code, 1);
        EXPECT_EQ(answer.error, ENOSPC);
        EXPECT_EQ(said,
                  "lang: " + answer.failed + " cannot be written: " + std::strerror(ENOSPC) + "\n");
        EXPECT_EQ(printed, "READY open lang file ->a<-\nREADY open lang file ->b<-\n"
                           "ERROR write lang file ->a<-\n");
        EXPECT_EQ(texts("small").size(), 2U);
        EXPECT_EQ(read_file("small/1-edit/a.lang"), "old a");
        EXPECT_THAT(read_file("small/2-edit/b.lang"), EndsWith("{\n    \"y\"    }\n"));
    });
}

// A folder that takes no names, one in which nobody takes a colleague's away, a file that is
// mounted.
TEST_F(Compiled, WhereNoFileCanBePutTheOldOneIsWritten)
{
    constexpr uid_t me = 1234;
    constexpr uid_t colleague = 4321;
    constexpr const char *outputs[] = {"en.lang", "de.lang", "keys.slk"};
    const source_guard source = read(two_languages);
    const auto write_all = [&](const char *where, int expected) {
        for (const char *name : outputs)
            write_file(name, std::string(1000, 'x'));
        ASSERT_EQ(seteuid(me), 0);
        compile(source.get());
        const std::string excel = zel_test::capture_stdout([&] {
            zel_test::capture_stderr([&] {
                EXPECT_EQ(to_excel_unicode_text(source.get(), "keys.slk", "", ""), expected);
            });
        });
        ASSERT_EQ(seteuid(0), 0);
        EXPECT_EQ(answer.code, expected) << where << said;
        EXPECT_EQ(excel.find("ERROR") == excel.npos, expected == 0) << where;
        const char *ends[] = {"\"Yes\"    }\n", "\"Ja\"    }\n", "\"g.i\"\t\"g.i\"\t\r"};
        for (int n = 0; n < 3; ++n)
            EXPECT_THAT(read_file(outputs[n]), EndsWith(expected == 0 ? ends[n] : "xxx")) << where;
        EXPECT_EQ(texts(".").size(), 4U) << where;
    };
    with_own_mounts([&] {
        chmod(".", 01777);
        for (const char *name : outputs) {
            write_file(name, "");
            chmod(name, 0666);
            ASSERT_EQ(chown(name, colleague, 0), 0);
        }
        write_all("sticky", 0);
        chmod(".", 0555);
        write_all("closed", 0);
        for (const char *name : outputs)
            ASSERT_EQ(mount(name, name, "", MS_BIND, nullptr), 0);
        chmod(".", 0777);
        write_all("mounted", 0);
        const zel_test::temp_dir elsewhere; // whoever writes here would write there
        for (const char *name : outputs) {
            umount(name);
            ASSERT_EQ(link(name, (elsewhere / name).c_str()), 0);
        }
        chmod(".", 0555);
        write_all("of two names", 1);
    });
}

TEST_F(Compiled, WhatMayNotBeWrittenIsNotReplaced)
{
    const source_guard source = read("define file \"f\" lang \"e\" 1 2");
    fs::permissions(".", fs::perms::all);
    const auto refused = [&](const char *what) {
        compile(source.get());
        EXPECT_EQ(answer.code, 1) << what;
        EXPECT_EQ(printed, "ERROR open lang file ->f<-\n");
        EXPECT_EQ(said, "");
    };
    ASSERT_EQ(mkfifo("f.lang", 0666), 0);
    refused("a pipe");
    EXPECT_TRUE(fs::is_fifo("f.lang"));
    fs::remove("f.lang");
    write_file("f.lang", "old");
    chmod("f.lang", 0444);
    const bool is_root = geteuid() == 0;
    ASSERT_TRUE(!is_root || seteuid(65534) == 0);
    refused("a file without the right to write it");
    ASSERT_TRUE(!is_root || seteuid(0) == 0);
    EXPECT_EQ(read_file("f.lang"), "old");
}

// --- meanwhile -----------------------------------------------------------------------------------

TEST_F(CompiledSlow, KilledAtEverySystemCall)
{
    const source_guard source = read(two_languages);
    learn_new_texts(source.get());
    zel_test::death death = zel_test::death::killed;
    int stop = 0;
    for (; death == zel_test::death::killed; ++stop) {
        SCOPED_TRACE(stop);
        prepare();
        death = zel_test::kill_at(stop, [&] {
            static_cast<void>(std::freopen("/dev/null", "w", stdout));
            zel::compile_source(source.get(), "out", {false, 7});
        });
        if (death == zel_test::death::not_allowed)
            GTEST_SKIP() << "needs the right to trace a process";
        expect_old_or_new(true);
        compile(source.get(), "out");
        expect_old_or_new(false);
        EXPECT_TRUE(all_new);
    }
    EXPECT_GT(stop, 40);
}

TEST_F(Compiled, WhatAnotherOneIsWritingStays)
{
    const source_guard source = read("define file \"f\" lang \"e\"");
    write_file("f.lang.tmp", "his");
    const int his = open("f.lang.tmp", O_RDONLY);
    flock(his, LOCK_EX);
    compile(source.get());
    close(his);
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(read_file("f.lang.tmp"), "his");
    EXPECT_EQ(texts(".").size(), 3U); // and the source and the new file
}

TEST_F(CompiledSlow, WhoReadsMeanwhileSeesWholeFiles)
{
    const source_guard source = read(two_languages);
    learn_new_texts(source.get());
    prepare();
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        static_cast<void>(std::freopen("/dev/null", "w", stdout));
        for (int n = 0; n < 300; ++n)
            zel::compile_source(source.get(), "out", {false, 7});
        _exit(0);
    }
    int status = 0;
    int looks = 0;
    for (; waitpid(child, &status, WNOHANG) == 0 && !HasFailure(); ++looks) {
        for (const char *path : paths) {
            const std::string text = read_file("out/" + std::string(path));
            EXPECT_TRUE(text == "old" || text == new_texts[path]) << text;
        }
    }
    EXPECT_GT(looks, 10);
    if (HasFailure())
        kill(child, SIGKILL);
}

// --- places --------------------------------------------------------------------------------------

TEST_F(Compiled, OfTwoDefinitionsOfOnePathTheLastWinsWhole)
{
    const std::string second(300000, 's'); // it is written before the file's end
    const source_guard both = read(
        "define file \"x\" lang \"a\" 1 2 file \"x.lang\" lang \"b\" group \"g\" { item \"i\" { "
        "used yes lang \"a\" { \"first\" } lang \"b\" { \"" +
        second + "\" } } }");
    compile(both.get());
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(printed, "READY open lang file ->x<-\nREADY open lang file ->x.lang<-\n");
    EXPECT_EQ(read_file("x.lang"), "/* automatically generated file, do not edit x.lang */\n\n"
                                   "FORMAT LANGUAGE \"b\"\nCTIME 7\nSRC_MTIME 0\n\n\n"
                                   "GROUP \"g\"\n  \"i\" {\n    \"" +
                                       second + "\"    }\n");
    EXPECT_EQ(texts(".").size(), 2U); // and the source
}

TEST_F(Compiled, MoreLanguagesThanHandles)
{
    std::string text;
    for (int n = 0; n < 100; ++n)
        text += "define file \"" + std::to_string(n) + "\" lang \"" + std::to_string(n) + "\" ";
    const source_guard source = read(
        text + "default lang \"0\" group \"g\" { item \"i\" { used yes lang \"0\" { \"x\" } } }");
    rlimit before;
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few{40, before.rlim_max};
    compile(
        source.get(), nullptr, [&] { setrlimit(RLIMIT_NOFILE, &few); },
        [&] { setrlimit(RLIMIT_NOFILE, &before); });
    EXPECT_EQ(answer.code, 0);
    EXPECT_THAT(read_file("99.lang"),
                EndsWith("GROUP \"g\"\n  \"i\" {\n   default    \"x\"    }\n"));
}

TEST_F(Compiled, NothingLeadsOutOfTheDestination)
{
    fs::create_directories("top/out/link-edit");
    fs::create_directory("elsewhere");
    write_file("elsewhere/f.lang", "precious");
    fs::create_directory_symlink("../../elsewhere", "top/out/e-edit");
    fs::create_symlink("../../../elsewhere/f.lang", "top/out/link-edit/f.lang");
    const std::string deep = [] {
        std::string name;
        while (name.size() < 3000)
            name += std::string(200, 'n') + "/";
        return name;
    }();
    const std::string absolute = fs::current_path() / "elsewhere/x";
    const bool is_root = geteuid() == 0;
    for (const char *link : {"top/out/e-edit", "top/out/link-edit/f.lang"})
        ASSERT_TRUE(!is_root || lchown(link, 65534, 65534) == 0);
    const std::map<std::string, std::string> before = texts("elsewhere");
    for (const auto &[name, file] :
         std::vector<std::pair<std::string, std::string>>{{"../../elsewhere/x", "f"},
                                                          {"a/../../../elsewhere/x", "f"},
                                                          {"a", "../../../elsewhere/f"},
                                                          {"a", "sub/../../../../elsewhere/f"},
                                                          {"/" + absolute, "f"},
                                                          {"e", "f"},
                                                          {"link", "f"},
                                                          {deep, "f"}}) {
        SCOPED_TRACE(name + " " + file);
        if (!is_root && (name == "e" || name == "link"))
            continue; // nobody else's link can be made
        const source_guard source =
            read("define file \"" + file + "\" lang \"" + name + "\" group \"g\" { }");
        compile(source.get(), "top/out");
        EXPECT_EQ(answer.code, 1);
        EXPECT_EQ(printed, "ERROR open lang file ->" + file + "<-\n");
        EXPECT_EQ(texts("elsewhere"), before);
    }
    EXPECT_EQ(std::distance(fs::directory_iterator("elsewhere"), fs::directory_iterator()), 1);
}

TEST_F(Compiled, OwnLinksBelowTheDestinationAreFollowed)
{
    for (const char *folder : {"out/deutsch-edit", "install/en"})
        fs::create_directories(folder);
    fs::create_symlink("../install/en", "out/english-edit");
    fs::create_symlink("../../install/ger", "out/deutsch-edit/de.lang");
    const source_guard source = read(two_languages);
    compile(source.get(), "out");
    EXPECT_EQ(answer.code, 0);
    EXPECT_TRUE(fs::is_symlink("out/deutsch-edit/de.lang"));
    EXPECT_THAT(read_file("install/en/en.lang"), HasSubstr("Yes"));
    EXPECT_THAT(read_file("install/ger"), HasSubstr("Ja"));
}

} // namespace
