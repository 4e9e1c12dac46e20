// Translations from the other sources of a folder.

#include "assist/neighbours.h"

#include "app/global.h"
#include "working-dir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace zel_test;
using zel::assist::neighbour_limits;
using zel::assist::neighbour_texts;

std::string item(const std::string &name, const std::string &english, const std::string &german)
{
    return "  ITEM \"" + name + "\" { USED YES" +
           (english.empty() ? "" : " LANG \"english\" { \"" + english + "\" }") +
           " LANG \"german\" { \"" + german + "\" } }\n";
}

std::string source_of(const std::string &items, const std::string &group = "g")
{
    return "GROUP \"" + group + "\" {\n" + items + "}\n";
}

class Neighbours : public working_dir {
protected:
    Neighbours() { write_file("own.lang-src", source_of(item("Save", "Save", "Eigenes"))); }

    // Reads everything there is.
    void read(neighbour_texts &texts, const char *second = "")
    {
        texts.begin({"own.lang-src", "english", {second, "german"}});
        int turns = 0;
        while (texts.step({}) && turns < 10000)
            ++turns;
        EXPECT_LT(turns, 10000) << "no end";
    }
    // "text (origin)", and behind it the original of a similar one.
    static std::string best(const neighbour_texts &texts, const std::string &reference,
                            std::size_t lang = 1)
    {
        const auto found = texts.best(reference, lang);
        if (!found)
            return "";
        return found->text + " (" + found->origin + ")" +
               (found->likeness < 1 ? " ~ " + found->reference : "");
    }
    std::string best(const std::string &reference, std::size_t lang = 1)
    {
        neighbour_texts texts;
        read(texts, "french");
        return best(texts, reference, lang);
    }
};

TEST_F(Neighbours, TheSameTextElseASimilarOneOfTheFirstFile)
{
    write_file("b.lang-src", source_of(item("1", "Save", "Sichern") + item("2", "Quit", "Weg")));
    write_file("a.lang-src", source_of(item("1", "Save", "Speichern"), "file"));
    write_file("a.lang-src.bak", source_of(item("1", "Load", "Laden")));
    EXPECT_EQ(best("Save"), "Speichern (file, a.lang-src)");
    EXPECT_EQ(best("Quit"), "Weg (g, b.lang-src)");
    EXPECT_EQ(best("Quite"), "Weg (g, b.lang-src) ~ Quit");
    EXPECT_EQ(best("Load"), "") << "a backup is no neighbour";
    EXPECT_EQ(best("Save", 0), "") << "nobody has French";
}

TEST_F(Neighbours, AnItemIsTheTextOfADefaultLanguageOnly)
{
    write_file("a.lang-src", source_of(item("Print", "", "Drucken")));
    write_file("b.lang-src", "DEFAULT LANG \"klingon\"\n" +
                                 source_of(item("Load", "", "Laden") + item("x", "Go", "Los")));
    write_file("c.lang-src", "GROUP \"g\" { ITEM \"Old\" { LANG \"german\" { \"Alt\" } } }\n");
    EXPECT_EQ(best("Print"), "Drucken (g, a.lang-src)");
    EXPECT_EQ(best("Load"), "");
    EXPECT_EQ(best("Go"), "Los (g, b.lang-src)") << "languages go by name";
    EXPECT_EQ(best("Old"), "") << "nobody asks for it any more";
}

TEST_F(Neighbours, WhatIsNoSourceIsPassedOverAtOnceInSilence)
{
    ASSERT_EQ(mkfifo("1.lang-src", 0600), 0);
    fs::create_symlink("/dev/zero", "2.lang-src");
    fs::create_symlink("nowhere", "3.lang-src");
    fs::create_directory("4.lang-src");
    write_file("5.lang-src", "GROUP \"g\" { ITEM ");
    write_file("6.lang-src", std::string(3000, '\0'));
    write_file("7.lang-src", "");
    write_file("8.lang-src", source_of(item("1", "Load", "Geheim")));
    fs::permissions("8.lang-src", fs::perms::none);
    fs::create_symlink("own.lang-src", "9.lang-src");
    fs::create_symlink("/proc/kmsg", "a.lang-src");
    write_file("z.lang-src", source_of(item("1", "Print", "Drucken")));
    const lang_global_t before = lang_global;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(best("Print"), "Drucken (g, z.lang-src)");
    EXPECT_EQ(best("Save"), "") << "the source itself, by another name";
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(lang_global.src_dir, before.src_dir);
    EXPECT_EQ(lang_global.modified, before.modified);
    if (geteuid() != 0) {
        EXPECT_EQ(best("Load"), "");
    }
}

TEST_F(Neighbours, NothingIsWritten)
{
    write_file("a.lang-src", source_of(item("1", "Save", "Speichern")));
    const auto looks = [] {
        std::string all;
        for (const fs::directory_entry &entry : fs::directory_iterator("."))
            all += entry.path().string() +
                   std::to_string(entry.last_write_time().time_since_epoch().count()) +
                   read_file(entry.path()) + "\n";
        return all;
    };
    const std::string before = looks();
    EXPECT_NE(best("Save"), "");
    EXPECT_EQ(looks(), before);
}

TEST_F(Neighbours, NoMoreIsReadThanTheLimitsLet)
{
    const std::string text = source_of(item("1", "Save", "A") + item("2", "Print", "B"));
    write_file("a.lang-src", text);
    write_file("b.lang-src", text + source_of(item("3", "Save file", "C")));
    write_file("c.lang-src", source_of(item("4", "Load", "D")));
    const std::size_t most = neighbour_limits{}.bytes;
    struct {
        neighbour_limits limits;
        const char *found; // of the texts that only a, only b and only c have
    } const rows[] = {
        {{}, "BCD"},
        {{2, most, most, 100}, "BC"},
        {{50, text.size() * 2, most, 100}, "BD"},
        {{50, most, text.size(), 100}, "BD"},
        {{50, most, most, 3}, "BC"},
        {{50, most, most, 1}, ""},
    };
    for (const auto &row : rows) {
        neighbour_texts texts(row.limits);
        read(texts);
        std::string found;
        for (const char *reference : {"Print", "Save file", "Load"})
            if (const std::string one = best(texts, reference); one.find('~') == std::string::npos)
                found += one.substr(0, 1);
        EXPECT_EQ(found, row.found);
    }
}

TEST_F(Neighbours, AnotherQuestionBeginsAnewTheSameOneDoesNot)
{
    write_file("a.lang-src", source_of(item("1", "Save", "Speichern")));
    neighbour_texts texts;
    read(texts);
    write_file("a.lang-src", source_of(item("1", "Save", "Sichern")));
    read(texts);
    EXPECT_EQ(best(texts, "Save"), "Speichern (g, a.lang-src)");
    read(texts, "french");
    EXPECT_EQ(best(texts, "Save"), "Sichern (g, a.lang-src)");
    texts.forget();
    EXPECT_EQ(best(texts, "Save"), "");
    EXPECT_FALSE(texts.step({}));
    read(texts, "french");
    EXPECT_EQ(best(texts, "Save"), "Sichern (g, a.lang-src)") << "what is forgotten is read again";
}

} // namespace
