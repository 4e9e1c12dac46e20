#include "compiler/split.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <string>
#include <utility>

#include "app/global.h"
#include "lex/lex.h"
#include "source/lang-read.h"

#include "working-dir.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using zel_test::read_file;
using zel_test::write_file;

class Split : public zel_test::working_dir {
protected:
    Split() { lang_global.posnr = 0; }
    ~Split() override { lang_global.posnr = 0; }

    static source_guard read(const std::string &text)
    {
        write_file("app.lang-src", text);
        return source_guard(lang_read_file("app.lang-src"));
    }
    void split(LangSource *source, const char *destination)
    {
        zel_test::log_capture log;
        start = std::time(nullptr);
        printed = zel_test::capture_stdout([&] { result = split_file(source, destination); });
        logged = log.text();
        for (std::size_t at = 0; (at = logged.find("cre_dir", at)) != std::string::npos;)
            logged.erase(at, logged.find('\n', at) + 1 - at); // the directories' own lines
    }
    // A compiled file, its time of compiling replaced by a word.
    std::string compiled(const std::string &path) const
    {
        std::string text = read_file(path);
        for (std::int64_t time = start; time <= std::time(nullptr); time++) {
            const std::string stamp = "\nCTIME " + std::to_string(time) + "\n";
            if (const std::size_t at = text.find(stamp); at != std::string::npos)
                return text.replace(at, stamp.size(), "\nCTIME NOW\n");
        }
        return "no time in: " + text;
    }

    std::int64_t start = 0;
    std::string printed;
    std::string logged;
    int result = -7;
};

const std::string both_languages = "mtime 4294967295 define format utf8 "
                                   "file \"english\" lang \"english\" 1 2 1 "
                                   "file \"de.lang\" lang \"deutsch\" 1 2 0 ";

TEST_F(Split, UsedItemsInEveryLanguageOrTheDefault)
{
    std::filesystem::create_directory("out");
    const source_guard source = read(both_languages + R"(
        group "main" {
            item "ok" { used yes lang "deutsch" { "Gut" "" "so" } lang "english" { "OK" } }
            item "unused" { lang "english" { "no" } lang "deutsch" { "nein" } }
            item "say \"hi\"" { used yes lang "ENGLISH" { "Say \"hi\"\n" "\t\\" } }
            item "blank" { used yes lang "english" { "full" } lang "Deutsch" { "" "" } }
            item "none" { used yes lang "english" { } }
            item "foreign" { used yes lang "francais" { "rien" } comment "english" { "no" } }
        }
        group "empty" { }
        group "last" { item "end" { used yes lang "deutsch" { "Ende" } } }
    )");
    split(source.get(), "out");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(compiled("out/english-edit/english.lang"),
              R"(/* automatically generated file, do not edit english */

FORMAT UTF8
LANGUAGE "english"
CTIME NOW
SRC_MTIME 4294967295


GROUP "main"
  "ok" {
    "OK"    }
  "say \"hi\"" {
    "Say \"hi\"\n"    "\t\\"    }
  "blank" {
    "full"    }


GROUP "empty"


GROUP "last"
)");
    EXPECT_EQ(compiled("out/deutsch-edit/de.lang"),
              R"(/* automatically generated file, do not edit de.lang */

FORMAT UTF8
LANGUAGE "deutsch"
CTIME NOW
SRC_MTIME 4294967295


GROUP "main"
  "ok" {
    "Gut"    ""    "so"    }
  "say \"hi\"" {
   default    "Say \"hi\"\n"    "\t\\"    }


GROUP "empty"


GROUP "last"
  "end" {
    "Ende"    }
)");
    EXPECT_EQ(printed, "READY open lang file ->english<-\nREADY open lang file ->de.lang<-\n");
    for (const lang_t *lang : zel::each<lang_t>(source->langs))
        EXPECT_EQ(lang->stream, nullptr);
}

TEST_F(Split, PositionNumbersStandBeforeTheText)
{
    const source_guard source = read(both_languages + "group \"main\" { item \"btn_ok\" { used yes "
                                                      "lang \"english\" { \"Save\" \"file\" } } }");
    auto *group = static_cast<edit_t *>(source->groups->data);
    static_cast<item_t *>(group->items->data)->posnr = 3;
    lang_global.posnr = 1;
    split(source.get(), nullptr);
    EXPECT_EQ(compiled("english.lang"),
              R"(/* automatically generated file, do not edit english */

FORMAT UTF8
LANGUAGE "english"
POSNR
CTIME NOW
SRC_MTIME 4294967295


GROUP "main"
  "btn_ok" {
    "3:"    "Save"    "file"    }
)");
    EXPECT_THAT(compiled("de.lang"), HasSubstr("\n  \"btn_ok\" {\n   default    \"3:\"    \"Save\""
                                               "    \"file\"    }\n"));
}

TEST_F(Split, TheFormatLine)
{
    for (const auto &[format, line] :
         {std::pair{"", "\nFORMAT LANGUAGE \"e\"\n"},
          std::pair{"format ascii", "\nFORMAT ASCII\nLANGUAGE \"e\"\n"},
          std::pair{"format utf8", "\nFORMAT UTF8\nLANGUAGE \"e\"\n"}}) {
        const source_guard source =
            read("define " + std::string(format) + " file \"f\" lang \"e\" 1 2");
        split(source.get(), nullptr);
        EXPECT_EQ(compiled("f.lang"), "/* automatically generated file, do not edit f */\n" +
                                          std::string(line) + "CTIME NOW\nSRC_MTIME 0\n");
    }
}

TEST_F(Split, TheDefaultLanguageInAnyCaseAndWhenItIsEmptyToo)
{
    const source_guard source = read(
        "default lang \"GERMAN\" " + both_languages +
        "group \"g\" { item \"a\" { used yes lang \"german\" { \"x\" } } item \"b\" { used yes "
        "lang \"german\" { \"\" } } item \"c\" { used yes lang \"english\" { \"y\" } } }");
    split(source.get(), nullptr);
    EXPECT_THAT(compiled("english.lang"),
                testing::EndsWith("GROUP \"g\"\n  \"a\" {\n   default    \"x\"    }\n"
                                  "  \"c\" {\n    \"y\"    }\n"));
    EXPECT_THAT(compiled("de.lang"),
                testing::EndsWith("GROUP \"g\"\n  \"a\" {\n   default    \"x\"    }\n"));
}

TEST_F(Split, WithoutADefaultLanguageAMissingTextIsSaid)
{
    const source_guard source =
        read("default lang \"\" " + both_languages +
             "group \"g\" { item \"a\" { used yes lang \"english\" { \"x\" } } item \"b\" { used "
             "yes } item \"c\" { } }");
    split(source.get(), nullptr);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(printed, "READY open lang file ->english<-\nREADY open lang file ->de.lang<-\n"
                       "WARNING: no entry for lang \"deutsch\" item \"a\"\n"
                       "WARNING: no entry for lang \"english\" item \"b\"\n"
                       "WARNING: no entry for lang \"deutsch\" item \"b\"\n");
}

TEST_F(Split, NamesAreEscapedAndCannotEndTheComment)
{
    std::filesystem::create_directory("x*");
    const source_guard source =
        read("define file \"x*/f\" lang \"a \\\"b\\\"\" 1 2 group \"c\\\\d\\n\" { }");
    split(source.get(), nullptr);
    const std::string text = compiled("x*/f.lang");
    EXPECT_THAT(text, HasSubstr("LANGUAGE \"a \\\"b\\\"\"\n"));
    EXPECT_THAT(text, HasSubstr("\n\nGROUP \"c\\\\d\\n\"\n"));
    const zel_lex_guard lex(zel_lex_new(nullptr, LEX_ESCAPES | LEX_NEWLINE_SPACE));
    zel_lex_set_buf(lex.get(), zel_lex_buf_file_new("x*/f.lang"));
    EXPECT_STREQ(zel_next_token(lex.get())->lexeme, "FORMAT");
    zel_lex_free_buf(lex.get());
}

// --- where the files go
// ----------------------------------------------------------------------------

TEST_F(Split, TheEndingIsWrittenOnce)
{
    std::filesystem::create_directory("sub");
    const source_guard source =
        read("define file \"a\" lang \"1\" 1 2 file \"b.lang\" lang \"2\" 1 2 "
             "file \"c.LANG\" lang \"3\" 1 2 file \"d.lang.lang\" lang \"4\" "
             "1 2 file \"e.lang.x\" lang \"5\" 1 2 file \"sub/f\" lang \"6\"");
    split(source.get(), nullptr);
    EXPECT_EQ(result, 0);
    for (const char *path :
         {"a.lang", "b.lang", "c.LANG.lang", "d.lang.lang", "e.lang.x.lang", "sub/f.lang"})
        EXPECT_TRUE(std::filesystem::exists(path)) << path;
}

TEST_F(Split, BelowADestinationEveryLanguageHasItsDirectory)
{
    std::filesystem::create_directories("out/english-edit");
    write_file("out/english-edit/english.lang", std::string(5000, 'x')); // is replaced
    const source_guard source = read(both_languages);
    split(source.get(), "out/");
    EXPECT_THAT(compiled("out/english-edit/english.lang"), StartsWith("/* automatically"));
    EXPECT_THAT(compiled("out/deutsch-edit/de.lang"), Not(HasSubstr("x")));
    EXPECT_TRUE(std::filesystem::is_directory("out/deutsch-edit"));
    EXPECT_FALSE(std::filesystem::exists("english.lang"));
}

TEST_F(Split, LogsWhatItOpensAndTheDestination)
{
    std::filesystem::create_directories("out");
    write_file("out/zzz", "");
    const source_guard source = read("define file \"e\" lang \"english\" 1 2");
    split(source.get(), "out");
    const std::string before = "split_file: entry\n"
                               "open_lang_files: READY open lang file ->out/english-edit/e.lang<-\n"
                               "split_file: language directory >out<\n";
    const std::string after = "split_file: exit\n";
    EXPECT_THAT(logged,
                testing::AnyOf(before + "split_file: >zzz<\nsplit_file: >english-edit<\n" + after,
                               before + "split_file: >english-edit<\nsplit_file: >zzz<\n" + after));
}

TEST_F(Split, WithoutADestinationNothingIsListed)
{
    const source_guard source = read("define file \"e\" lang \"english\" 1 2");
    split(source.get(), nullptr);
    EXPECT_EQ(logged, "split_file: entry\nopen_lang_files: READY open lang file ->e.lang<-\n"
                      "split_file: language directory ><\nsplit_file: exit\n");
}

TEST_F(Split, NoSourceAndNoLanguages)
{
    split(nullptr, "out");
    EXPECT_EQ(result, 0);
    EXPECT_THAT(logged, HasSubstr("split_file: group null ptr\n"));
    const source_guard source = read("group \"g\" { item \"a\" { used yes } }");
    split(source.get(), nullptr);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(printed, "");
}

TEST_F(Split, AnEmptyNameIsALanguageToo)
{
    std::filesystem::create_directory("out");
    const source_guard source = read("define file \"\" lang \"\" 1 2 file \"f\" lang \"\" 1 2 "
                                     "group \"\" { item \"\" { used yes lang \"\" { \"x\" } } }");
    split(source.get(), "out");
    split(source.get(), nullptr);
    EXPECT_EQ(result, 0);
    EXPECT_THAT(compiled("f.lang"), HasSubstr("GROUP \"\"\n  \"\" {\n    \"x\"    }\n"));
}

// --- failures
// --------------------------------------------------------------------------------------

TEST_F(Split, AFileThatCannotBeCreatedEndsTheMessagesAndHindersNoOther)
{
    std::filesystem::create_directory("second.lang");
    const source_guard source =
        read("define file \"first\" lang \"a\" 1 2 file \"new\" lang \"n\" 1 2 file \"second\" "
             "lang \"b\" 1 2 file \"third\" lang \"c\" 1 2 group \"g\" { }");
    split(source.get(), nullptr);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(printed, "READY open lang file ->first<-\nREADY open lang file ->new<-\n"
                       "ERROR open lang file ->second<-\n");
    EXPECT_EQ(logged, "split_file: entry\nopen_lang_files: READY open lang file ->first.lang<-\n"
                      "open_lang_files: READY open lang file ->new.lang<-\n"
                      "open_lang_files: ERROR open lang file ->second.lang<-\n"
                      "open_lang_files: READY open lang file ->third.lang<-\n"
                      "split_file: ERROR write languages files\n");
    for (const char *name : {"first.lang", "new.lang", "third.lang"})
        EXPECT_THAT(compiled(name), HasSubstr("GROUP \"g\"\n"));
    for (const lang_t *lang : zel::each<lang_t>(source->langs))
        EXPECT_EQ(lang->stream, nullptr);
}

TEST_F(Split, NamesThatAreTooLongCannotBeOpened)
{
    std::filesystem::create_directory("out");
    const std::string name(5000, 'n');
    const std::string by_five(251, 'n'); // without the ending it fits
    for (const std::string &text : {"define file \"f\" lang \"" + name + "\" 1 2",
                                    "define file \"" + name + "\" lang \"e\" 1 2",
                                    "define file \"" + by_five + "\" lang \"e\" 1 2"}) {
        const source_guard source = read(text);
        for (const std::string &destination : {std::string("out"), std::string(5000, 'd')}) {
            split(source.get(), destination.c_str());
            EXPECT_EQ(result, 1);
            EXPECT_THAT(printed, StartsWith("ERROR open lang file ->"));
        }
    }
}

// --- its parts
// -------------------------------------------------------------------------------------

TEST_F(Split, OpeningAndClosingTheFiles)
{
    const source_guard source = read(both_languages);
    zel_test::capture_stdout([&] { EXPECT_EQ(open_lang_files(source->langs, nullptr), 0); });
    for (const lang_t *lang : zel::each<lang_t>(source->langs))
        EXPECT_NE(lang->stream, nullptr);
    auto *first = static_cast<lang_t *>(source->langs->data);
    EXPECT_EQ(std::fclose(std::exchange(first->stream, nullptr)), 0);
    close_lang_files(source->langs);
    close_lang_files(source->langs);
    EXPECT_EQ(read_file("de.lang"), "/* automatically generated file, do not edit de.lang */\n");
    close_lang_files(nullptr);
    for (const lang_t *lang : zel::each<lang_t>(source->langs))
        EXPECT_EQ(lang->stream, nullptr);
}

TEST_F(Split, OneEntry)
{
    const source_guard source = read("group \"g\" { item \"i\" { lang \"e\" { \"1\" } lang \"E\" { "
                                     "\"2\" } lang \"f\" { } } item \"j\" { } }");
    auto *group = static_cast<edit_t *>(source->groups->data);
    auto *item = static_cast<item_t *>(group->items->data);
    std::FILE *stream = std::fopen("entry", "w+");
    EXPECT_EQ(write_lang_entry_by_name(stream, "E", item, 0), 0); // the first that matches
    EXPECT_EQ(write_lang_entry_by_name(stream, "F", item, 1), 0);
    EXPECT_EQ(write_lang_entry_by_name(stream, "g", item, 1), 1);
    item = static_cast<item_t *>(group->items->next->data);
    EXPECT_EQ(write_lang_entry_by_name(stream, "e", item, 0), 1);
    std::fclose(stream);
    EXPECT_EQ(read_file("entry"), "  \"i\" {\n    \"1\"    }\n");
}

} // namespace
