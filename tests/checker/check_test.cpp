#include "checker/check.h"

#include "app/global.h"
#include "source/group.h"
#include "source/lang-read.h"
#include "test-support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;
using zel::check_result;
using zel::run_check;

constexpr const char *usage =
    "\nusage :\n---------------------------------------------------------------\n"
    "lang check [options] lang_file c_file\n\noptions:\n"
    "---------------------------------------------------------------\n"
    "help\t\t-\tDisplay this help\nverbose \t-\tVerbose\n\n\n";

class Check : public testing::Test {
protected:
    // Runs the command with these words after its own name.
    std::string run(std::vector<std::string> words)
    {
        words.insert(words.begin(), "check");
        std::vector<char *> vector;
        for (std::string &word : words)
            vector.push_back(word.data());
        return zel_test::capture_stdout(
            [&] { result = run_check(static_cast<int>(vector.size()), vector.data(), 1234567); });
    }

    // A file that asks for the item of its own path in the group "g".
    static void ask(const std::string &path)
    {
        const fs::path folder = fs::path(path).parent_path();
        if (!folder.empty())
            fs::create_directories(folder);
        zel_test::write_file(path, "\nlang_get_string(\"g\", \"" + path + "\");\n");
    }

    // The places of all items of the written source.
    static std::vector<std::string> places(const char *path = "app.lang-src")
    {
        std::vector<std::string> found;
        const source_guard source(lang_read_file(path));
        EXPECT_NE(source, nullptr);
        if (source != nullptr)
            for (const edit_t *group : zel::each<edit_t>(source->groups))
                for (const item_t *item : zel::each<item_t>(group->items))
                    for (const char *place : zel::each<char>(item->used_in))
                        found.emplace_back(place);
        return found;
    }

    static std::vector<std::string> files()
    {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator("."))
            names.push_back(entry.path().filename());
        return names;
    }

    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
    check_result result = check_result::failed;
};

TEST_F(Check, ScansATreeByNames)
{
    for (const char *name : {"t/x.c", "t/x.h", "t/x.scr", "t/x.kvo-signals", "t/.c",
                             "t/a/b/modes-list", "t/kvo-hotkeys", "t/pad-hotkeys", "t/tool-hotkeys",
                             "t/page-index-script", "t/job-index-script"})
        ask(name);
    for (const char *name :
         {"t/x.txt", "t/x.C", "t/x.cpp", "t/x.c~", "t/old-modes-list", "t/Makefile"})
        ask(name);
    run({"app.lang-src", "t"});
    EXPECT_EQ(result, check_result::done);
    EXPECT_THAT(places(), UnorderedElementsAre(
                              "00002:t/x.c", "00002:t/x.h", "00002:t/x.scr",
                              "00002:t/x.kvo-signals", "00002:t/.c", "00002:t/a/b/modes-list",
                              "00002:t/kvo-hotkeys", "00002:t/pad-hotkeys", "00002:t/tool-hotkeys",
                              "00002:t/page-index-script", "00002:t/job-index-script"));
}

TEST_F(Check, WhatItPrints)
{
    ask("notes.txt");
    std::string first;
    const std::string told = zel_test::capture_stderr([&] {
        first = run({"app.lang-src", "notes.txt", "none"});
    });
    EXPECT_EQ(told, "check: none cannot be read: No such file or directory\n");
    EXPECT_THAT(first, StartsWith("check: read file >app.lang-src<\n"));
    EXPECT_THAT(first, HasSubstr("check: WARNING no group\n"
                                 "check: check directory >notes.txt<\n"
                                 "check c file >notes.txt<\n"
                                 "not found, insert item 00002:notes.txt: ->g<->notes.txt<-\n"
                                 "check: check directory >none<\n"
                                 "_check_rec: ERROR(1) open >none<\n"));
    EXPECT_EQ(result, check_result::done);
    EXPECT_THAT(run({"--verbose", "app.lang-src", "notes.txt"}),
                HasSubstr("    found 00002:notes.txt: ->g<->notes.txt<-\n"));
    EXPECT_THAT(places(), ElementsAre("00002:notes.txt")) << "built anew, not appended";
}

TEST_F(Check, ForgetsOldMarksAndKeepsTheItems)
{
    ask("a.c");
    ask("b.c");
    run({"app.lang-src", "a.c", "b.c"});
    run({"app.lang-src", "b.c"});
    EXPECT_THAT(places(), ElementsAre("00002:b.c"));
    const source_guard source(lang_read_file("app.lang-src"));
    ASSERT_NE(source, nullptr);
    EXPECT_NE(get_item_ptr(source.get(), "g", "a.c"), nullptr);
    EXPECT_EQ(get_item_ptr(source.get(), "g", "a.c")->used, 0U);
    EXPECT_NE(source->ctime, 0);
    EXPECT_THAT(source->create_date, testing::MatchesRegex("....-..-.. ..:..:.."));
}

TEST_F(Check, FollowsLinksButNotBackUp)
{
    ask("t/a/x.c");
    ask("u/y.c");
    fs::create_directory_symlink("..", "t/a/up");
    fs::create_directory_symlink(".", "t/a/self");
    fs::create_directory_symlink("../u", "t/other");
    fs::create_directory_symlink("a", "t/twin");
    fs::create_symlink("../u/y.c", "t/link.c");
    run({"app.lang-src", "t"});
    EXPECT_THAT(places(), UnorderedElementsAre("00002:t/a/x.c", "00002:t/twin/x.c",
                                               "00002:t/other/y.c", "00002:t/link.c"));
}

TEST_F(Check, PipesAreNoSources)
{
    ask("t/x.c");
    ASSERT_EQ(mkfifo("t/pipe.c", 0600), 0);
    run({"app.lang-src", "t"});
    EXPECT_THAT(places(), ElementsAre("00002:t/x.c"));
}

TEST_F(Check, AnUnreadableFileLeavesEverythingAsItWas)
{
    ask("t/x.c");
    run({"app.lang-src", "t"});
    const std::string before = zel_test::read_file("app.lang-src");
    ask("t/y.c");
    fs::create_symlink("nowhere", "t/z.c");
    EXPECT_THAT(run({"app.lang-src", "t"}),
                HasSubstr("ERROR(3): unable to init lexical scanner\n"));
    EXPECT_EQ(result, check_result::ended);
    EXPECT_EQ(zel_test::read_file("app.lang-src"), before);
    EXPECT_THAT(files(), UnorderedElementsAre("app.lang-src", "t"));
}

TEST_F(Check, WhatCannotBeLookedAtIsToldOnStandardErrorOnly)
{
    // Its own name fits, but no path that the system takes leads there.
    const std::string folder(250, 'd');
    ask("t/x.c");
    const fs::path start = fs::current_path();
    fs::current_path("t");
    for (int depth = 0; depth < 17; ++depth) {
        fs::create_directory(folder);
        fs::current_path(folder);
    }
    fs::current_path(start);
    std::string printed;
    const std::string told = zel_test::capture_stderr([&] {
        printed = run({"app.lang-src", "t/x.c", "t"});
    });
    EXPECT_EQ(result, check_result::done);
    EXPECT_THAT(printed, Not(HasSubstr(folder)));
    EXPECT_THAT(told, testing::ContainsRegex("^check: t/.*d cannot be looked at: .+\n$"));
}

TEST_F(Check, AReaderThatEndsTheProcessEndsTheCheck)
{
    // The reader stops the process at a group that does not go on as it should.
    const std::string text = "version 1\nGROUP \"g\" { ITEM 12 }\n";
    zel_test::write_file("app.lang-src", text);
    ask("x.c");
    const std::string printed = run({"app.lang-src", "x.c"});
    EXPECT_EQ(result, check_result::ended);
    EXPECT_THAT(printed, HasSubstr("lang_read_file: ERROR(exit) lang-read:303\n"));
    EXPECT_THAT(printed, Not(HasSubstr("check c file")));
    EXPECT_EQ(zel_test::read_file("app.lang-src"), text);
}

TEST_F(Check, AMalformedSourceIsToldWithItsBackup)
{
    const std::string text = "version 1\n<<<<<<< ours\napp \"a\"\n";
    zel_test::write_file("app.lang-src", text);
    ask("x.c");
    testing::internal::CaptureStderr();
    EXPECT_THAT(run({"app.lang-src", "x.c"}), HasSubstr("check: WARNING no group\n"));
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(result, check_result::done);
    const std::string line =
        "check: app.lang-src could not be read and a new source was begun; the old text is in ";
    ASSERT_THAT(told, StartsWith(line));
    EXPECT_EQ(zel_test::read_file(told.substr(line.size(), told.size() - line.size() - 1)), text);
    EXPECT_THAT(places(), ElementsAre("00002:x.c"));
}

TEST_F(Check, UsageWhenAWordIsMissing)
{
    const std::vector<std::string> lines[] = {{},
                                              {"--help"},
                                              {"app.lang-src"},
                                              {"--recursive", "app.lang-src"},
                                              {"help"},
                                              {"", "x.c"},
                                              {"--help", "app.lang-src", "x.c"}};
    for (const auto &words : lines) {
        EXPECT_EQ(run(words), usage);
        EXPECT_EQ(result, check_result::ended);
    }
    EXPECT_THAT(files(), IsEmpty());
}

} // namespace
