#include "source/lang-write.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "source/lang-read.h"
#include "source/source-text.h"
#include "support/string-copy.h"
#include "working-dir.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using zel_test::describe;
using zel_test::read_file;
using zel_test::write_file;

class Write : public zel_test::working_dir {
protected:
    static source_guard read(const std::string &text)
    {
        write_file("in.lang-src", text);
        return source_guard(lang_read_file("in.lang-src"));
    }
    // Writes and gives what is then in the file, the time of writing replaced by a word.
    std::string written(LangSource *source, const char *path = "app.lang-src")
    {
        const std::int64_t before = std::time(nullptr);
        printed = zel_test::capture_stdout([&] { result = lang_write_file(path, source); });
        EXPECT_GE(source->mtime, before);
        EXPECT_LE(source->mtime, std::time(nullptr));
        std::string text = read_file(path);
        const std::string stamp = "mtime " + std::to_string(source->mtime) + "\n";
        const std::size_t at = text.find(stamp);
        EXPECT_NE(at, std::string::npos);
        return at == std::string::npos ? text : text.replace(at, stamp.size(), "mtime NOW\n");
    }
    static std::vector<std::string> files(const std::string &in = ".")
    {
        std::vector<std::string> names;
        for (const auto &file : std::filesystem::directory_iterator(in))
            names.push_back(file.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    zel_test::fresh_global global;
    std::string printed;
    int result = -7;
};

const std::string sample = R"(
    version 7 create_date "2024-05-01 13:45:10" whatsnew 5 ctime 1600000000 mtime 3
    define format utf8 file "english.lang" lang "english" 200 150 1
        file "deutsch" lang "deutsch" 1 2 0 file "f" lang "francais" 3 4
    app "sample" default lang "english" colwidth group 111 colwidth item 222 colwidth ctrl 333
    group "main" { visible 0 screen_shot "main"
        item "btn_ok" { ctime 1700000000 used yes { "main.c" "dlg.c" }
            lang "english" { "OK" } lang "deutsch" { "Gut" "so" } comment "english" { "a button" }
            comment "deutsch" { "ein Knopf" } comment "francais" { "un" } }
        item "old" { description "gone" typ 2 rowheight 40 ctime 5 visible 0 ready 1 changed
            lang "francais" { } } }
    group "empty" { }
)";

const std::string sample_head = R"(/* !!!! DO NOT EDIT !!!!! */

version 1
create_date "2024-05-01 13:45:10"
whatsnew 5
ctime 1600000000
mtime NOW
define format utf8
app "sample"
default lang "english"


)";

const std::string sample_columns = R"(

colwidth group 111
colwidth item  222
colwidth ctrl  333




GROUP "main" {
  VISIBLE      0
  SCREEN_SHOT  "main"

  ITEM   "btn_ok"  { /* group  =  "main" */
    DESCRIPTION  "none"
    TYP       0
    ROWHEIGHT 20
    CTIME     1700000000
    VISIBLE   1
    READY     0
    USED YES {
        "main.c"
        "dlg.c"
    }
    LANG   "english" {
        "OK"
    }
    LANG   "deutsch" {
        "Gut"
        "so"
    }
    COMMENT   "english" {
        "a button"
    }
    COMMENT   "deutsch" {
        "ein Knopf"
    }
)";

const std::string sample_french_comment = R"(    COMMENT   "francais" {
        "un"
    }
)";

const std::string sample_old = R"(
  ITEM   "old"  { /* group  =  "main" */
    DESCRIPTION  "gone"
    TYP       2
    ROWHEIGHT 40
    CTIME     5
    VISIBLE   0
    READY     1
    CHANGED
    USED NO
)";

const std::string sample_end = R"(}  /* end GROUP "main" */


GROUP "empty" {
  VISIBLE      1
  SCREEN_SHOT  ""
}  /* end GROUP "empty" */


/* EOF app.lang-src */
)";

TEST_F(Write, TheWholeFile)
{
    const source_guard source = read(sample);
    EXPECT_EQ(written(source.get()), sample_head +
                                         "define file \"english.lang\" lang \"english\" 200 150 1\n"
                                         "define file \"deutsch\" lang \"deutsch\" 1 2 0\n"
                                         "define file \"f\" lang \"francais\" 3 4 1\n" +
                                         sample_columns + sample_french_comment + "  }\n" +
                                         sample_old + "    LANG   \"francais\" {\n    }\n  }\n" +
                                         sample_end);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(printed, "");
    EXPECT_EQ(files(), (std::vector<std::string>{"app.lang-src", "in.lang-src"})); // no backup
}

TEST_F(Write, OnlyUsedItems)
{
    const source_guard source = read(sample);
    source->only_used = 1;
    EXPECT_EQ(written(source.get()), sample_head +
                                         "define file \"english.lang\" lang \"english\" 200 150 1\n"
                                         "define file \"deutsch\" lang \"deutsch\" 1 2 0\n"
                                         "define file \"f\" lang \"francais\" 3 4 1\n" +
                                         sample_columns + sample_french_comment + "  }\n" +
                                         sample_end);
}

TEST_F(Write, OnlyTheTwoOutputLanguages)
{
    char english[] = "english";
    char german[] = "deutsch";
    lang_global.save_selected_only = 1;
    lang_global.output_lang_1 = english;
    lang_global.output_lang_2 = german;
    const source_guard source = read(sample);
    EXPECT_EQ(written(source.get()), sample_head +
                                         "define file \"english.lang\" lang \"english\" 200 150 1\n"
                                         "define file \"deutsch\" lang \"deutsch\" 1 2 1\n" +
                                         sample_columns + "  }\n" + sample_old + "  }\n" +
                                         sample_end);
    EXPECT_EQ(g_list_length(source->langs), 3U); // the model keeps the third

    for (char *missing : {english, static_cast<char *>(nullptr)}) { // unless both are set
        lang_global.output_lang_1 = missing;
        lang_global.output_lang_2 = missing == nullptr ? german : nullptr;
        EXPECT_THAT(written(source.get(), "other.lang-src"), HasSubstr("\"francais\" 3 4 1\n"));
        std::filesystem::remove("other.lang-src");
    }
}

TEST_F(Write, AFreshSource)
{
    for (bool null_names : {false, true}) {
        source_guard source(lang_alloc_group());
        if (null_names) {
            zel::replace_string(source->app, nullptr);
            zel::replace_string(source->default_lang, nullptr);
        }
        EXPECT_EQ(written(source.get(), null_names ? "2" : "1"),
                  "/* !!!! DO NOT EDIT !!!!! */\n\nversion 1\nwhatsnew 0\nctime 0\nmtime NOW\n"
                  "define format ascii\napp \"unknown\"\ndefault lang \"english\"\n\n\n\n\n"
                  "colwidth group 200\ncolwidth item  200\ncolwidth ctrl  300\n\n\n\n\n"
                  "/* EOF " +
                      std::string(null_names ? "2" : "1") + " */\n");
    }
}

TEST_F(Write, NothingForNoSource)
{
    EXPECT_EQ(lang_write_file("app.lang-src", nullptr), 0);
    EXPECT_TRUE(files().empty());
}

TEST_F(Write, FormatsAndWideNumbers)
{
    const source_guard source = read("define format ascii whatsnew 4294967295 ctime 3000000000 "
                                     "colwidth group 2147483647 group \"g\" { visible 7 }");
    const std::string text = written(source.get());
    EXPECT_THAT(text, HasSubstr("define format ascii\n"));
    EXPECT_THAT(text, HasSubstr("whatsnew 4294967295\nctime 3000000000\n"));
    EXPECT_THAT(text, HasSubstr("colwidth group 2147483647\n"));
    EXPECT_THAT(text, HasSubstr("  VISIBLE      7\n"));
}

TEST_F(Write, EscapesAndLinesOfATextEntry)
{
    const source_guard source =
        read("group \"g\" { item \"a\\\"b\" { lang \"e\" { \"q\\\" b\\\\ t\\t r\\r n\\n \\x07\xff"
             "/* x */\" \"\" \"end \\t\" \" \" \"\" } } }");
    EXPECT_THAT(written(source.get()),
                HasSubstr("\n  ITEM   \"a\\\"b\"  { /* group  =  \"g\" */\n"));
    EXPECT_THAT(
        read_file("app.lang-src"),
        HasSubstr("    LANG   \"e\" {\n        \"q\\\" b\\\\ t\\t r\\r n\\n \x07\xff/* x */\"\n"
                  "        \"\"\n        \"end\"\n        \"\"\n        \"\"\n    }\n"));
}

// --- reading back --------------------------------------------------------------------------------

// Every string of the model holds what could end a string, a line or a comment.
constexpr const char *awkward[] = {
    "plain",      "a \"quoted\" name", "back\\slash\\", "\\",    "\"",
    "tab\tname",  "two\nlines\r\n",    "ends */ here",  "*/",    "/* opens",
    "*\\/ */ */", "// line",           "\xc3\xa4\xff",  "\x01b", "}\n{ \" */ group \"x\" {"};

TEST_F(Write, WhatIsWrittenReadsBackWhateverTheNames)
{
    for (const char *name : awkward) {
        source_guard source(lang_alloc_group());
        const auto copy = [&] { return zel_strdup(name); };
        source->format = LANG_SOURCE_UTF8;
        source->create_date = copy();
        zel::replace_string(source->app, copy());
        zel::replace_string(source->default_lang, copy());
        lang_t *lang = alloc_lang();
        lang->name = copy();
        lang->file = copy();
        lang->edit = 1;
        source->langs = g_list_append(nullptr, lang);
        for (int n = 0; n < 2; n++) {
            edit_t *group = lang_alloc_edit();
            group->name = copy();
            group->screen_shot = copy();
            group->used = 1; // as the reader counts it
            item_t *item = alloc_item();
            item->source = source.get();
            item->name = copy();
            item->description = copy();
            item->used = 1;
            item->ctime = 1700000000;
            item->used_in = g_list_append(g_list_append(nullptr, copy()), nullptr);
            for (GList **list : {&item->langs, &item->comments}) {
                lang_entry_t *entry = alloc_lang_entry(name);
                entry->texts = g_list_append(g_list_append(nullptr, copy()), zel_strdup2("."));
                *list = g_list_append(nullptr, entry);
            }
            group->items = g_list_append(nullptr, item);
            source->groups = g_list_append(source->groups, group);
        }
        std::filesystem::remove("app.lang-src");
        written(source.get());
        const source_guard back(lang_read_file("app.lang-src"));
        EXPECT_EQ(describe(back.get()), describe(source.get())) << name;
    }
}

TEST_F(Write, NullNamesAreWrittenAsEmptyStrings)
{
    const source_guard source = read("define file \"\" lang \"\" 1 2 3 group \"\" { item \"\" { "
                                     "ctime 9 used yes { \"\" } lang \"\" { \"x\" } } }");
    written(source.get());
    const source_guard back(lang_read_file("app.lang-src"));
    EXPECT_EQ(describe(back.get()),
              "format=1 lang (null) (null) 1 2 3 group (null) used=1 { item (null) "
              "description=none ctime=9 used=1 in [(null)] LANG (null) [\"x\"] }");
}

TEST_F(Write, APathCannotEndItsComment)
{
    std::filesystem::create_directory("x*");
    const source_guard source = read(sample);
    written(source.get(), "x*/app.lang-src");
    const source_guard back(lang_read_file("x*/app.lang-src"));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(g_list_length(back->groups), 2U);
}

// --- the files -----------------------------------------------------------------------------------

using WriteSlow = Write;
TEST_F(WriteSlow, ABackupNeverReplacesAnotherOne)
{
    const source_guard source = read(sample);
    write_file("app.lang-src", "text 0");
    for (int n = 1; n <= 3; n++) {
        EXPECT_EQ(lang_write_file("app.lang-src", source.get()), 0);
        write_file("app.lang-src", "text " + std::to_string(n));
    }
    std::vector<std::string> texts;
    for (const std::string &name : files()) {
        if (name.find(".bak") != std::string::npos)
            texts.push_back(read_file(name));
    }
    EXPECT_THAT(texts, testing::ElementsAre("text 0", "text 1", "text 2"));
}

} // namespace
