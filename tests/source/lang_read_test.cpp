#include "source/lang-read.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "rows.h"
#include "source/source-text.h"
#include "working-dir.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using zel_test::counts;
using zel_test::describe;

class Read : public zel_test::working_dir {
protected:
    // Reads a text, and what is printed meanwhile.
    source_guard read(const std::string &text)
    {
        zel_test::write_file("app.lang-src", text);
        zel::read_answer answer;
        printed =
            zel_test::capture_stdout([&] { answer = zel_test::read_printing("app.lang-src"); });
        result = answer.result;
        EXPECT_EQ(answer.source != nullptr, result == zel::read_result::good);
        return std::move(answer.source);
    }
    std::string model(const std::string &text)
    {
        const source_guard source = read(text);
        EXPECT_EQ(printed, "");
        return describe(source.get(), counts::yes);
    }
    std::string item(const std::string &body)
    {
        const std::string text = model("group \"g\" { item \"i\" { " + body + " } }");
        const std::size_t start = text.find(" { item i");
        return start == std::string::npos ? text : text.substr(start + 9);
    }

    zel_test::fresh_global global;
    zel::read_result result = zel::read_result::good;
    std::string printed;
};

// --- the grammar ---------------------------------------------------------------------------------

TEST_F(Read, ModelsAreThoseOfTheTable)
{
    for (const zel_test::row &row : zel_test::rows_of("source/read.rows"))
        EXPECT_EQ(row[2] == "item" ? item(row[0]) : model(row[0]), row[1])
            << row.section << ", read.rows:" << row.line;
}

TEST_F(Read, NothingGivesTheDefaults)
{
    EXPECT_EQ(model(""), "");
    EXPECT_EQ(model("/* nothing */ // here\n\n\t"), "");
    const source_guard source = read("");
    EXPECT_STREQ(source->app, "unknown");
    EXPECT_STREQ(source->default_lang, "english");
}

TEST_F(Read, EmptyStringsAreStoredAsNull)
{
    const source_guard source = read("app \"\" default lang \"\" create_date \"\" "
                                     "define file \"\" lang \"\" 1 2 3 group \"\" { "
                                     "screen_shot \"\" item \"\" { description \"\" used yes { "
                                     "\"\" \"a\" } lang \"\" { \"\" \"x\" \"\" } } }");
    EXPECT_EQ(describe(source.get()),
              "app=(null) default=(null) lang (null) (null) 1 2 3 group (null) used=1 { item "
              "(null) used=1 in [(null) \"a\"] LANG (null) [\"\" \"x\" \"\"] }");
    EXPECT_EQ(source->create_date, nullptr);
}

TEST_F(Read, AGroupCountsItsUsedItems)
{
    const source_guard source = read("group \"g\" { used yes item \"i\" { used yes } "
                                     "item \"j\" { used no } item \"k\" { used yes { } } }");
    EXPECT_EQ(describe(source.get(), counts::yes),
              "items=3 group g used=3 { item i used=1 item j item k used=1 }");
    const auto *group = static_cast<edit_t *>(source->groups->data);
    for (const item_t *item : zel::each<item_t>(group->items))
        EXPECT_EQ(item->source, source.get());
}

TEST_F(Read, StringsAreUnescaped)
{
    const source_guard source =
        read("app \"\\\"q\\\" \\\\ \\t\\r\\n \\x41\\X7e \\\nnext\" group \"\xc3\xa4\xff\" { }");
    EXPECT_STREQ(source->app, "\"q\" \\ \t\r\n A~ next");
    EXPECT_EQ(describe(source.get()).substr(describe(source.get()).size() - 13),
              "group \xc3\xa4\xff { }");
}

TEST_F(Read, CarriageReturnsDoNotMatter)
{
    const std::string text = "app \"a\"\ngroup \"g\" {\n  item \"i\" {\n    typ 3\n  }\n}\n";
    std::string dos;
    for (char c : text)
        dos += c == '\n' ? "\r\n" : std::string(1, c);
    EXPECT_EQ(model(dos), model(text));
}

TEST_F(Read, NumbersBeyondTheirTypeDoNoHarm)
{
    read("version 99999999999999999999 whatsnew 99999999999999999999 colwidth item 4294967296 "
         "group \"g\" { visible 99999999999 item \"i\" { ctime 99999999999999999999 } }");
    EXPECT_EQ(printed, "");
}

// --- what else a read does -----------------------------------------------------------------------

TEST_F(Read, RemembersWhereTheSourceIs)
{
    lang_global.whatsnew_since = 5;
    std::filesystem::create_directories("a/b");
    zel_test::write_file("a/b/app.lang-src", "");
    const source_guard nested(lang_read_file("a/b/app.lang-src"));
    EXPECT_STREQ(lang_global.src_dir, "a/b");
    EXPECT_EQ(lang_global.whatsnew_since, 0);
    read("");
    const source_guard bare(lang_read_file("app.lang-src"));
    EXPECT_EQ(lang_global.src_dir, nullptr);
}

TEST_F(Read, LogsItsSteps)
{
    zel_test::log_capture log;
    read("");
    EXPECT_THAT(log.text(), StartsWith("lang_read_file: entry\nlang_read_file: exit\n"));
}

TEST_F(Read, AMissingFile)
{
    zel_test::log_capture log;
    EXPECT_EQ(
        zel_test::capture_stdout([] { EXPECT_EQ(lang_read_file("no/such.lang-src"), nullptr); }),
        "ERROR(146) open ->no/such.lang-src<-\n");
    EXPECT_THAT(log.text(), StartsWith("lang_read_file: entry\n"));
    EXPECT_THAT(log.text(), HasSubstr("lang_read_file: ERROR(exit) >no/such.lang-src< "
                                      "lang-read:151\n"));
}

TEST_F(Read, NoPath)
{
    zel_test::log_capture log;
    EXPECT_THAT(zel_test::capture_stdout([] { EXPECT_EQ(lang_read_file(nullptr), nullptr); }),
                StartsWith("ERROR(155) file open ->"));
    EXPECT_THAT(log.text(), HasSubstr("lang-read:159\n"));
}

TEST_F(Read, AStopEndsACommandWithStatusZero)
{
    zel_test::write_file("app.lang-src", "group \"g\" { typ");
    EXPECT_EXIT(static_cast<void>(lang_read_file("app.lang-src")), testing::ExitedWithCode(0), "");
}

TEST_F(Read, AnEntryIsReadFromAnyScanner)
{
    const std::string text = "\"english\" { \"a\" \"b\" } rest";
    const Keytab none[] = {{nullptr, 0}, {nullptr, 0}};
    const zel_lex_guard lex(zel_lex_new(none, LEX_ESCAPES | LEX_NEWLINE_SPACE));
    zel_lex_set_buf(lex.get(), zel_lex_buf_mem_new(text.data(), 26));
    GList *entries = g_list_append(nullptr, alloc_lang_entry("first"));
    EXPECT_EQ(parse_lang_text(lex.get(), &entries), 0);
    EXPECT_EQ(g_list_length(entries), 2U);
    const auto *entry = static_cast<lang_entry_t *>(entries->next->data);
    EXPECT_STREQ(entry->lang, "english");
    EXPECT_EQ(zel_test::strings(entry->texts), R"(["a" "b"])");
    EXPECT_EQ(
        zel_test::capture_stdout([&] { EXPECT_EQ(parse_lang_text(lex.get(), &entries), -1); }),
        "\nERROR(939): line 1:22 unexpected token 256");
    free_lang_entry_list(entries);
    zel_lex_free_buf(lex.get());
}

TEST_F(Read, LanguagesThatAreNotKeptLeaveNoEntry)
{
    const std::string text = R"(group "g" { item "i" { comment "b" { "1" } lang "a" { "2" "3" }
                                lang "" { } lang "b" { "4" } } item "j" { lang "a" 5 } })";
    zel::read_how how;
    how.text = text;
    how.keeps = [](std::string_view language) { return language == "b"; };
    const zel::read_answer answer = zel::read_source("", how);
    ASSERT_NE(answer.source, nullptr);
    EXPECT_THAT(describe(answer.source.get()),
                HasSubstr(R"({ item i LANG b ["4"] COMMENT b ["1"] item j })"));
}

TEST_F(Read, TimesAfter2038)
{
    // A file written after January 2038 holds the low 32 bits of the time with a sign.
    EXPECT_EQ(item("ctime -2147483648"), " ctime=2147483648 }");
    EXPECT_EQ(item("ctime - 1"), " ctime=4294967295 }");
    EXPECT_EQ(item("ctime 4294967295"), " ctime=4294967295 }");
    EXPECT_EQ(item("ctime -0"), " ctime=1700000000 }");
    const source_guard bad = read("group \"g\" { item \"i\" { ctime - } }"); // the item ends there
    EXPECT_EQ(printed, "\nERROR(816): line 1:29 expected numeric");
    ASSERT_NE(bad, nullptr);
    EXPECT_EQ(bad->item_count, 1U);
}

TEST_F(Read, WhyAFileCannotBeRead)
{
    const auto cause = [](const char *path) {
        const zel::read_answer answer = zel::read_source(path, {});
        EXPECT_EQ(answer.result, zel::read_result::unreadable);
        return answer.cause;
    };
    EXPECT_EQ(cause("none.lang-src"), zel::read_cause::absent);
    EXPECT_EQ(cause(nullptr), zel::read_cause::absent);
    std::filesystem::create_directory("folder");
    EXPECT_EQ(cause("folder"), zel::read_cause::unreadable);
    zel_test::write_file("app.lang-src", "<<<<<<< ours\n");
    EXPECT_EQ(cause("app.lang-src"), zel::read_cause::syntax);
    EXPECT_EQ(cause("app.lang-src/x"), zel::read_cause::absent);
}

TEST_F(Read, PlacesOfRecords)
{
    zel_test::write_file("app.lang-src", "define file \"e\" lang \"e\" 1 1 1\ngroup \"g\" {\n"
                                         "  ITEM \"i\" {\n    COMMENT \"e\" { }\n"
                                         "    LANG \"e\" { \"x\" } }\n}\n");
    zel::source_places places;
    zel::read_how how;
    how.places = &places;
    const zel::read_answer answer = zel::read_source("app.lang-src", how);
    ASSERT_EQ(answer.result, zel::read_result::good);
    const auto at = [&](const void *record) {
        const zel::place found = places.of(record);
        return std::to_string(found.line) + ":" + std::to_string(found.column);
    };
    const auto *group = static_cast<edit_t *>(answer.source->groups->data);
    const auto *found = static_cast<item_t *>(group->items->data);
    EXPECT_EQ(at(found->langs->data), "5:4");
    EXPECT_EQ(at(found->comments->data), "4:4");
    EXPECT_EQ(at(answer.source->langs->data), "1:7");
    EXPECT_EQ(at(found), "3:2");
    EXPECT_EQ(at(group), "2:0");
    EXPECT_EQ(at(&places), "0:0");
}

TEST_F(Read, AFileThatMayHaveBeenCut)
{
    const std::string head = "/* !!!! DO NOT EDIT !!!!! */\n\nversion 1\n";
    const std::string last = "\n\n/* EOF app.lang-src */\n";
    const auto told = [&](const std::string &text) {
        zel_test::write_file("app.lang-src", text);
        int count = 0;
        const zel::read_answer answer =
            zel::read_source("app.lang-src", {0, [&](const zel::read_message &message) {
                                                  count +=
                                                      message.row->number == zel::read_maybe_cut;
                                              }});
        EXPECT_EQ(answer.result, zel::read_result::good);
        return count;
    };
    EXPECT_EQ(told(head + last), 0);
    EXPECT_EQ(told(head + std::string(20000, ' ') + last), 0);
    EXPECT_EQ(told("version 1\n"), 0) << "typed by hand";
    EXPECT_EQ(told(head), 1);
    EXPECT_EQ(told(head + last.substr(0, 15)), 1);
    EXPECT_EQ(told("version 1\n/* by hand, and cut"), 1);
}

// --- malformed files -----------------------------------------------------------------------------

// broken/NAME.lang-src with broken/NAME.out of two or three lines: the outcome ("return" with the
// number in the log line, "stop", "reads"), standard output with \n for line feeds, and the model
// that is read.
class Broken : public Read, public testing::WithParamInterface<std::string> {};

std::string broken_dir() { return LANG_SOURCE_ROOT "/tests/source/broken/"; }

std::vector<std::string> broken_names()
{
    std::vector<std::string> names;
    for (const auto &file : std::filesystem::directory_iterator(broken_dir())) {
        if (file.path().extension() == ".lang-src")
            names.push_back(file.path().stem());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string as_one_line(const std::string &text)
{
    std::string out;
    for (char c : text)
        out += c == '\n' ? "\\n" : std::string(1, c);
    return out;
}

TEST_P(Broken, SaysWhatIsWrong)
{
    std::istringstream expected(zel_test::read_file(broken_dir() + GetParam() + ".out"));
    std::string outcome, output, wanted_model;
    std::getline(expected, outcome);
    std::getline(expected, output);
    std::getline(expected, wanted_model);
    const std::string text = zel_test::read_file(broken_dir() + GetParam() + ".lang-src");

    zel_test::log_capture log;
    const source_guard source = read(text);
    EXPECT_EQ(as_one_line(printed), output);
    EXPECT_EQ(result == zel::read_result::stopped, outcome == "stop");
    EXPECT_EQ(source == nullptr, outcome != "reads");
    EXPECT_EQ(zel_test::read_file("app.lang-src"), text);
    if (outcome == "reads") {
        EXPECT_EQ(describe(source.get()), wanted_model);
    } else if (outcome == "stop") {
        EXPECT_THAT(log.text(), HasSubstr("lang_read_file: ERROR(exit) lang-read:304\n"));
    } else if (outcome != "return") {
        EXPECT_THAT(log.text(), HasSubstr("lang_read_file: ERROR(exit) lang-read:" +
                                          outcome.substr(outcome.find(' ') + 1) + "\n"));
    }
}

INSTANTIATE_TEST_SUITE_P(Files, Broken, testing::ValuesIn(broken_names()), [](const auto &param) {
    std::string name = param.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

class NoCrash : public Read {
protected:
    // Reads bytes that may be anything: whatever comes out, it comes out.
    void survives(const std::string &text)
    {
        const source_guard source = read(text);
        ASSERT_EQ(zel_test::read_file("app.lang-src"), text);
    }
    static std::string sample()
    {
        return "/* head */ version 1\ncreate_date \"d\"\nwhatsnew 1 ctime 2 mtime 3\n"
               "define format utf8 file \"e.lang\" lang \"e\" 200 200 1\n"
               "app \"a\" default lang \"e\" colwidth group 1 colwidth item 2 colwidth ctrl 3\n"
               "GROUP \"g\\\"\" {\n VISIBLE 1 SCREEN_SHOT \"s\" USED YES\n // c\n"
               " ITEM \"i\\x41\" { /* c */\n DESCRIPTION \"d\" SIZE 1 2 TYP 1 ROWHEIGHT 2 CTIME 3 "
               "VISIBLE 1 READY 0 CHANGED USED YES {\n \"a.c\" }\n LANG \"e\" { \"x\\\ny\" \"z\" "
               "}\n"
               " COMMENT \"e\" { \"c\" } } }\n/* end */\n";
    }
};

TEST_F(NoCrash, AFileCutAtEveryByte)
{
    const std::string text = sample();
    for (std::size_t n = 0; n <= text.size(); n++)
        survives(text.substr(0, n));
    EXPECT_EQ(printed, "");
}

TEST_F(NoCrash, AByteDroppedOrChanged)
{
    const std::string text = sample();
    for (std::size_t n = 0; n < text.size(); n++) {
        survives(text.substr(0, n) + text.substr(n + 1));
        std::string changed = text;
        changed[n] = "\"{}\\\0\xff"
                     "0\n"[n % 8];
        survives(changed);
    }
}

} // namespace
