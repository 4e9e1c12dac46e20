#include "family/lex-misc.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "lex/scan.h"
#include "support/string-copy.h"
#include "working-dir.h"

using namespace scan_test;

namespace {

// What a function writes to a stream.
template <class Write>
std::string written(Write write)
{
    char *text = nullptr;
    std::size_t size = 0;
    std::FILE *stream = open_memstream(&text, &size);
    write(stream);
    std::fclose(stream);
    std::string out(text, size);
    std::free(text);
    return out;
}

// --- word tables ---------------------------------------------------------------------------------

const trans_id_t bits[] = {{"a", 1}, {"b", 4}, {"a", 8}, {"none", 0}, {nullptr, 99}};

TEST(WordTables, TheFirstRowThatMatchesOrTheDefault)
{
    EXPECT_EQ(trans_str_id(bits, "a", -7), 1); // row 0 counts
    EXPECT_EQ(trans_str_id(bits, "A", -7), -7);
    EXPECT_EQ(trans_str_id(bits + 4, "a", -7), -7);
    EXPECT_STREQ(trans_id_str(bits, 8, "?"), "a");
    EXPECT_STREQ(trans_id_str(bits, 99, "?"), "?");
    EXPECT_EQ(trans_id_str(bits, 2, nullptr), nullptr);
    const trans_str_t names[] = {{"de", "german"}, {"fr", "french"}, {"de", "no"}, {nullptr, "x"}};
    EXPECT_STREQ(trans_str_str(names, "de", "?"), "german");
    EXPECT_STREQ(trans_str_str(names, "it", "?"), "?");
    EXPECT_STREQ(trans_str_str(names, nullptr, "?"), "?");
}

TEST(WordTables, AMaskIsAListOfWords)
{
    EXPECT_EQ(trans_str_mask(bits, "a,b"), 5U);
    EXPECT_EQ(trans_str_mask(bits, "a,,x"), 1U);
    EXPECT_EQ(trans_str_mask(bits, "b,"), 4U);
    EXPECT_EQ(trans_str_mask(bits, "a, b"), 1U); // blanks belong to the word
    EXPECT_EQ(trans_str_mask(bits, ""), 0U);
    const std::string wide(263, 'w');
    const std::string wider(1000, 'w');
    const trans_id_t rows[] = {{wide.c_str(), 2}, {wider.c_str(), 16}, {nullptr, 0}};
    EXPECT_EQ(trans_str_mask(rows, wide.c_str()), 2U);
    EXPECT_EQ(trans_str_mask(rows, wider.c_str()), 16U); // compared whole
    EXPECT_EQ(trans_str_mask(rows, (wider + "w").c_str()), 0U);
}

// --- strings and integers from the tokens --------------------------------------------------------

TEST(FromTokens, AString)
{
    const scanner from("\"one\" \"\" 3", escapes);
    char *out = zel_strdup("old");
    EXPECT_EQ(lex_get_str(from.lex(), &out), 0);
    EXPECT_STREQ(out, "one");
    EXPECT_EQ(lex_get_str(from.lex(), &out), 0); // the empty one is taken
    EXPECT_EQ(out, nullptr);
    out = zel_strdup("old");
    EXPECT_EQ(lex_get_str(from.lex(), &out), 1);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(describe(from.next()), "258:3"); // left in place
}

TEST(FromTokens, ARunOfStrings)
{
    const std::string big(9000, 'x');
    const scanner from("\"a\" \"\"\n\"b\\n\" \"" + big + "\" word \"\" \"\"", escapes);
    char *out = zel_strdup("old");
    EXPECT_EQ(lex_get_concat_str(from.lex(), &out), 0);
    EXPECT_EQ(out, "ab\n" + big);
    EXPECT_EQ(lex_get_concat_str(from.lex(), &out), 1);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(describe(from.next()), "256:word");
    EXPECT_EQ(lex_get_concat_str(from.lex(), &out), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(from.next()->id, TOKEN_EOF);
}

TEST(FromTokens, AnInteger)
{
    const scanner from("42 0x1F 017 4294967295 word 1.5", escapes);
    unsigned value = 7;
    for (unsigned wanted : {42U, 31U, 15U, 4294967295U}) {
        EXPECT_EQ(lex_get_int(from.lex(), &value), 0);
        EXPECT_EQ(value, wanted);
    }
    EXPECT_EQ(lex_get_int(from.lex(), &value), 1);
    EXPECT_EQ(describe(from.next()), "256:word");
    EXPECT_EQ(lex_get_int(from.lex(), &value), 1);
    EXPECT_EQ(describe(from.next()), "261:1.5");

    const scanner one_kind("12 0x1F 017", escapes | LEX_NUMBER_ONE_KIND);
    for (unsigned wanted : {12U, 0U, 17U}) { // all are read as decimal there
        EXPECT_EQ(lex_get_int(one_kind.lex(), &value), 0);
        EXPECT_EQ(value, wanted);
    }
}

TEST(FromTokens, SkippingToAToken)
{
    const scanner from("a b ( c ; d\ne ; \"open\nf", LEX_ESCAPES);
    zel_lex_read_until_token(from.lex(), ';');
    EXPECT_EQ(describe(from.next()), "256:d");
    zel_lex_read_until_token(from.lex(), ';'); // stops behind the line feed
    EXPECT_EQ(describe(from.next()), "256:e");
    zel_lex_read_until_token(from.lex(), 256);
    EXPECT_EQ(describe(from.next()), "-1"); // over the broken string, up to the f
    zel_lex_read_until_token(from.lex(), ';');
    EXPECT_EQ(from.next()->id, TOKEN_EOF);
    zel_lex_read_until_token(nullptr, ';');
    zel_lex_read_until_token(zel_lex_guard(zel_lex_new(nullptr, 0)).get(), ';'); // without an input
}

// --- where the text comes from -------------------------------------------------------------------

class PlacesOfFiles : public zel_test::working_dir {};

TEST_F(PlacesOfFiles, WhatAScannerReads)
{
    EXPECT_STREQ(zel_lex_get_file(nullptr), "Lex null ptr");
    const zel_lex_guard lex(zel_lex_new(nullptr, 0));
    EXPECT_STREQ(zel_lex_get_file(lex.get()), "Lexbuf null ptr");
    zel_lex_set_buf(lex.get(), zel_lex_buf_mem_new("x", 1));
    EXPECT_STREQ(zel_lex_get_file(lex.get()), "Memory");
    zel_lex_free_buf(lex.get());
    zel_test::write_file("in.txt", "x");
    zel_lex_set_buf(lex.get(), zel_lex_buf_file_new("in.txt"));
    EXPECT_STREQ(zel_lex_get_file(lex.get()), "in.txt");
    zel_lex_free_buf(lex.get());
    zel_lex_set_buf(lex.get(), zel_lex_buf_file_new(nullptr));
    EXPECT_STREQ(zel_lex_get_file(lex.get()), "No file name");
    zel_lex_free_buf(lex.get());
    zel_lex_set_buf(lex.get(), zel_lex_buf_new());
    EXPECT_STREQ(zel_lex_get_file(lex.get()), "ERROR");
    zel_lex_free_buf(lex.get());
}

// --- text ----------------------------------------------------------------------------------------

TEST(Text, Escaping)
{
    char out[64];
    EXPECT_EQ(_lex_esc_str(out, "a\r\n\t\"\\\xff'"), 13);
    EXPECT_STREQ(out, "a\\r\\n\\t\\\"\\\\\xff'");
    EXPECT_EQ(_lex_esc_str(nullptr, "a\r\n\t\"\\\xff'"), 13);
    EXPECT_EQ(_lex_esc_str(out, ""), 0);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(zel_test::take(lex_esc_str("say \"hi\"\n")), "say \\\"hi\\\"\\n");
    EXPECT_EQ(zel_test::take(lex_esc_str("")), "(null)");
}

TEST(Text, TrimmingBlanksAndTabs)
{
    const auto trim = [](std::string text) { return std::string(lexstrtrim(text.data())); };
    EXPECT_EQ(trim(" \t a b\t "), "a b");
    EXPECT_EQ(trim("a"), "a");
    EXPECT_EQ(trim(" \n "), "\n"); // only those two
    EXPECT_EQ(trim(" \t "), "");
    EXPECT_EQ(trim(""), "");
}

TEST(Text, CharactersOfAnId)
{
    const std::string never = " \t\n\v\f\r!\"$%&()-/=?\\|";
    for (int c = 1; c < 256; c++) {
        const bool digit = c >= '0' && c <= '9';
        const bool valid = never.find(static_cast<char>(c)) == std::string::npos;
        EXPECT_EQ(lex_id_char_valid(c, 1), valid ? 1 : 0) << c;
        EXPECT_EQ(lex_id_char_valid(c, 0), valid && !digit ? 1 : 0) << c;
    }
}

// --- writing -------------------------------------------------------------------------------------

TEST(Writing, Characters)
{
    const auto one = [](int byte, int count) {
        return written([&](std::FILE *to) { EXPECT_EQ(lex_write_char(to, byte), count); });
    };
    EXPECT_EQ(one('\t', 2) + one('\n', 2) + one('\r', 2) + one('"', 2) + one('\\', 2),
              "\\t\\n\\r\\\"\\\\");
    EXPECT_EQ(one(0, 0) + one('a', 1) + one(0xff, 1), "a\xff");
}

TEST(Writing, Strings)
{
    const auto text = [](const char *value, int n, int count) {
        return written([&](std::FILE *to) { EXPECT_EQ(lex_write_str(to, value, n), count); });
    };
    EXPECT_EQ(text("a\"b", 0, 6), " \"a\\\"b\"");
    EXPECT_EQ(text("abc", 2, 4), " \"ab\"");
    EXPECT_EQ(text("", 0, 2), " \"\"");
    EXPECT_EQ(text(nullptr, 5, 0), " \"\"");
}

std::string split(const std::string &text, int indent, char separator, int column, int count)
{
    return written([&](std::FILE *to) {
        EXPECT_EQ(lex_write_split_str_by_sep(to, indent, text.c_str(), separator, column), count);
    });
}

TEST(Writing, SplitAtTheSeparator)
{
    EXPECT_EQ(split("a=1;b;c", 4, ';', 9, 6 + 4 + 3), " \"a=1;\"\n     \"b;\"\n     \"c\"\n");
    EXPECT_EQ(split("a;b;", 2, ';', 0, 4 + 4), "   \"a;\"\n   \"b;\"\n");
    EXPECT_EQ(split("a\n\"b\"", 0, 0, 0, 2 + 8), " \"a\\n\\\"b\\\"\"\n");
    EXPECT_EQ(split("", 4, ';', 0, 1), "\"\"\n");
}

TEST(Writing, SplitAtTheLength)
{
    const std::string x(1024, 'x');
    EXPECT_EQ(split(x + x + std::string(452, 'y'), 3, 0, 5, 2500 + 6),
              " \"" + x + "\"\n    \"" + x + "\"\n    \"" + std::string(452, 'y') + "\"\n");
    EXPECT_EQ(split(x, 3, 0, 5, 1026), " \"" + x + "\"\n");
}

TEST(Writing, WhatIsSplitReadsBack)
{
    std::string text;
    for (int n = 1; n < 6000; n++)
        text += static_cast<char>(n % 255 + 1);
    for (char separator : {'\0', '\n', ';', '\\', '"'}) {
        const std::string out = written(
            [&](std::FILE *to) { lex_write_split_str_by_sep(to, 2, text.c_str(), separator, 0); });
        const scanner from(out, escapes);
        char *back = nullptr;
        EXPECT_EQ(lex_get_concat_str(from.lex(), &back), 0);
        EXPECT_EQ(back, text);
        zel::free_string(back);
    }
}

} // namespace
