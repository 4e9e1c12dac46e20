#include "langlib/lang-load.h"

#include "handles.h"
#include "langlib/compiled-file.h"
#include "langlib/lang-symbols.h"
#include "langlib/lang-table.h"
#include "locales.h"

#include <algorithm>
#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <vector>

using namespace langlib_test;
using zel_test::capture_stdout;
using zel_test::log_capture;
using zel_test::write_file;

class LangLoad : public loading {};

TEST_F(LangLoad, ReadsWhatTheCompilerWrites)
{
    const handle_guard handle = load("/* automatically generated file, do not edit de.lang */\n\n"
                                     "FORMAT UTF8\nLANGUAGE \"deutsch\"\nPOSNR\nCTIME 100\n"
                                     "SRC_MTIME 200\n\n\nGROUP \"main\"\n"
                                     "  \"btn \\\"ok\\\"\" {\n   default    \"3:\"    \"Save\\n\""
                                     "    \"file\\t\\\\\"    }\n\n\nGROUP \"empty\"\n");
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(table(handle.get()), "main:btn \"ok\"=3:Save\nfile\t\\*");
    EXPECT_STREQ(handle->language, "deutsch");
    EXPECT_EQ(handle->format, LANG_FORMAT_UTF8);
    EXPECT_EQ(handle->ctime, 200u) << "the last one wins";
    EXPECT_EQ(handle->posnr, 0);
    EXPECT_EQ(handle->loaded, 1);
    EXPECT_EQ(handle->count, 3);
    EXPECT_STREQ(handle->lang[0].key, "");
    EXPECT_EQ(handle->lang[0].key, handle->lang[2].value) << "the sentinels share one text";
    EXPECT_EQ(handle->lang[3].key, nullptr);
    EXPECT_EQ(handle->lang[4].key, nullptr);
}

TEST_F(LangLoad, TakesStatementsInAnyOrderAndCase)
{
    EXPECT_EQ(table_of("group main Open { \"Ou\" \"vrir\" } gRoUp 'x' "), "main:Open=Ouvrir");
    EXPECT_EQ(table_of("Group \"a\" b { \"1\" } b { \"2\" } // c { \"3\" }\n a { \"0\" }"),
              "a:a=0 | a:b=1 | a:b=2");
    EXPECT_EQ(table_of("GROUP g x { default } y { } z { \"\" \"\" } w { \"a\\0b\" \"c\" }"),
              "g:w=ac | g:x* | g:y | g:z");
    const handle_guard handle =
        load("format ascii language a format language \"\" ctime 4294967295 group g x { \"1\" }");
    EXPECT_EQ(handle->format, LANG_FORMAT_ASCII);
    EXPECT_EQ(handle->language, nullptr) << "an empty name leaves none";
    EXPECT_EQ(handle->ctime, 4294967295u);
}

TEST_F(LangLoad, DropsPositionNumbersInImportMode)
{
    const std::string text = "POSNR GROUP main a { \"12:\" \"Ouvrir\" } b { \":\" \"x\" } c { "
                             "\"12:\" } d { \"x\" \"y:\" }";
    EXPECT_EQ(table_of(text, 1), "main:a=Ouvrir | main:b=:x | main:c | main:d=xy:");
    EXPECT_EQ(table_of(text), "main:a=12:Ouvrir | main:b=:x | main:c=12: | main:d=xy:");
    EXPECT_EQ(table_of("GROUP m a { \"1:\" \"x\" } POSNR b { \"2:\" \"y\" }", 1),
              "m:a=1:x | m:b=y");
}

TEST_F(LangLoad, NamesWhatIsWrong)
{
    const std::string good = "GROUP g\n a { \"1\" }\n";
    EXPECT_EQ(complaints(good + "language 5\n group { b { \"2\" } ctime x { \"9\" }"),
              "_lang_load: ERROR: line 3 expected STRING\n"
              "_lang_load: ERROR: line 4 expected STRING\n"
              "_lang_load: ERROR: id(256) line 4 expected NUMERIC\n");
    EXPECT_EQ(complaints(good + "default ascii } 7"),
              "_lang_load: ERROR line 3 illegal token 20008\n"
              "_lang_load: ERROR line 3 illegal token 20003\n"
              "_lang_load: ERROR line 3 illegal token 125\n"
              "_lang_load: ERROR line 3 illegal token 262\n");
    EXPECT_EQ(complaints(good + "b\n\"2\" }"), "_lang_load: ERROR: line 4 '{' expected (257)\n");
    EXPECT_EQ(complaints(good + "b { c }"), "_lang_load: ERROR: line 3 string expected (256)\n");
    EXPECT_EQ(complaints(good + "b { \"2\""), "_lang_load: ERROR: line 3 unexpected end of file\n");
    EXPECT_EQ(complaints(good + "b { \"2\n\" }"),
              "_lang_load: ERROR: line 3 string expected (-4)\n");
    EXPECT_EQ(complaints(good + "b { \"\\q\" }"),
              "_lang_load: ERROR: line 3 string expected (1)\n");
}

TEST_F(LangLoad, KeepsTheEntriesBeforeAnError)
{
    for (const char *bad : {"b \"2\" }", "b { c }", "b { \"2\"", "b { \"2\n\" }"})
        EXPECT_EQ(table_of("GROUP g a { \"1\" } " + std::string(bad) + " GROUP h z { \"3\" }"),
                  "g:a=1")
            << bad;
}

TEST_F(LangLoad, NeedsAGroup)
{
    write_file("test.lang", "a { \"1\" } GROUP \"\" \"\" {");
    __dbg_printf_on__ = 1;
    log_capture log;
    const std::string printed = capture_stdout([] { EXPECT_EQ(lang_load_file("test.lang"), -1); });
    __dbg_printf_on__ = 0;
    const std::string missing = "_lang_load: ERROR in language file missing group\n";
    EXPECT_EQ(printed, missing + "_lang_load: token->lexeme >a<\n" + missing +
                           "_lang_load: token->lexeme >1<\n" + missing);
    EXPECT_EQ(log.text(), "_lang_load: entry file >test.lang<\n"
                          "_lang_load: read file >test.lang<\n"
                          "_lang_load: open file ->test.lang<-\n" +
                              missing +
                              "_lang_load: token->lexeme >a<\n"
                              "_lang_load: ERROR line 1 illegal token 123\n" +
                              missing +
                              "_lang_load: token->lexeme >1<\n"
                              "_lang_load: ERROR line 1 illegal token 125\n" +
                              missing +
                              "_lang_load: ERROR line 1 illegal token 123\n"
                              "_lang_load: close file ->test.lang<-\n"
                              "_lang_load: ERROR language list null ptr\n");
}

TEST_F(LangLoad, ReadsADirectory)
{
    std::filesystem::create_directories("texts/none.lang");
    write_file("texts/a.lang", "LANGUAGE a GROUP g x { \"1\" } broken");
    write_file("texts/b.lang", "LANGUAGE b no-group { \"9\" } GROUP g y { \"2\" }");
    write_file("texts/c.lang.bak", "GROUP g z { \"3\" }");
    ASSERT_EQ(mkfifo("texts/pipe.lang", 0600), 0); // opening it would wait for a writer
    const handle_guard handle(lang_new("texts"));
    EXPECT_EQ(table(handle.get()), "g:x=1 | g:y=2") << "each file begins without a group";
    EXPECT_TRUE(handle->language[0] == 'a' || handle->language[0] == 'b');

    std::filesystem::create_directory("empty");
    log_capture log;
    EXPECT_EQ(lang_load_file("empty"), -1);
    EXPECT_EQ(log.text(), "_lang_load: entry file >empty<\n_lang_load: read dir >empty<\n"
                          "_lang_load: ERROR language list null ptr\n");
}

TEST_F(LangLoad, AnswersForEveryFailure)
{
    log_capture log;
    EXPECT_EQ(lang_load_file(nullptr), 1);
    EXPECT_EQ(lang_new(nullptr), nullptr);
    const handle_guard missing(lang_new("no.lang"));
    ASSERT_NE(missing, nullptr);
    EXPECT_EQ(missing->loaded, 0);
    EXPECT_EQ(log.text(), "_lang_load: entry no file name given > exit\n"
                          "_lang_new: ERROR: no file name given\n"
                          "_lang_load: entry file >no.lang<\n"
                          "_lang_load: read file >no.lang<\n"
                          "_lang_load: open file ->no.lang<-\n"
                          "zel_lex_buf_file_new: ERROR open file >no.lang<\n"
                          "_lang_load: ERROR open file ->no.lang<-\n"
                          "_lang_load: ERROR language list null ptr\n"
                          "_lang_new: ERROR: not enough memory\n");
}

TEST_F(LangLoad, LoadsAgainAndLetsGo)
{
    load_process_wide("LANGUAGE a FORMAT ascii CTIME 7 GROUP g x { \"1\" }");
    EXPECT_EQ(lang_get_ctime(), 7u);
    write_file("other.lang", "GROUP g y { \"2\" }");
    EXPECT_EQ(lang_load_file("other.lang"), 0);
    EXPECT_EQ(table(&lang), "g:y=2");
    EXPECT_STREQ(lang.language, "a") << "what the new file does not say stays";

    EXPECT_EQ(lang_load_file("no.lang"), -1);
    EXPECT_EQ(table(&lang), "g:y=2") << "a failed load leaves the table";
    EXPECT_STREQ(_lang_get_string("g", "y", "f", 1), "y") << "but does not answer from it";

    lang_ref_inc(&lang);
    EXPECT_EQ(lang.ref_count, 1);
    lang_ref_dec(&lang);
    lang_sym_system_set("X", "1");
    lang_free(&lang, 0);
    EXPECT_EQ(lang.loaded, 0);
    EXPECT_EQ(lang_symbols, nullptr);
    lang_de_init();
    const lang_handle_t zero{};
    EXPECT_EQ(std::memcmp(&lang, &zero, sizeof zero), 0);
}

TEST_F(LangLoad, ParsesOneFileForOthers)
{
    write_file("one.lang", "GROUP g x { \"1\" }");
    write_file("two.lang", "LANGUAGE z GROUP g y { default \"2\" }");
    const zel_lex_guard lex(
        zel_lex_new(zel::compiled_keywords,
                    LEX_NUMBER_ONE_KIND | LEX_KEYWORD_NOCASE | LEX_ESCAPES | LEX_NEWLINE_SPACE));
    lang_handle_t handle{};
    handle.entries = _lang_load_parse_file(&handle, nullptr, lex.get(), "one.lang");
    handle.entries = _lang_load_parse_file(&handle, handle.entries, lex.get(), "two.lang");
    handle.entries = _lang_load_parse_file(&handle, handle.entries, lex.get(), nullptr);
    ASSERT_EQ(zel_list_count(handle.entries), 2);
    const auto *last = static_cast<const lang_text_t *>(handle.entries->next->data);
    EXPECT_STREQ(last->key, "g:y");
    EXPECT_STREQ(last->value, "2");
    EXPECT_EQ(last->is_default, 1);
    std::free(handle.language);
    lang_free(&handle, 0);
}

// Keys that are hard on a sort: one in front of another, long common beginnings, the same again and
// again, bytes above 127. The table must be what a stable sort by strcmp makes of them, and every
// key must answer from the slot that a bisection reaches.
TEST_F(LangLoad, SortsLikeAStableSort)
{
    std::mt19937 random(5);
    for (const std::size_t size : {1u, 2u, 3u, 30u, 1000u, 20000u}) {
        std::string text = "GROUP \"g\"\n";
        std::vector<std::pair<std::string, std::string>> expected;
        for (std::size_t i = 0; i < size; ++i) {
            std::string item(random() % 3 == 0 ? random() % 40 : 0, 'a');
            for (std::size_t n = random() % 6; n > 0; --n)
                item += "ab\xC3\xA4~"[random() % 5];
            if (random() % 50 == 0)
                item += std::string(3000, 'z');
            const std::string value = std::to_string(i);
            text += "\"" + item + "\" { \"" + value + "\" }\n";
            expected.emplace_back("g:" + item, value);
        }
        std::stable_sort(expected.begin(), expected.end(), [](const auto &a, const auto &b) {
            return std::strcmp(a.first.c_str(), b.first.c_str()) < 0;
        });
        const handle_guard handle = load(text);
        ASSERT_EQ(handle->count, static_cast<int>(size) + 2);
        for (std::size_t i = 0; i < size; ++i) {
            const lang_text_t &slot = handle->lang[i + 1];
            ASSERT_EQ(slot.key, expected[i].first);
            ASSERT_EQ(slot.value, expected[i].second);
            const zel::lang_key key(slot.key);
            ASSERT_EQ(zel::lang_table_find(handle.get(), key),
                      zel::lang_table_bisect(handle.get(), key.text));
        }
    }
}

using LangLoadSlow = LangLoad;

TEST_F(LangLoadSlow, ReadsTheSameInEveryLocale)
{
    if (!zel_test::in_each_locale([](const char *name) {
            const handle_guard handle =
                load("FORMAT ASCII LANGUAGE \"Italian\" CTIME 100 SRC_MTIME 200 "
                     "GROUP MAIN \"File\" { DEFAULT \"Datei\" }");
            EXPECT_EQ(table(handle.get()), "MAIN:File=Datei*") << name;
            EXPECT_EQ(handle->format, LANG_FORMAT_ASCII) << name;
            EXPECT_EQ(handle->ctime, 200u) << name;
        }))
        GTEST_SKIP() << "no localedef or no definitions of locales";
}

// Whatever is cut off or changed, the load ends, and what came before the damage is there.
TEST_F(LangLoadSlow, SurvivesAnyBytes)
{
    const std::string text =
        "/* x */ FORMAT UTF8 LANGUAGE \"d\" CTIME 12 GROUP \"main\"\n"
        "  \"a\" {\n    \"1\"    }\n  \"b\\\"\" {\n   default    \"2\\x41\"    }\n";
    const std::size_t first_end = text.find('}') + 1;
    for (std::size_t end = 0; end <= text.size(); ++end) {
        const handle_guard handle = load(text.substr(0, end));
        ASSERT_EQ(handle->loaded, end >= first_end ? 1 : 0) << end;
    }
    std::mt19937 random(7);
    for (int round = 0; round < 1000; ++round) {
        std::string bad = text;
        for (std::size_t n = random() % 4 + 1; n > 0; --n)
            bad[random() % bad.size()] = static_cast<char>(random());
        const handle_guard handle = load(bad);
        EXPECT_NE(_lang_get_str(handle.get(), "main", "a", "f", 1), nullptr);
    }
}
