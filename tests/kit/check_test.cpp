// The word check, beside "lang check"; and what lint tells about code, which nothing is written
// for.

#include "kit/run-kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <regex>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using zel_test::kit;
using zel_test::read_file;
using zel_test::write_file;

class KitCheck : public testing::Test {
protected:
    static std::string lang_check(const std::string &words)
    {
        const std::string command = "'" LANG_PROGRAM "' check " + words + " >said 2>&1 </dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0);
        return read_file("said");
    }
    // A source but for the times of the run.
    static std::string timeless(const std::string &path)
    {
        static const std::regex times("([CM]TIME|CREATE_DATE) +[-\"0-9 :]+");
        return std::regex_replace(read_file(path), times, "$1");
    }
    static void expect_same_bytes(const std::string &source, const std::string &tree)
    {
        for (const char *folder : {"lang", "kit"}) {
            fs::create_directory(folder);
            fs::remove(std::string(folder) + "/a.lang-src");
            if (!source.empty())
                fs::copy_file(source, std::string(folder) + "/a.lang-src");
        }
        fs::current_path("lang");
        lang_check("a.lang-src '" + tree + "'");
        fs::current_path("../kit");
        const auto run = kit("check --fail-on none a.lang-src '" + tree + "'");
        EXPECT_EQ(run.status, 0) << run.err;
        fs::current_path("..");
        EXPECT_EQ(timeless("kit/a.lang-src"), timeless("lang/a.lang-src")) << tree;
    }

    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

// LANG_TEST_TREES names a folder with more of them.
TEST_F(KitCheck, WritesTheBytesOfLangCheck)
{
    std::vector<fs::path> trees{LANG_SOURCE_ROOT "/src", LANG_SOURCE_ROOT "/tests/checker"};
    if (const char *more = std::getenv("LANG_TEST_TREES"))
        for (const auto &entry : fs::directory_iterator(more))
            if (entry.is_directory())
                trees.push_back(entry.path());
    for (const char *name : {"app/tea", "gtk/window", "make/count", "cxx/shelf", "python/notes"}) {
        const fs::path source = fs::path(LANG_SOURCE_ROOT "/examples") / name;
        expect_same_bytes(source.string() + ".lang-src", source.parent_path());
    }
    for (const fs::path &tree : trees) {
        expect_same_bytes("", tree);
        expect_same_bytes(LANG_SOURCE_ROOT "/examples/notes.lang-src", tree);
    }
}

class KitCheckRun : public KitCheck {
protected:
    KitCheckRun()
    {
        fs::create_directory("src");
        write_file("src/a.c", "f(lang_get_string(\"main\", \"Old\"));\n"
                              "\ng(lang_get_string(\"main\", \"Foo\"));\n");
        kit("check app.lang-src src");
        write_file("src/a.c",
                   "f(lang_get_string(\"main\", \"Old\"), lang_tooltip(\"m\", x));\n"
                   "lang_get_string(\"m\", \"N\") lang_get_string(\"m\", \"A\" \"B\")\n");
    }
    const std::string end =
        "2 new: m:N (src/a.c:2), and 1 more, 1 no longer used: main:Foo (src/a.c:3), "
        "2 could not be read\n";
    const std::string unread =
        "src/a.c:1:35: error: this request is not read: the item is no "
        "literal [unread]\n"
        "src/a.c:2:52: error: the application asks for \"AB\", of which only "
        "\"A\" is read: write it in one piece, or as lang_get [adjacent]\n";
};

TEST_F(KitCheckRun, TellsWhatCameOfIt)
{
    const std::string before = read_file("app.lang-src");
    const auto dry = kit("check --dry-run app.lang-src src");
    EXPECT_EQ(dry.out, unread + end);
    EXPECT_EQ(dry.err, "");
    EXPECT_EQ(dry.status, 1);
    EXPECT_EQ(read_file("app.lang-src"), before);
    EXPECT_THAT(kit("check --dry-run --format json app.lang-src src").out,
                HasSubstr("\"unused\": [\n  {\"group\": \"main\", \"item\": \"Foo\", \"file\": "
                          "\"src/a.c\", \"line\": 3}],\n \"unread\": [\n  {\"file\": \"src/a.c\", "
                          "\"line\": 1, \"rule\": \"unread\", \"message\": "));
    for (const auto &[on, status] :
         {std::pair{"none", 0}, {"new", 1}, {"unused,none", 1}, {"unread", 1}, {"old", 2}})
        EXPECT_EQ(kit(std::string("check --dry-run app.lang-src src --fail-on ") + on).status,
                  status);
    EXPECT_EQ(kit("check --fail-on unused app.lang-src src").status, 1);
    const auto again = kit("check --fail-on new,unused app.lang-src src");
    EXPECT_THAT(again.out, HasSubstr("\n0 new, 0 no longer used, 2 could not be read\n"));
    EXPECT_EQ(again.status, 0);
}

TEST_F(KitCheckRun, WhatCannotBeReadChangesNothing)
{
    const std::string before = read_file("app.lang-src");
    fs::create_symlink("nowhere", "src/z.c");
    const auto run = kit("check app.lang-src src none");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "lang-kit: src/z.c: cannot be read\nlang-kit: none: cannot be read\n");
    EXPECT_EQ(read_file("app.lang-src"), before);
    write_file("cut.lang-src", "GROUP \"a\" { ITEM \"b\" {");
    EXPECT_EQ(kit("check cut.lang-src src/a.c").status, 2);
    EXPECT_EQ(read_file("cut.lang-src"), "GROUP \"a\" { ITEM \"b\" {");
}

TEST_F(KitCheckRun, KeywordsStandInTheLineOrInTheProject)
{
    fs::create_directory("app");
    write_file("app/b.c", "#define _(text) lang_get_string(\"main\", text)\n"
                          "puts(_(\"Hi\")); tr_n(\"%d day\", \"%d days\", n);\n");
    const std::string found = "2 new: main:Hi (app/b.c:2), and 1 more, 0 no longer used, 0 could "
                              "not be read\n";
    EXPECT_EQ(kit("check --dry-run --keyword _:1 --keyword 'tr_n:1,2 plural' --group main "
                  "app/c.lang-src app/b.c")
                  .out,
              found);
    write_file("app/lang-kit.ini", "[project]\ncode=b.c\nkeywords=_:1;tr_n:1,2 plural\ngroup=main\n"
                                   "languages=english\n[lint]\nwithout=unasked, not-ready\n");
    EXPECT_EQ(kit("check app/c.lang-src").out, found);
    EXPECT_THAT(read_file("app/c.lang-src"), HasSubstr("\"%d day|%d days\""));
    write_file("app/b.c", "_(\"Ho\");\n");
    EXPECT_EQ(kit("lint --only unknown,unasked app/c.lang-src").out,
              "app/b.c:1:3: error: the source has no item \"main:Ho\" [unknown]\n");
    for (const char *words : {"--keyword _", "--keyword _:1 --group ''"})
        EXPECT_EQ(kit(std::string("check d.lang-src src ") + words).status, 2) << words;
    write_file("app/lang-kit.ini", "[project]\ncodes=b.c\n");
    EXPECT_EQ(kit("check app/c.lang-src src").err,
              "lang-kit: app/lang-kit.ini: there is no setting \"codes\" in [project]\n");
    EXPECT_EQ(kit("check app.lang-src").status, 2) << "no code";
}

TEST_F(KitCheckRun, LintTellsWhatItWouldDo)
{
    const std::string before = read_file("app.lang-src");
    const auto run = kit("lint --only unknown,unread,adjacent,unasked --code src app.lang-src");
    EXPECT_THAT(run.out,
                StartsWith(unread.substr(0, unread.find('\n') + 1) +
                           "src/a.c:2:22: error: the source has no item \"m:N\" [unknown]\n"
                           "src/a.c:2:48: error: the source has no item \"m:A\" "
                           "[unknown]\n" +
                           unread.substr(unread.find('\n') + 1) + "app.lang-src:"));
    EXPECT_THAT(run.out, HasSubstr(": info: asked for in no file [unasked]\n"));
    EXPECT_EQ(read_file("app.lang-src"), before);
}

using KitCheckSlow = KitCheck;

// "unknown" is empty exactly when the check would insert nothing.
TEST_F(KitCheckSlow, UnknownIsWhatCheckInserts)
{
    std::mt19937 random(7);
    const auto any = [&](unsigned count) { return static_cast<unsigned>(random() % count); };
    const auto name = [&] { return "\"i" + std::to_string(any(6)) + "\""; };
    const auto request = [&]() -> std::string {
        const std::string group = any(2) == 0 ? "\"g\"" : "\"h\"";
        const std::string forms[] = {"lang_get_string(" + group + ", " + name() + ")",
                                     "lang_get(\"d\", " + group + ", \"i\" \"1\")",
                                     "lang_tooltip(" + group + ", NAME)",
                                     "lang_get_str(h, " + group + ", " + name() + " " + name() +
                                         ")",
                                     "#define NAME " + name() + "\n",
                                     "\"lang_tooltip(\\\"g\\\", \\\"i2\\\")\"",
                                     "lang_tooltip(" + group + ", x ? \"i3\" : \"i4\")",
                                     "/* lang_tooltip(\"g\", \"none\") */",
                                     "lang_get(\"d\", " + group + ", x + " + name() + ")"};
        return forms[any(std::size(forms))] + ";\n";
    };
    int full = 0;
    for (int round = 0; round < 80; ++round) {
        write_file("x.c", "");
        for (unsigned i = any(4); i > 0; --i)
            write_file("x.c", read_file("x.c") + request());
        std::string items;
        for (const char *group : {"g", "h"}) {
            items += std::string("GROUP \"") + group + "\" {\n";
            for (int i = 0; i < 6; ++i)
                if (any(8) != 0)
                    items += "ITEM \"i" + std::to_string(i) + "\" { USED YES }\n";
            items += "}\n";
        }
        write_file("a.lang-src", "define format utf8\n" + items + "/* EOF a.lang-src */\n");
        const std::string unknown = kit("lint --only unknown --code x.c a.lang-src").out;
        const bool inserts =
            lang_check("a.lang-src x.c").find("not found, insert") != std::string::npos;
        EXPECT_EQ(unknown.empty(), !inserts) << read_file("x.c") << unknown;
        full += inserts ? 1 : 0;
    }
    EXPECT_GT(full, 10);
    EXPECT_LT(full, 70);
}

} // namespace
