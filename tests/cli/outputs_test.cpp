// Where a word is told to write, somebody else has put something: nothing is written through it,
// nothing waits, and it is told. The user's own links lead where they point.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "working-dir.h"

namespace {

namespace fs = std::filesystem;
using zel_test::read_file;
using zel_test::write_file;

constexpr uid_t somebody_else = 65534;

constexpr const char *table = "lang excel unicode app.lang-src t/out.lang";

// Each writes t/out.lang or, where a word chooses the name, a name that is a link to it.
constexpr const char *writers[] = {
    "lang convert app.lang-src t/out.lang",
    "lang compile app.lang-src",
    table,
    "lang-kit pseudo -o t/out.lang app.lang-src",
    "lang-kit fill --from new.lang-src -o t/out.lang app.lang-src",
    "lang-kit merge -o t/out.lang app.lang-src app.lang-src new.lang-src",
    "lang-kit import --format json -o t/out.lang app.lang-src texts.json",
    "lang-kit import --format po --new -o t/out.lang texts.po",
    "lang-kit report -o t/out.lang app.lang-src",
    "lang-kit export --format json -o exported app.lang-src",
    "lang-kit export --format csv -o exported app.lang-src",
    "lang-kit export --format po --language a -o exported app.lang-src",
    "lang-kit export --format ts --language a -o exported app.lang-src",
    "lang-kit export --format xliff --language a -o exported app.lang-src",
    "lang-kit export --format xliff2 --language a -o exported app.lang-src",
};

class OutputsSlow : public zel_test::working_dir {
protected:
    void SetUp() override
    {
        write_file("app.lang-src",
                   "define file \"t/out.lang\" lang \"a\" 200 200 1\n"
                   "group \"g\" { item \"i\" { used yes lang \"a\" { \"one\" } } }\n");
        write_file("new.lang-src",
                   "define file \"t/out.lang\" lang \"a\" 200 200 1\n"
                   "group \"g\" { item \"i\" { used yes lang \"a\" { \"one\" } } item \"j\" { used "
                   "yes lang \"a\" { \"two\" } } }\n");
        write_file("texts.json", "{\"language_source\": 1, \"groups\": []}");
        write_file("texts.po",
                   "msgid \"\"\nmsgstr \"Language: a\\n\"\n\nmsgid \"i\"\nmsgstr \"x\"\n");
        fs::create_directory("t");
        fs::permissions("t", fs::perms(01777));
        fs::create_directory("exported");
        for (const char *name : {"app.json", "app.csv", "a.po", "a.ts", "a.xliff"})
            fs::create_symlink("../t/out.lang", std::string("exported/") + name);
        write_file("precious", "precious");
    }

    // What it said; it must have ended by itself.
    static std::string run(const std::string &writer)
    {
        const std::size_t blank = writer.find(' ');
        const std::string program = writer.substr(0, blank) == "lang" ? LANG_PROGRAM : LANG_KIT;
        const std::string command =
            "timeout 20 '" + program + "'" + writer.substr(blank) + " >said 2>&1 </dev/null";
        const int status = std::system(command.c_str());
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) <= 2) << status;
        return read_file("said");
    }

    static std::vector<std::string> names_in(const std::string &folder)
    {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename());
        return names;
    }
};

struct obstacle {
    const char *name;
    bool needs_root;
    bool (*put)(const char *path);
};

bool link_of_somebody_else(const char *target, const char *path)
{
    return symlink(target, path) == 0 && lchown(path, somebody_else, somebody_else) == 0;
}

constexpr obstacle obstacles[] = {
    {"his link to my file", true,
     [](const char *path) { return link_of_somebody_else("../precious", path); }},
    {"his link to where nothing is", true,
     [](const char *path) { return link_of_somebody_else("../nowhere", path); }},
    {"his link over my link", true,
     [](const char *path) {
         return (symlink("../precious", "t/mine") == 0 || errno == EEXIST) &&
                link_of_somebody_else("mine", path);
     }},
    {"a link to a pipe", false,
     [](const char *path) {
         return (mkfifo("pipe", 0666) == 0 || errno == EEXIST) && symlink("../pipe", path) == 0;
     }},
    {"a pipe", false, [](const char *path) { return mkfifo(path, 0666) == 0; }},
    {"a folder", false, [](const char *path) { return mkdir(path, 0777) == 0; }},
    {"a device", true,
     [](const char *path) { return mknod(path, S_IFCHR | 0666, makedev(1, 3)) == 0; }},
};

TEST_F(OutputsSlow, NothingIsWrittenThroughWhatSomebodyElseHasPut)
{
    constexpr const char *out = "t/out.lang";
    for (const obstacle &row : obstacles) {
        if (row.needs_root && geteuid() != 0)
            continue;
        if (!row.put(out)) {
            EXPECT_STREQ(row.name, "a device"); // not even the administrator may, in a container
            continue;
        }
        struct stat before {};
        ASSERT_EQ(lstat(out, &before), 0);
        const std::vector<std::string> beside = names_in("t");
        for (const std::string writer : writers) {
            SCOPED_TRACE(std::string(row.name) + ": " + writer);
            const std::string said = run(writer);
            const bool is_told =
                said.find("out.lang") != said.npos || said.find("exported") != said.npos;
            // The table for spreadsheets is for a terminal, too.
            const bool is_taken = std::string(row.name) == "a device" && writer == table;
            EXPECT_NE(is_told, is_taken) << said;
            struct stat now {};
            EXPECT_TRUE(lstat(out, &now) == 0 && now.st_ino == before.st_ino);
            EXPECT_EQ(names_in("t"), beside);
            EXPECT_EQ(read_file("precious"), "precious");
            EXPECT_FALSE(fs::exists("nowhere"));
        }
        fs::remove(out);
    }
}

TEST_F(OutputsSlow, LinksLeadWhereTheirMakerMayWrite)
{
    write_file("t/other", "old");
    std::vector<uid_t> makers{geteuid()};
    if (geteuid() == 0)
        makers.push_back(somebody_else); // to a file of his own
    for (const uid_t maker : makers) {
        fs::create_symlink("other", "t/out.lang");
        ASSERT_EQ(lchown("t/out.lang", maker, getegid()), 0);
        for (const std::string writer : writers) {
            if (writer.find(" --new ") != writer.npos)
                continue; // it writes over nothing
            SCOPED_TRACE(std::to_string(maker) + ": " + writer);
            for (const std::string &name : names_in("t"))
                if (name.ends_with(".bak")) // else the next one waits for another second
                    fs::remove("t/" + name);
            write_file("t/other", "old");
            ASSERT_EQ(chown("t/other", maker, getegid()), 0);
            const std::string said = run(writer);
            EXPECT_TRUE(fs::is_symlink("t/out.lang")) << said;
            EXPECT_TRUE(read_file("t/other") != "old") << said;
        }
        fs::remove("t/out.lang");
    }
}

// A shell's pipe, and one that is read a moment later.
TEST_F(OutputsSlow, TheTableGoesWhereAProgramMayWrite)
{
    run(table);
    const std::string whole = read_file("t/out.lang");
    ASSERT_EQ(whole, "\"g.i\"\t\"g.i\"\t\r");
    const std::string excel = std::string("'") + LANG_PROGRAM + "' excel unicode app.lang-src ";
    EXPECT_EQ(std::system((excel + "/dev/fd/3 3>&1 >/dev/null | cat >got").c_str()), 0);
    EXPECT_EQ(read_file("got"), whole);
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    EXPECT_EQ(
        std::system(("(sleep 1; cat pipe >late) & " + excel + "pipe >/dev/null; wait").c_str()), 0);
    EXPECT_EQ(read_file("late"), whole);
    if (geteuid() == 0) { // whom modes do not bind, but who may be in somebody's pipe
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        ASSERT_EQ(fchown(ends[1], somebody_else, somebody_else), 0);
        const std::string path = "/dev/fd/" + std::to_string(ends[1]);
        EXPECT_EQ(std::system((excel + path + " >/dev/null").c_str()), 0);
        close(ends[1]);
        char taken[64];
        EXPECT_EQ(std::string(
                      taken, std::size_t(std::max<ssize_t>(read(ends[0], taken, sizeof taken), 0))),
                  whole);
        close(ends[0]);
    }
}

} // namespace
