// The word check, beside "lang check"; pages/check.md tells what it says.

#include "kit/run-kit.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <regex>

namespace {

namespace fs = std::filesystem;
using zel_test::kit;
using zel_test::read_file;
using zel_test::write_file;

class KitCheckSlow : public testing::Test {
protected:
    static std::string lang_check(const std::string &words)
    {
        // A save waits for a second in which no other has left its backup.
        const std::string command =
            "rm -f *.bak; '" LANG_PROGRAM "' check " + words + " >said 2>&1 </dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0);
        return read_file("said");
    }
    // A source but for the times of the run.
    static std::string timeless(const std::string &path)
    {
        static const std::regex times("([cm]time|create_date) +[-\"0-9 :]+", std::regex::icase);
        return std::regex_replace(read_file(path), times, "$1");
    }
    static void expect_same_bytes(const std::string &source, const std::string &tree)
    {
        for (const char *folder : {"lang", "kit"}) {
            fs::remove_all(folder);
            fs::create_directory(folder);
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
TEST_F(KitCheckSlow, WritesTheBytesOfLangCheck)
{
    std::vector<fs::path> trees{LANG_SOURCE_ROOT "/src/langlib", LANG_SOURCE_ROOT "/tests/checker"};
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
    for (int round = 0; round < 200; ++round) {
        write_file("x.c", "");
        for (unsigned i = any(6); i > 0; --i)
            write_file("x.c", read_file("x.c") + request());
        std::string items;
        for (const char *group : {"g", "h"}) {
            items += std::string("GROUP \"") + group + "\" {\n";
            for (int i = 0; i < 6; ++i)
                if (any(4) != 0)
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
    EXPECT_GT(full, 50);
    EXPECT_LT(full, 150);
}

} // namespace
