// The library in a process whose memory runs out, at every allocation in turn: its host goes on,
// requests answer with a translation or with the item, and nothing is lost to the host's memory.

#include "failing-memory.h"
#include "family/cfg_file_name.h"
#include "family/file_mem.h"
#include "family/info.h"
#include "family/lex-misc.h"
#include "family/list.h"
#include "family/string-copy.h"
#include "family/string.h"
#include "langlib/lang-load.h"
#include "langlib/lang-locale.h"
#include "langlib/lang-request.h"
#include "lex/min_lex.h"
#include "source/model.h"
#include "support/log.h"
#include "support/time.h"
#include "working-dir.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

// What the code under test did wrong; it must not allocate, since there may be no memory.
const char *complaint;

void expect(bool good, const char *what)
{
    if (!good && complaint == nullptr)
        complaint = what;
}

bool same(const char *a, const char *b) { return a != nullptr && std::strcmp(a, b) == 0; }

bool one_of(const char *text, const char *a, const char *b)
{
    return same(text, a) || same(text, b);
}

// A new string that is one of two texts, or null without memory.
void expect_new(char *text, const char *a, const char *b, const char *what)
{
    expect(text == nullptr || one_of(text, a, b), what);
    std::free(text);
}

class Faults : public zel_test::working_dir {
protected:
    void SetUp() override
    {
        if (!zel_test::memory_can_fail())
            GTEST_SKIP() << "the sanitizer's allocator cannot be replaced";
    }

    Faults()
    {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDERR_FILENO); // what is reported without memory
        close(nowhere);
    }
    ~Faults() override { dup2(standard_error_, STDERR_FILENO); }

    // Runs the scenario with every one of its allocations failing in turn, alone and with all that
    // follow, until it needs no more of them.
    template <class Scenario>
    static void fail_everywhere(Scenario &&scenario)
    {
        scenario();
        std::size_t points = 0;
        for (const bool forever : {false, true}) {
            std::size_t n = 0;
            do {
                ++n;
                complaint = nullptr;
                const std::size_t before = zel_test::blocks_in_use();
                {
                    const zel_test::failing_memory memory(n, forever);
                    scenario();
                }
                EXPECT_TRUE(complaint == nullptr) << complaint << ", allocation " << n;
                scenario(); // what the system's library keeps is there again
                EXPECT_EQ(zel_test::blocks_in_use(), before) << "leak, allocation " << n;
            } while (zel_test::memory_has_failed() && !HasFailure());
            EXPECT_GT(n, 5U) << "as if there were nothing to allocate";
            points += n - 1;
        }
        if (std::getenv("LANG_FAULTS_SHOW") != nullptr && !HasFailure())
            std::printf("%-18s %6zu allocations failed, no losses\n",
                        testing::UnitTest::GetInstance()->current_test_info()->name(), points);
    }

private:
    int standard_error_ = dup(STDERR_FILENO);
};

// Long texts, long names, and more entries than one piece of the store holds.
void write_compiled_files()
{
    std::string text = "FORMAT UTF8 LANGUAGE \"german\" POSNR CTIME 1 GROUP \"g\" "
                       "\"Open\" { \"Oeffnen\" } \"%s\" { \"%d %s\" } \"%WHO%\" { \"Wer %WHO%\" } "
                       "\"d\" { default \"1:\" \"stand-in\" } \"long\" { \"";
    text += std::string(20000, 'l') + "\" \"" + std::string(9000, 'm') + "\" } GROUP \"" +
            std::string(6000, 'g') + "\" ";
    for (int i = 0; i < 4; ++i)
        text += "\"item " + std::to_string(i) + "\" { \"" + std::string(3000, 't') + "\" }\n";
    std::filesystem::create_directory("texts");
    zel_test::write_file("texts/a.lang", text);
    zel_test::write_file("texts/b.lang", "GROUP h x { \"1\" }");
}

void ask_everything(lang_handle_t *handle)
{
    expect(one_of(_lang_get_str(handle, "g", "Open", "f", 1), "Oeffnen", "Open"), "a request");
    expect(same(_lang_get_str(handle, "g", "none", "f", 1), "none"), "a missing text");
    if (handle != nullptr)
        return;
    // The translation's conversions are others than the item's: it may never come as it is.
    expect(one_of(lang_get_fmt("formater=%25s", "g", "%s"), " d  s", "%s"), "a format");
    expect(lang_check_string("g", "none") == 0, "a check");
}

TEST_F(Faults, ANewSourceIsQuiet)
{
    const auto make_two = [] {
        for (int i = 0; i < 2; ++i) {
            LangSource *source = lang_alloc_group();
            lang_free_group(&source);
        }
    };
    EXPECT_EQ(zel_test::capture_stderr([&] { fail_everywhere(make_two); }), "");
}

TEST_F(Faults, LoadingAndAsking)
{
    write_compiled_files();
    fail_everywhere([] {
        lang_load_file("texts");
        ask_everything(nullptr);
        lang_load_file("texts/b.lang"); // in its place
        expect(one_of(lang_get_string("h", "x"), "1", "x"), "a request after loading again");
        lang_de_init();
        lang_handle_t *handle = lang_new("texts/a.lang");
        ask_everything(handle);
        if (handle != nullptr)
            lang_free(handle, 1);
        handle = lang_import_new("texts/a.lang");
        expect(handle == nullptr || handle->loaded == 0 ||
                   _lang_get_str(handle, "g", "d", "f", 1) == nullptr,
               "a stand-in is imported");
        if (handle != nullptr)
            lang_free(handle, 1);
    });
}

TEST_F(Faults, TheBestOfADirectory)
{
    std::filesystem::create_directories("texts/at-edit");
    zel_test::write_file("texts/at-edit/at.lang", "LANGUAGE \"de_AT\" GROUP g a { default \"A\" }");
    zel_test::write_file("texts/german.lang", "LANGUAGE \"german\" GROUP g a { \"A-DE\" }");
    fail_everywhere([] {
        lang_locale_choose("texts", "de_AT");
        const char *text = lang_get_string("g", "a");
        expect(one_of(text, "A-DE", "a") || same(text, "A"), "a request");
        expect(one_of(lang_plural("one|few|other", 1), "one", "other"), "a form");
        expect(one_of(lang_plural("one|other", 1), "one", "other"), "a form");
        const int count = lang_locale_list("texts", nullptr, nullptr);
        expect(count >= -1 && count <= 2, "a list");
        lang_de_init();
    });
}

TEST_F(Faults, PrintingATable)
{
    write_compiled_files();
    lang_load_file("texts");
    std::FILE *out = std::fopen("dump.xml", "w");
    std::setvbuf(out, nullptr, _IONBF, 0);
    const std::size_t size = [out] {
        lang_debug_print(out, nullptr);
        return static_cast<std::size_t>(std::ftell(out));
    }();
    std::rewind(out);
    {
        const zel_test::failing_memory memory(1, true);
        lang_debug_print(out, nullptr);
    }
    EXPECT_EQ(static_cast<std::size_t>(std::ftell(out)), size) << "it needs no memory at all";
    std::fclose(out);
    lang_de_init();
}

TEST_F(Faults, Symbols)
{
    write_compiled_files();
    lang_load_file("texts");
    fail_everywhere([] {
        zel_list *list = lang_sym_set(nullptr, "WHO", "Ada", 0);
        const bool has_who = list != nullptr;
        char name[] = "NAME00";
        for (int i = 0; i < 20; ++i) {
            name[5] = static_cast<char>('A' + i);
            list = lang_sym_set(list, name, "value", 0);
        }
        list = lang_sym_set(list, "WHO", "Eva", 0);
        expect(!has_who || one_of(lang_sym_get(list, "WHO"), "Ada", "Eva"), "a symbol is lost");
        for (const zel_list *node = list; node != nullptr; node = node->next) {
            const auto *symbol = static_cast<const lang_sym_t *>(node->data);
            expect(symbol->name != nullptr && symbol->value != nullptr, "half a symbol");
        }
        if (has_who)
            expect_new(_lang_rep_sym(list, "%WHO%!"), "Ada!", "Eva!", "a substitution");
        expect_new(lang_sym(list, "note", "g", "none"), "none", "none", "a text with symbols");
        lang_sym_free(list);
        list = lang_sym_system_set("SYSTEM", "s");
        expect(list == nullptr || same(lang_sym_get(nullptr, "PERCENT"), "%"), "no PERCENT");
        lang_free(nullptr, 0);
    });
    lang_de_init();
}

TEST_F(Faults, InfoRecords)
{
    fail_everywhere([] {
        zel_info_t *record = nullptr;
        for (int i = 0; i < 3; ++i)
            record = lang_get_info(nullptr, &record, i, i, "g", "activity", "message");
        zel_info_add(&record, 7, 7, "m", "a", "msg", "oa", "om");
        expect(record == nullptr || record->worst == nullptr ||
                   record->worst == zel_list_last(record->entries)->data,
               "the worst entry is none of the list");
        for (const zel_list *node = record == nullptr ? nullptr : record->entries; node != nullptr;
             node = node->next) {
            const auto *entry = static_cast<const zel_info_entry_t *>(node->data);
            for (const char *text :
                 {entry->modul, entry->activity, entry->msg, entry->o_activity, entry->o_msg})
                expect(text != nullptr, "an entry without a text");
        }
        zel_info_free(record);
    });
}

TEST_F(Faults, Messages)
{
    fail_everywhere([] {
        zel_list *list = min_lex_split_msg(nullptr, "a=1;b=%41;c", ';', '=');
        list = min_lex_split_msg(list, "d=4;a=5", ';', '=');
        std::int32_t number = 0;
        list = min_lex_split_msg_get_int_free(list, "a", &number, 1);
        expect(number == 1 || number == 5, "an element's number");
        char *text = nullptr;
        list = min_lex_split_msg_get_str_free(list, "b", &text, "A");
        expect_new(text, "A", "A", "an element's text");
        list = min_lex_split_msg(list, "e;f", ';', '=');
        min_lex_split_msg_free(list);
        min_lex_split_str_by_sep_free(min_lex_split_str_by_sep(nullptr, "a,,b", ','));

        std::int32_t width = 0;
        char *title = nullptr;
        min_lex_split_msg_get_ext("width=640;title=x", ';', '=', "width", MIN_LEX_TYPE_INT, &width,
                                  640, "title", MIN_LEX_TYPE_STR, &title, "x",
                                  static_cast<const char *>(nullptr));
        expect(width == 640, "an output's number");
        expect_new(title, "x", "x", "an output's text");
    });
}

TEST_F(Faults, RequestsOfScripts)
{
    const std::string call = "(\"" + std::string(9000, 'g') + "\", \"item\")";
    fail_everywhere([&call] {
        const zel_lex_guard lex(zel_lex_new(nullptr, LEX_ESCAPES | LEX_NEWLINE_SPACE));
        const zel_lex_buf_guard buf(
            zel_lex_buf_mem_new(call.data(), static_cast<std::uint32_t>(call.size())));
        if (lex == nullptr || buf == nullptr)
            return;
        zel_lex_set_buf(lex.get(), buf.get());
        expect_new(zel_lex_lang_get(lex.get()), "item", "item", "a script's request");
    });
}

TEST_F(Faults, SmallHelpers)
{
    std::filesystem::create_directories("cfg/sub/001-000");
    zel_test::write_file("cfg/sub/001-000/000-000-00-name", "x");
    fail_everywhere([] {
        char path[64];
        if (gen_check_cfg_file_name(path, sizeof path, "cfg", "sub", 1, 2, 3, 4, 5, "name") == 0)
            expect(same(path, "cfg/sub/001-000/000-000-00-name"), "a configuration file");
        char date[16];
        snprintf_date(date, sizeof date, "%S", 0);
        expect(same(date, "00"), "a date");
        const trans_id_t table[] = {{"a", 1}, {"b", 4}, {nullptr, 0}};
        expect(trans_str_mask(table, "a,b") == 5, "a mask");
        key_val *pair = key_val_new("key", "value");
        expect(pair == nullptr || (same(pair->key, "key") && same(pair->val, "value")),
               "half a pair");
        key_val_free(pair);
        zel_file_mem_t *mem = zel_file_mem_append(nullptr, "0123456789", -1);
        const std::int64_t size = zel_file_mem_size(mem);
        mem = zel_file_mem_append(mem, "0123456789", -1);
        expect(size == 0 || zel_file_mem_size(mem) == 20 || mem->error == 1, "a piece is lost");
        expect(zel_file_mem_size(mem) >= size, "data is lost");
        zel_file_mem_free(mem);
        if (char *owned = zel_strdup("a"))
            expect_new(_zel_str_add(owned, "b", "f", 1), "ab", "a", "a grown string");
        expect_new(_zel_strdup_add("a", "b"), "ab", "ab", "two strings");
        expect_new(zel_strdup_printf("%d", 7), "7", "7", "a formatted string");
    });
    LogOpen("log", LOG_OPEN_NEW, "");
    {
        const zel_test::failing_memory memory(1, false);
        expect_new(zel_substr("ab", 2, 1), "", "", "a part of a text");
    }
    {
        const zel_test::failing_memory memory(1, false);
        expect_new(zel_strdup("ab"), "", "", "a copy");
    }
    LogClose();
    EXPECT_THAT(zel_test::read_file("log"),
                testing::AllOf(testing::HasSubstr(" zel_substr: ERROR not enough"),
                               testing::HasSubstr("FATAL: zel_malloc:111 not enough memory")));
}

// Whatever a scanner's client reads through it, it can tell whether that was all.
TEST_F(Faults, AReaderKnowsWhatItMissed)
{
    const std::string text = "# 1 \"" + std::string(2000, 'f') + "\"\nword \"" +
                             std::string(9000, 's') + "\" \"more\" 12 \"last\" " +
                             std::string(9000, 'w') + " \"\\n\"";
    fail_everywhere([&text] {
        const unsigned copies = zel::failed_copies();
        const zel_lex_guard lex(
            zel_lex_new(nullptr, LEX_ESCAPES | LEX_NEWLINE_SPACE | LEX_LINE_MARKERS));
        const zel_lex_buf_guard buf(
            zel_lex_buf_mem_new(text.data(), static_cast<std::uint32_t>(text.size())));
        if (lex == nullptr || buf == nullptr)
            return;
        zel_lex_set_buf(lex.get(), buf.get());
        const bool named = zel_next_token(lex.get())->file_index == 0 &&
                           lex->marker_files[0] != nullptr &&
                           std::strlen(lex->marker_files[0]) == 2000;
        char *joined = nullptr;
        lex_get_concat_str(lex.get(), &joined);
        const std::size_t length = joined == nullptr ? 0 : std::strlen(joined);
        std::free(joined);
        zel_next_token(lex.get());
        char *last = nullptr;
        lex_get_str(lex.get(), &last);
        const bool has_last = same(last, "last");
        std::free(last);
        const bool long_word = zel_next_token(lex.get())->length == 9000;
        const bool escaped = zel_next_token(lex.get())->lexeme[0] == '\n';
        const bool whole = named && length == 9004 && has_last && long_word && escaped;
        const bool told = zel_lex_out_of_memory(lex.get()) != 0 || zel::failed_copies() != copies;
        expect(whole != told,
               whole ? "a complete read counts as cut" : "a cut read counts as whole");
        for (int i = 0; i < 100; ++i)
            if (zel_next_token(lex.get())->id == TOKEN_EOF)
                return;
        expect(false, "the scanner stands still");
    });
}

} // namespace
