#include "family/argv.h"

#include "test-support.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <vector>

using zel_test::take;

namespace {

// A command line and its cursor.
struct words {
    words(std::initializer_list<const char *> list) : texts(list.begin(), list.end())
    {
        for (std::string &text : texts)
            pointers.push_back(text.data());
        count = static_cast<int>(pointers.size());
        position = pointers.data();
    }

    std::vector<std::string> texts;
    std::vector<char *> pointers;
    int count;
    char **position;
};

constexpr argv_tab_t table[] = {{"edit", 4}, {"check", 2}, {"edit", 9},
                                {"zero", 0}, {"x", 7},     {nullptr, -1}};

// A word vector that releases itself.
struct built_words {
    ~built_words() { del_argv(&count, &vector); }

    std::string joined() const
    {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += std::string("<") + vector[i] + ">";
        return text;
    }

    int count = 0;
    char **vector = nullptr;
};

std::string integer(const char *word)
{
    words line{word};
    int value = -1;
    const int result = argv_get_int(&line.count, &line.position, &value);
    return std::to_string(result) + " " + std::to_string(value) + " " + std::to_string(line.count);
}

std::string size(const char *word)
{
    words line{word};
    int width = -1;
    int height = -1;
    const int result = argv_get_size(&line.count, &line.position, &width, &height);
    return std::to_string(result) + " " + std::to_string(width) + " " + std::to_string(height) +
           " " + std::to_string(line.count);
}

std::string built(const char *text)
{
    built_words words;
    gen_argv(text, &words.count, &words.vector);
    return words.joined();
}

} // namespace

TEST(argv, matches_whole_words_of_a_table)
{
    words line{"edit", "check", "ed"};
    EXPECT_EQ(4, check_argv_str_to_num(&line.count, &line.position, table));
    EXPECT_EQ(2, check_argv_str_to_num(&line.count, &line.position, table));
    EXPECT_EQ(-1, check_argv_str_to_num(&line.count, &line.position, table));
    EXPECT_EQ(1, line.count);
    EXPECT_STREQ("ed", *line.position);
    argv_prep(&line.count, &line.position);
    EXPECT_EQ(0, check_argv_str_to_num(&line.count, &line.position, table));
    argv_prep(&line.count, &line.position);
    EXPECT_EQ(0, line.count);
}

TEST(argv, matches_long_options_behind_two_dashes)
{
    words line{"--edit", "--x", "x-edit", "-edit", "--"};
    EXPECT_EQ(4, check_argv(&line.count, &line.position, table));
    EXPECT_EQ(7, check_argv(&line.count, &line.position, table));
    EXPECT_EQ(-1, check_argv(&line.count, &line.position, table));
    argv_prep(&line.count, &line.position);
    EXPECT_EQ(-1, argv_str_to_num(&line.count, &line.position, table));
    argv_prep(&line.count, &line.position);
    EXPECT_EQ(-1, check_argv(&line.count, &line.position, table));
    EXPECT_EQ(1, line.count);
    argv_prep(&line.count, &line.position);
    EXPECT_EQ(0, check_argv(&line.count, &line.position, table));
}

TEST(argv, takes_strings)
{
    words line{"one", "", "two"};
    char *text = nullptr;
    EXPECT_EQ(0, argv_get_str(&line.count, &line.position, &text));
    EXPECT_STREQ("one", text);
    EXPECT_EQ(0, argv_free_get_str(&line.count, &line.position, &text));
    EXPECT_EQ(nullptr, text);
    EXPECT_EQ("two", take(argv_get_prg(&line.count, &line.position)));
    EXPECT_EQ("(null)", take(argv_get_prg(&line.count, &line.position)));
    EXPECT_EQ(2, argv_get_str(&line.count, &line.position, &text));
}

TEST(argv, takes_numbers_that_begin_with_a_digit)
{
    EXPECT_EQ("0 31 0", integer("0x1F"));
    EXPECT_EQ("0 31 0", integer("0X1fz"));
    EXPECT_EQ("0 15 0", integer("017"));
    EXPECT_EQ("0 0 0", integer("0"));
    EXPECT_EQ("0 12 0", integer("12rest"));
    EXPECT_EQ("3 -1 1", integer("-5"));
    EXPECT_EQ("3 -1 1", integer(""));

    words line{"1.5", "2.25", "x"};
    float single = 0;
    double twice = 0;
    EXPECT_EQ(0, argv_get_float(&line.count, &line.position, &single));
    EXPECT_EQ(0, argv_get_double(&line.count, &line.position, &twice));
    EXPECT_EQ(1.5F, single);
    EXPECT_EQ(2.25, twice);
    EXPECT_EQ(4, argv_get_float(&line.count, &line.position, &single));
    EXPECT_EQ(5, argv_get_double(&line.count, &line.position, &twice));
}

TEST(argv, takes_widths_and_heights)
{
    EXPECT_EQ("0 640 480 0", size("640x480"));
    EXPECT_EQ("0 1 2 0", size("1X2"));
    for (const char *bad : {"640x", "x480", "640", "", "axb"})
        EXPECT_EQ("6 -1 -1 1", size(bad)) << bad;
    EXPECT_EQ("6 -1 -1 1", size((std::string(32, '1') + "x1").c_str()));
}

TEST(argv, joins_flag_words)
{
    unsigned flags = 77;
    words line{"check", "edit", "zero", ""};
    EXPECT_EQ(0, argv_get_flags_by_str(&line.count, &line.position, table, &flags));
    EXPECT_EQ(6U, flags);
    EXPECT_STREQ("zero", *line.position);
    EXPECT_EQ(1, argv_get_flags_by_str(&line.count, &line.position, table, &flags));
    EXPECT_EQ(0U, flags);
    argv_prep(&line.count, &line.position);
    EXPECT_EQ(7, argv_get_flags_by_str(&line.count, &line.position, table, &flags));
    line.count = 0;
    EXPECT_EQ(7, argv_get_flags_by_str(&line.count, &line.position, table, &flags));
}

TEST(argv, errors_are_printed_when_asked_for)
{
    words line{"edit", "word"};
    int value = 0;
    check_argv_str_to_num(&line.count, &line.position, table);
    const std::string err = zel_test::capture_stderr([&] {
        argv_get_int(&line.count, &line.position, &value);
        argv_set_err_print(1, nullptr);
        argv_get_int(&line.count, &line.position, &value);
        argv_set_err_print(0, nullptr);
        EXPECT_EQ(0, argv_print_error(0));
        EXPECT_EQ(-4, argv_print_error(-4));
    });
    EXPECT_EQ(">ERROR missing integer< for argument >edit<\n>ERROR< for argument >edit<\n", err);
    EXPECT_STREQ("ERROR missing width height", argv_get_err_str(6));
    EXPECT_STREQ("ERROR", argv_get_err_str(7));
    EXPECT_STREQ("No error", argv_get_err_str(0));
}

TEST(argv, splits_a_text_into_words)
{
    EXPECT_EQ("<a><b c><d>", built("  a \"b c\" d\n"));
    EXPECT_EQ("<a\\\"b><c>", built("\"a\\\"b\"c"));
    EXPECT_EQ("<a\\\\><b\">", built("\"a\\\\\" b\""));
    EXPECT_EQ("<open end >", built("\"\" \"open end "));
    EXPECT_EQ("<end\\>", built("\"end\\"));
    EXPECT_EQ("", built(" \""));
    EXPECT_EQ("", built(""));
}

TEST(argv, vectors_grow_by_words_and_nulls)
{
    built_words words;
    EXPECT_EQ(words.vector, gen_argv_execv("a b c", &words.count, &words.vector));
    EXPECT_EQ(nullptr, words.vector[3]);
    EXPECT_EQ(0, gen_argv_add_str("", &words.count, &words.vector));
    EXPECT_EQ(0, gen_argv_add_str_ext("q", &words.count, &words.vector));
    EXPECT_EQ(1, gen_argv_add_str(nullptr, &words.count, &words.vector));
    gen_argv_ext("d", &words.count, &words.vector);
    EXPECT_EQ(nullptr, words.vector[words.count]);
    EXPECT_EQ("<a><b><c><><\"q\"><d>", words.joined());

    words.vector[1][0] = 'B';
    built_words copies;
    char *some[] = {words.vector[0], nullptr, words.vector[1]};
    EXPECT_EQ(0, argv_dup(3, some, &copies.count, &copies.vector));
    EXPECT_EQ("print_argv >a<\nprint_argv >B<\n",
              zel_test::capture_stdout([&] { print_argv(nullptr, copies.count, copies.vector); }));
}

TEST(argv, words_of_a_file)
{
    const zel_test::temp_dir dir;
    zel_test::write_file(dir / "words", "a b\r\n# comment \"\nc#d\n\"e f\"  \n#last");
    built_words words;
    EXPECT_EQ(0, gen_argv_from_file((dir / "words").c_str(), &words.count, &words.vector));
    EXPECT_EQ("<a><b><c><e f>", words.joined());
    EXPECT_EQ(1, gen_argv_from_file((dir / "none").c_str(), &words.count, &words.vector));
}
