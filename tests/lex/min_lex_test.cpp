#include "lex/min_lex.h"

#include <chrono>
#include <cstdarg>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "support/list.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "test-support.h"

using zel_test::capture_stdout;
using zel_test::take;

namespace {

// "id=value" and "id" of each element, separated by blanks; a value is in angle brackets.
std::string elements(zel_list *list)
{
    std::string text;
    for (; list != nullptr; list = list->next) {
        const auto *element = static_cast<const min_lex_elem_t *>(list->data);
        const char *value = min_lex_split_msg_val(element);
        text += std::string(text.empty() ? "" : " ") + min_lex_split_msg_id(element);
        if (value != nullptr)
            text += "=<" + std::string(value) + ">";
    }
    return text;
}

std::string split(const char *text, char separator = ';', char assignment = '=')
{
    const min_lex_msg_guard list(min_lex_split_msg(nullptr, text, separator, assignment));
    return list ? elements(list.get()) : "nothing";
}

std::string pieces(const char *text, char separator)
{
    zel_list *list = min_lex_split_str_by_sep(nullptr, text, separator);
    std::string all;
    for (zel_list *node = list; node != nullptr; node = node->next)
        all += "[" + std::string(static_cast<const char *>(node->data)) + "]";
    min_lex_split_str_by_sep_free(list);
    return all;
}

} // namespace

TEST(MinLexSplit, CutsIntoElements)
{
    EXPECT_EQ(split("a=1;b;c=x%3Dy"), "a=<1> b c=<x=y>");
    EXPECT_EQ(split("x="), "x=<>");
    EXPECT_EQ(split("x"), "x");
    EXPECT_EQ(split(";"), "");
    EXPECT_EQ(split("a;;b;"), "a  b");
    EXPECT_EQ(split("=v;a=b=c"), "=<v> a=<b=c>");
    EXPECT_EQ(split(" a %41 = b "), " a %41 =< b >") << "ids are kept as they are";
    EXPECT_EQ(split("a,b=1", ',', '\0'), "a b=1") << "without an assignment character";
    EXPECT_EQ(split(""), "nothing");
    EXPECT_EQ(split(nullptr), "nothing");
}

TEST(MinLexSplit, DecodesEscapesOfValues)
{
    EXPECT_EQ(split("v=%41%42"), "v=<AB>");
    EXPECT_EQ(split("v=%4"), "v=<@>");
    EXPECT_EQ(split("v=50%"), "v=<50>");
    EXPECT_EQ(split("v=%3b;b"), "v=<;> b");
    EXPECT_EQ(split("v=%;;b"), "v=<\xEF"
                               "b>")
        << "what is no digit counts 255";
    EXPECT_EQ(split("v=a%00b"), "v=<a>");
}

TEST(MinLexSplit, AppendsToAList)
{
    zel_list *list = min_lex_split_msg(nullptr, "a=1", ';', '=');
    list = min_lex_split_msg(list, "b;c=2", ';', '=');
    list = min_lex_split_msg(list, nullptr, ';', '=');
    const min_lex_msg_guard guard(list);
    EXPECT_EQ(elements(list), "a=<1> b c=<2>");
    EXPECT_EQ(capture_stdout([list] { min_lex_split_msg_print(stdout, list); }),
              " min_lex_split_msg_print\n---------------------\nID:  a\nVAL: 1\n"
              "---------------------\nID:  b\n---------------------\nID:  c\nVAL: 2\n"
              "---------------------\n");
}

// Lists of a caller's own making, and ends that other functions take away.
TEST(MinLexSplit, AppendsBehindWhateverIsTheEnd)
{
    auto *element = static_cast<min_lex_elem_t *>(std::malloc(sizeof(min_lex_elem_t)));
    *element = {zel_strdup2("own"), nullptr};
    zel_list *list = zel_list_append(nullptr, element);
    list = min_lex_split_msg(list, "a=1;b", ';', '=');
    for (const char *text : {"c", "d;e"}) {
        zel_list *last = zel_list_last(list);
        auto *gone = static_cast<min_lex_elem_t *>(last->data);
        for (void *part : {static_cast<void *>(gone->id), static_cast<void *>(gone->val),
                           static_cast<void *>(gone)})
            std::free(part);
        list = zel_list_remove_link(list, last);
        list = min_lex_split_msg(list, text, ';', '=');
    }
    list = zel_list_concat(list, min_lex_split_msg(nullptr, "f;g", ';', '='));
    list = min_lex_split_msg(list, "h", ';', '=');
    EXPECT_EQ(elements(list), "own a=<1> d e f g h");
    std::int32_t number = 0;
    list = min_lex_split_msg_get_int_free2(list, "own", &number);
    const min_lex_msg_guard guard(min_lex_split_msg(list, "i", ';', '='));
    EXPECT_EQ(elements(guard.get()), "a=<1> d e f g h i");
}

TEST(MinLexSplit, AppendsBehindWhateverWasTakenOut)
{
    zel_list *list = nullptr;
    for (const char *text : {"a=1;b=2", "c=3", "d=4;e=5"})
        list = min_lex_split_msg(list, text, ';', '=');
    std::int32_t number = 0;
    for (const char *id : {"a", "e", "d"}) // the first one, the last one twice
        list = min_lex_split_msg_get_int_free2(list, id, &number);
    list = min_lex_split_msg(list, "f;g", ';', '=');
    EXPECT_EQ(elements(list), "b=<2> c=<3> f g");
    for (const char *id : {"b", "c", "f", "g"})
        list = min_lex_split_msg_get_int_free2(list, id, &number);
    EXPECT_EQ(list, nullptr);
}

TEST(MinLexSplit, AnswersById)
{
    const min_lex_msg_guard list(min_lex_split_msg(nullptr, "n=12abc;bare;n=7;t=x y", ';', '='));
    std::int32_t number = -1;
    const char *text = nullptr;
    EXPECT_EQ(min_lex_split_msg_get_id(list.get(), "bare"), 1);
    EXPECT_EQ(min_lex_split_msg_get_id(list.get(), "Bare"), 0);
    EXPECT_EQ(min_lex_split_msg_get_id(list.get(), nullptr), 0);
    EXPECT_EQ(min_lex_split_msg_get_int(list.get(), "n", &number, 5), 1);
    EXPECT_EQ(number, 12);
    EXPECT_EQ(min_lex_split_msg_get_int(list.get(), "bare", &number, 5), 1);
    EXPECT_EQ(number, 5);
    EXPECT_EQ(min_lex_split_msg_get_int(nullptr, "n", &number, 6), 0);
    EXPECT_EQ(number, 6);
    EXPECT_EQ(min_lex_split_msg_get_str(list.get(), "t", &text, "none"), 1);
    EXPECT_STREQ(text, "x y");
    EXPECT_EQ(min_lex_split_msg_get_str(list.get(), "u", &text, "none"), 0);
    EXPECT_STREQ(text, "none");
    EXPECT_EQ(min_lex_split_msg_get_str(list.get(), "t", nullptr, "none"), 0);
}

TEST(MinLexSplit, TakesElementsOut)
{
    zel_list *list = min_lex_split_msg(nullptr, "a=1;b=two;c;d=4;e;f=six", ';', '=');
    std::int32_t number = 0;
    char *text = strdup("before");
    EXPECT_EQ(min_lex_split_msg_get_int_free(list, "a", nullptr, 9), list);
    list = min_lex_split_msg_get_int_free(list, "a", &number, 9);
    EXPECT_EQ(number, 1);
    list = min_lex_split_msg_get_str_free(list, "b", &text, "none");
    EXPECT_STREQ(text, "two");
    list = min_lex_split_msg_get_str_free(list, "c", &text, "none");
    EXPECT_STREQ(text, "none");
    list = min_lex_split_msg_get_int_free2(list, "d", &number);
    EXPECT_EQ(number, 4);
    list = min_lex_split_msg_get_int_free2(list, "e", &number);
    EXPECT_EQ(number, 4) << "no value leaves it";
    list = min_lex_split_msg_get_str_free2(list, "missing", &text);
    EXPECT_STREQ(text, "none");
    EXPECT_EQ(elements(list), "f=<six>");
    list = min_lex_split_msg_get_str_free2(list, "f", &text);
    EXPECT_EQ(take(text), "six");
    EXPECT_EQ(list, nullptr);
    list = min_lex_split_msg_get_int_free(list, "f", &number, 9);
    EXPECT_EQ(number, 9);
    EXPECT_EQ(list, nullptr);
}

TEST(MinLexSplit, FillsOutputsInOneCall)
{
    std::int32_t a = 0;
    char *b = nullptr;
    EXPECT_EQ(min_lex_split_msg_get_ext("b=hi", ';', '=', "a", MIN_LEX_TYPE_INT, &a, 5, "b",
                                        MIN_LEX_TYPE_STR, &b, "none", nullptr),
              0);
    EXPECT_EQ(a, 5);
    EXPECT_EQ(take(b), "hi");

    EXPECT_EQ(min_lex_split_msg_get_ext(nullptr, ';', '=', "a", MIN_LEX_TYPE_INT, &a, 6, "b",
                                        MIN_LEX_TYPE_STR, &b, "none", nullptr),
              1);
    EXPECT_EQ(a, 6);
    EXPECT_EQ(take(b), "none");
    EXPECT_EQ(min_lex_split_msg_get_ext("a=1", ';', '=', nullptr), 1);

    // The element without a value gives the fallback, the one with an empty text null.
    EXPECT_EQ(min_lex_split_msg_get_ext("a;b=", ';', '=', "a", MIN_LEX_TYPE_INT, &a, 7, "b",
                                        MIN_LEX_TYPE_STR, &b, "none", nullptr),
              0);
    EXPECT_EQ(a, 7);
    EXPECT_EQ(b, nullptr);
}

TEST(MinLexSplit, NumbersWrongGroups)
{
    std::int32_t a = 0;
    EXPECT_EQ(min_lex_split_msg_get_ext("a=1;b=2", ';', '=', "a", MIN_LEX_TYPE_INT, &a, 5, "b", 3,
                                        &a, 0, nullptr),
              6);
    EXPECT_EQ(a, 1) << "the group before it was filled";
    EXPECT_EQ(min_lex_split_msg_get_ext("a=1;b=2", ';', '=', "b", MIN_LEX_TYPE_INT, nullptr, 5, "a",
                                        MIN_LEX_TYPE_INT, &a, 9, nullptr),
              4);
    EXPECT_EQ(min_lex_split_msg_get_ext("a=1", ';', '=', "a", 0), 3);

    // Behind a group that is passed over because its id is missing, outputs are filled, although
    // the fallbacks stopped there.
    char *text = nullptr;
    EXPECT_EQ(min_lex_split_msg_get_ext("a=1;t=x", ';', '=', "no", 3, &a, nullptr, "t",
                                        MIN_LEX_TYPE_STR, &text, "none", nullptr),
              0);
    EXPECT_EQ(take(text), "x");
}

TEST(MinLexSplit, CutsAtASeparator)
{
    EXPECT_EQ(pieces("a,,b", ','), "[a][][b]");
    EXPECT_EQ(pieces("a,", ','), "[a][]");
    EXPECT_EQ(pieces("", ','), "[]");
    EXPECT_EQ(pieces(nullptr, ','), "");

    const auto start = std::chrono::steady_clock::now();
    zel_list *list = nullptr;
    for (int i = 0; i < 50000; ++i)
        list = min_lex_split_str_by_sep(list, "a,b", ',');
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2))
        << "a growing list is not walked each time";
    EXPECT_EQ(zel_list_count(list), 100000);
    min_lex_split_str_by_sep_free(list);
}

TEST(MinLexSplit, DecodesInPlace)
{
    const auto decoded = [](std::string text) {
        min_lex_convert_percent_to_chars(text.data());
        return std::string(text.c_str());
    };
    EXPECT_EQ(decoded("a%41"), "aA");
    EXPECT_EQ(decoded("a%4"), "a");
    EXPECT_EQ(decoded("100%"), "100");
    EXPECT_EQ(decoded("%zA%5f"), "\n_") << "what is no digit counts nothing";
    min_lex_convert_percent_to_chars(nullptr);
}

namespace {

// A cursor over a text; rest() is what it has not passed.
struct reading {
    explicit reading(const char *text) : cursor(text) {}
    std::string rest() const { return cursor; }
    const char *cursor;
    char word[MIN_LEX_WORD] = "";
};

} // namespace

TEST(MinLexCursor, ReadsWordsAndQuotedStrings)
{
    reading text("  \"a b\" c");
    EXPECT_EQ(zel_min_lex_get_str(&text.cursor, text.word), MIN_LEX_READ);
    EXPECT_STREQ(text.word, "a b");
    EXPECT_EQ(text.rest(), " c");
    EXPECT_EQ(zel_min_lex_get_str2(&text.cursor, text.word), MIN_LEX_READ);
    EXPECT_STREQ(text.word, "c");
    EXPECT_EQ(zel_min_lex_get_str(&text.cursor, text.word), MIN_LEX_AT_END);

    reading blanks("   ");
    EXPECT_EQ(zel_min_lex_get_str(&blanks.cursor, blanks.word), MIN_LEX_NOTHING);

    reading quoted("\"say \\\"hi\\\"\"x \"\" \"open");
    EXPECT_EQ(zel_min_lex_get_str(&quoted.cursor, quoted.word), MIN_LEX_READ);
    EXPECT_STREQ(quoted.word, "say \"hi\"");
    EXPECT_EQ(zel_min_lex_get_str(&quoted.cursor, quoted.word), MIN_LEX_READ);
    EXPECT_STREQ(quoted.word, "x");
    EXPECT_EQ(zel_min_lex_get_str(&quoted.cursor, quoted.word), MIN_LEX_READ);
    EXPECT_STREQ(quoted.word, "");
    EXPECT_EQ(zel_min_lex_get_str(&quoted.cursor, quoted.word), MIN_LEX_READ);
    EXPECT_STREQ(quoted.word, "open") << "a missing quote takes the rest";

    EXPECT_EQ(zel_min_lex_get_str(nullptr, quoted.word), MIN_LEX_NULL);
    EXPECT_EQ(zel_min_lex_get_str(&text.cursor, nullptr), MIN_LEX_NULL);
}

TEST(MinLexCursor, KeepsWordsInTheirRoom)
{
    const auto read = [](const char *start, int size, std::string &word) {
        char buffer[8] = "???????";
        const int result = zel_min_lex_get_strn(&start, buffer, size);
        EXPECT_EQ(buffer[size], '?') << "wrote behind its room";
        word = buffer;
        return result;
    };
    std::string word;
    EXPECT_EQ(read("abc", 5, word), MIN_LEX_READ);
    EXPECT_EQ(word, "abc");
    EXPECT_EQ(read("abcd", 5, word), MIN_LEX_TOO_LONG);
    EXPECT_EQ(word, "abcd");
    EXPECT_EQ(read("abcd e", 5, word), MIN_LEX_READ) << "one more when white space follows";
    EXPECT_EQ(read("abcde", 5, word), MIN_LEX_TOO_LONG);
    EXPECT_EQ(word, "abcd");
    EXPECT_EQ(read("\"abcdef\"", 5, word), MIN_LEX_TOO_LONG);
    EXPECT_EQ(word, "abcd");
    EXPECT_EQ(read("a", 1, word), MIN_LEX_TOO_LONG);
}

TEST(MinLexCursor, ReadsUpToADelimiter)
{
    reading text(" two words = x");
    EXPECT_EQ(zel_min_lex_get_str_until(&text.cursor, text.word, '='), MIN_LEX_READ);
    EXPECT_STREQ(text.word, "two words");
    EXPECT_EQ(text.rest(), "= x");
    EXPECT_EQ(zel_min_lex_get_str_until(&text.cursor, text.word, '='), MIN_LEX_NOTHING)
        << "the first character is part of the word, and no other one comes";
    EXPECT_EQ(text.rest(), "= x");

    reading other("a:b c");
    EXPECT_EQ(zel_min_lex_get_str_until2(&other.cursor, other.word, ':'), MIN_LEX_READ);
    EXPECT_STREQ(other.word, "a");
    EXPECT_EQ(zel_min_lex_get_str_until3(&other.cursor, other.word, ':'), MIN_LEX_READ);
    EXPECT_STREQ(other.word, "b");
    EXPECT_EQ(other.rest(), " c");
    EXPECT_EQ(zel_min_lex_get_str_until2(&other.cursor, other.word, ':'), MIN_LEX_READ);
    EXPECT_EQ(zel_min_lex_get_str_until2(&other.cursor, other.word, ':'), MIN_LEX_NO_TEXT);

    reading blanks(" \t");
    EXPECT_EQ(zel_min_lex_get_str_until2(&blanks.cursor, blanks.word, ':'), MIN_LEX_NOTHING);
    EXPECT_EQ(blanks.rest(), " \t");

    EXPECT_EQ(zel_min_lex_get_str_until(&blanks.cursor, nullptr, ':'), MIN_LEX_NULL);
    __dbg_printf_on__ = 1;
    EXPECT_EQ(capture_stdout([&] { zel_min_lex_get_str_until(nullptr, blanks.word, ':'); }),
              "min_lex_get_str_until: ERROR null ptr\n");
    __dbg_printf_on__ = 0;
}

TEST(MinLexCursor, FindsIdsInATable)
{
    static constexpr trans_id_t table[] = {{"on", 7}, {"off", 8}, {nullptr, 0}};
    reading text("off on:maybe");
    EXPECT_EQ(zel_min_lex_get_id(&text.cursor, table), 8);
    EXPECT_EQ(zel_min_lex_get_id_delimiter(&text.cursor, table, ':'), 7);
    EXPECT_EQ(zel_min_lex_get_id_delimiter(&text.cursor, table, ':'), MIN_LEX_NOT_FOUND);
    EXPECT_EQ(zel_min_lex_get_id(&text.cursor, table), 0);
    EXPECT_EQ(zel_min_lex_get_id_delimiter(&text.cursor, table, ':'), 0);

    const std::string endless(MIN_LEX_WORD, 'x');
    reading long_word(endless.c_str());
    EXPECT_EQ(zel_min_lex_get_id_delimiter(&long_word.cursor, table, ':'), 0);
}

TEST(MinLexCursor, ReadsNumbers)
{
    reading text("  042x -1");
    std::int32_t number = 0;
    EXPECT_EQ(zel_min_lex_get_int(&text.cursor, &number), 1);
    EXPECT_EQ(number, 42);
    EXPECT_EQ(text.rest(), "x -1");
    EXPECT_EQ(zel_min_lex_get_int(&text.cursor, &number), 0);
    reading sign(" -1");
    EXPECT_EQ(zel_min_lex_get_int(&sign.cursor, &number), 0);
    reading digits("00000000000000000000000000000012345");
    EXPECT_EQ(zel_min_lex_get_int(&digits.cursor, &number), 1);
    EXPECT_EQ(number, 1) << "31 digits at most";
    EXPECT_EQ(digits.rest(), "2345");
}

TEST(MinLexCursor, FindsAndMatches)
{
    reading text("a=b;c");
    EXPECT_EQ(zel_min_lex_match_char(&text.cursor, ';'), MIN_LEX_FOUND);
    EXPECT_EQ(text.rest(), "c");
    EXPECT_EQ(zel_min_lex_match_char(&text.cursor, ';'), MIN_LEX_NOT_FOUND);
    EXPECT_EQ(text.rest(), "c");
    EXPECT_EQ(zel_min_lex_find_char(&text.cursor, ';'), MIN_LEX_AT_END);
    EXPECT_EQ(text.rest(), "");

    reading words("one two");
    EXPECT_EQ(zel_min_lex_match_str(&words.cursor, "three"), MIN_LEX_NOT_FOUND);
    EXPECT_EQ(zel_min_lex_match_str(&words.cursor, "e t"), MIN_LEX_FOUND);
    EXPECT_EQ(words.rest(), "wo");
    EXPECT_EQ(zel_min_lex_if_char(&words.cursor, 'o'), 1);
    EXPECT_EQ(words.rest(), "");
    EXPECT_EQ(zel_min_lex_if_char(&words.cursor, 'o'), 0);
    EXPECT_EQ(zel_min_lex_if_char(&words.cursor, '\0'), 1);
}

TEST(MinLexCursor, ReadsLines)
{
    std::FILE *file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    std::fputs("ab\r\n\ncd\n12345678\ne", file);
    std::rewind(file);
    char line[16];
    const auto read = [&](int size) { return zel_min_lex_get_line(file, line, size); };
    EXPECT_EQ(read(16), 2);
    EXPECT_STREQ(line, "ab");
    EXPECT_EQ(read(16), 0);
    EXPECT_EQ(read(0), 2);
    EXPECT_STREQ(line, "cd");
    EXPECT_EQ(read(5), MIN_LEX_TOO_LONG);
    EXPECT_STREQ(line, "1234");
    EXPECT_EQ(read(5), MIN_LEX_TOO_LONG) << "the rest was left unread";
    EXPECT_EQ(read(5), 0);
    EXPECT_EQ(read(5), 1);
    EXPECT_EQ(read(5), EOF);
    std::fclose(file);
}
