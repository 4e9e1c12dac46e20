// The program in surroundings that are not a developer's: little memory, closed streams, a
// terminal, files that cannot be read.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "run-shell.h"
#include "working-dir.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using zel_test::read_file;
using zel_test::write_file;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool sanitized = true; // which reserves more than any limit lets it
#else
constexpr bool sanitized = false;
#endif

class Surroundings : public zel_test::working_dir {
protected:
    // What a shell that runs the line prints.
    std::string shell(const std::string &line)
    {
        const auto run = zel_test::shell("HOME=\"$PWD\"; " + line);
        status = run.status;
        err = run.err;
        return run.out;
    }
    static std::string source(int items)
    {
        std::string text = "define file \"e.lang\" lang \"english\" 200 200 1\ngroup \"g\" {\n";
        for (int i = 0; i < items; ++i)
            text += "item \"i" + std::to_string(i) + "\" { used yes lang \"english\" { \"" +
                    std::string(200, 'x') + "\" } }\n";
        return text + "}\n";
    }

    std::string err;
    int status = 0;
};
using SurroundingsSlow = Surroundings;

TEST_F(SurroundingsSlow, LittleMemoryIsEnough)
{
    if (sanitized)
        GTEST_SKIP();
    write_file("app.lang-src", source(5000));
    write_file("a.c", "lang_get_string(\"g\", \"i1\");");
    for (const char *limit : {"300000", "1000000"}) {
        EXPECT_EQ(shell(std::string("ulimit -v ") + limit + "; lang convert app.lang-src new"), "");
        EXPECT_EQ(err, "");
        EXPECT_THAT(read_file("new"), HasSubstr("ITEM   \"i4999\""));
        std::filesystem::remove("new");
        EXPECT_THAT(shell(std::string("ulimit -v ") + limit + "; lang check app.lang-src a.c"),
                    HasSubstr("found 00001:a.c"));
        EXPECT_THAT(read_file("app.lang-src"), HasSubstr("ITEM   \"i4999\""));
    }
}

TEST_F(SurroundingsSlow, TooLittleMemoryCostsNothing)
{
    if (sanitized)
        GTEST_SKIP();
    write_file("app.lang-src", source(40000));
    write_file("a.c", "lang_get_string(\"g\", \"i1\");");
    const std::string before = read_file("app.lang-src");
    for (const char *limit : {"-v 25000", "-d 1000"}) { // the second is not enough for any source
        const std::string out =
            shell(std::string("ulimit ") + limit + "; lang check app.lang-src a.c");
        EXPECT_THAT(out + err, testing::ContainsRegex("not enough memory|failed to allocate"));
        EXPECT_EQ(status, 0);
        EXPECT_TRUE(read_file("app.lang-src") == before);
    }
}

TEST_F(Surroundings, ASourceThatIsThereAndCannotBeReadIsLeftAlone)
{
    std::filesystem::create_directory("folder.lang-src");
    write_file("a.c", "lang_get_string(\"g\", \"i\");");
    EXPECT_EQ(shell("lang check folder.lang-src a.c"), "check: read file >folder.lang-src<\n"
                                                       "ERROR(146) open ->folder.lang-src<-\n");
    EXPECT_TRUE(std::filesystem::is_directory("folder.lang-src"));
    // The administrator may read everything, so somebody else has to try.
    if (getuid() == 0) {
        write_file("app.lang-src", source(1));
        const std::string before = read_file("app.lang-src");
        EXPECT_EQ(shell("chmod 777 .; chmod 0 app.lang-src; exec 3<&0; setpriv --reuid=65534 "
                        "--regid=65534 --clear-groups '" LANG_PROGRAM "' check app.lang-src a.c"),
                  "check: read file >app.lang-src<\nERROR(146) open ->app.lang-src<-\n");
        EXPECT_EQ(read_file("app.lang-src"), before);
    }
}

TEST_F(Surroundings, ClosedStreamsHitNoFile)
{
    write_file("app.lang-src", source(1));
    std::filesystem::create_directories("Morvalix 6.00/log");
    shell("lang convert app.lang-src none/new >&-");
    EXPECT_THAT(read_file("Morvalix 6.00/log/lang.log"), Not(HasSubstr("ERROR: write")));
    shell("lang convert app.lang-src new >&- 2>&- <&-");
    EXPECT_THAT(read_file("new"), StartsWith("/* !!!! DO NOT EDIT"));
    EXPECT_THAT(read_file("new"), EndsWith("/* EOF new */\n"));
}

// Somebody saves while the program waits for its turn in the folder: it reads the new text and does
// its work on that.
TEST_F(Surroundings, WhatAnotherProgramSavesMeanwhileIsTakenIn)
{
    write_file("a.c", "lang_get_string(\"g\", \"i0\");\n");
    for (const std::string word : {"convert app.lang-src app.lang-src", "check app.lang-src a.c"}) {
        write_file("app.lang-src", source(1));
        write_file("theirs", "app \"THEIRS\"\n" + source(1));
        shell(
            "exec 9>.lang.lock; flock 9; lang " + word +
            " 9>&- & n=0; until [ -e lang.tmp ] || [ $((n += 1)) -gt 1000 ]; do sleep 0.01; done; "
            "mv theirs app.lang-src; exec 9>&-; wait $!");
        EXPECT_THAT(read_file("app.lang-src"), HasSubstr("app \"THEIRS\"")) << word;
        EXPECT_THAT(read_file("app.lang-src"), StartsWith("/* !!!! DO NOT EDIT")) << word;
        EXPECT_THAT(err, StartsWith(word.substr(0, word.find(' ')) +
                                    ": app.lang-src was changed by another program meanwhile"));
    }
}

// What a program prints on a terminal.
std::string on_terminal(const char *file)
{
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        execl(LANG_PROGRAM, "lang", "convert", file, "new", nullptr);
        _exit(127);
    }
    std::string shown;
    char block[512];
    for (ssize_t n = 0; (n = read(terminal, block, sizeof block)) > 0;)
        shown.append(block, static_cast<std::size_t>(n));
    close(terminal);
    waitpid(child, nullptr, 0);
    return shown;
}

TEST_F(Surroundings, ATerminalGetsNoControlCharacters)
{
    const std::string name = "a\033[2J\302\233z\302\200\303\251\a";
    EXPECT_EQ(on_terminal(name.c_str()),
              "ERROR(146) open ->a\\x1b[2J\\xc2\\x9bz\\xc2\\x80\303\251\\x07<-\r\n"
              "ERROR: read a\\x1b[2J\\xc2\\x9bz\\xc2\\x80\303\251\\x07\r\n");
    std::filesystem::create_directory("d\033");
    EXPECT_THAT(on_terminal("d\033"), HasSubstr("\nlang: d\\x1b: Is a directory\r\n"));
    EXPECT_EQ(shell("lang convert \"$(printf 'a\\033')\" new"),
              "ERROR(146) open ->a\033<-\nERROR: read a\033\n");
}

} // namespace
