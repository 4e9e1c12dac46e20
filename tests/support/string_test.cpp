#include "family/string.h"

#include "locales.h"
#include "log-fixture.h"

#include <cstring>
#include <gtest/gtest.h>
#include <vector>

using zel_test::take;

namespace {

// What an operation that works in place makes of a text.
template <class Operation>
std::string changed(const char *text, Operation &&operation)
{
    char buffer[256];
    std::strcpy(buffer, text);
    operation(buffer);
    return buffer;
}

std::vector<std::string> fields(std::string whole, int size)
{
    char *text = whole.data();
    std::vector<std::string> found;
    char field[16];
    char *passed = text;
    static_cast<void>(zel_get_sub_str(&passed, nullptr, ',', size)); // only moves
    while (found.size() < 10 && zel_get_sub_str(&text, field, ',', size) == 1)
        found.emplace_back(field);
    return found;
}

// "dir|file" of a path.
std::string split(const char *path)
{
    char *dir = nullptr;
    char *file = nullptr;
    EXPECT_EQ(0, zel_split_path_file(path, &dir, &file));
    char *only_dir = nullptr;
    EXPECT_EQ(0, zel_split_path(path, &only_dir));
    const std::string first = take(dir);
    EXPECT_EQ(first, take(only_dir));
    return first + "|" + take(file);
}

std::string width_height(const char *text)
{
    int width = -1;
    int height = -1;
    const int result = zel_str_get_width_height(text, &width, &height);
    return std::to_string(result) + " " + std::to_string(width) + " " + std::to_string(height);
}

using string_log = zel_test::with_log;
using strings = std::vector<std::string>;

} // namespace

TEST(string, substr_counts_from_one)
{
    EXPECT_EQ("bcd", take(zel_substr("abcdef", 2, 3)));
    EXPECT_EQ("bcdef", take(zel_substr("bcdef", 1, 0)));
    EXPECT_EQ("f", take(zel_substr("abcdef", 6, 100)));
    EXPECT_EQ("(null)", take(zel_substr("abcdef", 7, 1)));
    EXPECT_EQ("(null)", take(zel_substr("abcdef", 0, 1)));
    EXPECT_EQ("(null)", take(zel_substr(nullptr, 1, 1)));
}

TEST(string, copy_between_two_places)
{
    const char text[] = "abc\0def";
    EXPECT_EQ("bc", take(dup_ptr_from_to(text, text + 1, text + 6)));
    EXPECT_EQ("b", take(dup_ptr_from_to(text, text + 1, text + 2)));
    EXPECT_EQ("(null)", take(dup_ptr_from_to(text, text + 1, text + 1)));
    EXPECT_EQ("(null)", take(dup_ptr_from_to(nullptr, text, text + 1)));
}

TEST(string, fields_are_walked_with_the_cursor)
{
    EXPECT_EQ((strings{"a", "", "b"}), fields("a,,b", 16));
    EXPECT_EQ((strings{"a", ""}), fields("a,", 16));
    EXPECT_EQ((strings{"lon", "b"}), fields("longer,b", 4));
    EXPECT_EQ(strings{}, fields("", 16));
}

TEST(string, trims_in_place)
{
    EXPECT_EQ("a \tb", changed(" \t a \tb\t ", zel_str_trim));
    EXPECT_EQ("", changed(" \t ", zel_str_trim));
    EXPECT_EQ("\"a", changed("\"\"a\"", zel_str_trim_hk));
    EXPECT_EQ("", changed("\"", zel_str_trim_hk));
    EXPECT_EQ("ab", changed("ab", zel_str_trim_hk));
    EXPECT_EQ("a_b_", changed("a b ", [](char *text) { zel_space_to_char(text, '_'); }));
}

TEST(string, compares_and_counts)
{
    const argv_tab_t table[] = {{"one", 1}, {"two", 2}, {"one", 3}, {nullptr, -7}};
    EXPECT_EQ(1, zel_str_to_num("one", table));
    EXPECT_EQ(-7, zel_str_to_num("on", table));
    EXPECT_EQ(-7, zel_str_to_num(nullptr, table));
    EXPECT_EQ(-1, zel_str_float_cmp("1.25", 1.5F));
    EXPECT_EQ(0, zel_str_float_cmp("1.5", 1.5F));
    EXPECT_EQ(1, zel_str_float_cmp("2", 1.5F));
    EXPECT_EQ(2, zel_str_count_lf("a\n\nb"));
    EXPECT_EQ(0, zel_strlen(nullptr));
}

TEST(stringSlow, numbers_are_the_same_in_each_locale)
{
    zel_test::in_each_locale(
        [](const char *name) { EXPECT_EQ(0, zel_str_float_cmp("1.5", 1.5F)) << name; });
}

TEST(string, diff_collects_what_b_has_instead)
{
    char out[32];
    EXPECT_EQ(0, zel_str_diff(out, "abcd", "axcy"));
    EXPECT_STREQ("xy", out);
    EXPECT_EQ(1, zel_str_diff(out, "abcd", "xb"));
    EXPECT_STREQ("xcd", out);
    EXPECT_EQ(-1, zel_str_diff(out, "ab", "abcd"));
    EXPECT_STREQ("cd", out);
}

TEST(string, width_and_height)
{
    EXPECT_EQ("0 640 480", width_height("640x480"));
    for (const char *bad : {"640x", "x480", "640", "640X480", "ax1", ""})
        EXPECT_EQ("1 -1 -1", width_height(bad)) << bad;
    const std::string digits(31, '0');
    EXPECT_EQ("0 0 7", width_height((digits + "x7").c_str()));
    EXPECT_EQ("1 -1 -1", width_height((digits + "0x7").c_str()));
}

TEST(string, printf_into_a_new_string)
{
    const std::string text(5000, 'x');
    EXPECT_EQ("1:" + text, take(zel_strdup_printf("%d:%s", 1, text.c_str())));
}

TEST(path, splits_at_either_separator)
{
    EXPECT_EQ("dir/sub|file.txt", split("dir/sub/file.txt"));
    EXPECT_EQ("(null)|file.txt", split("file.txt"));
    EXPECT_EQ("c:\\x|y", split("c:\\x\\y"));
    EXPECT_EQ("dir|(null)", split("dir/"));
    EXPECT_EQ("|file", split("/file"));
    char *dir = nullptr;
    char *file = nullptr;
    EXPECT_EQ(1, zel_split_path_file(nullptr, &dir, &file));
    EXPECT_EQ(1, zel_split_path(nullptr, &dir));
}

TEST(path, separators_are_converted)
{
    char path[] = "a\\b/c\\d";
    EXPECT_EQ(2, zel_path_to_unix(path));
    EXPECT_STREQ("a/b/c/d", path);
    EXPECT_EQ(3, zel_path_to_dos(path));
    EXPECT_EQ(0, zel_path_conv(nullptr));
}

TEST_F(string_log, file_part_of_what_is_no_directory)
{
    char *file = nullptr;
    EXPECT_EQ(1, zel_split_file(dir.path().c_str(), &file));
    EXPECT_EQ(nullptr, file);
    EXPECT_EQ("* zel_split_file(0): dir >" + dir.path() + "<\n", logged());
    EXPECT_EQ(0, zel_split_file((dir / "none.txt").c_str(), &file));
    EXPECT_EQ("none.txt", take(file));
}

TEST_F(string_log, drive_of_a_path)
{
    char out[8];
    EXPECT_EQ(0, zel_path_get_drive("c:\\x", out, 8));
    EXPECT_STREQ("c:", out);
    EXPECT_EQ(0, zel_path_get_drive("//host/x", out, 8));
    EXPECT_STREQ("//host", out);
    EXPECT_EQ(1, zel_path_get_drive("/usr/x", out, 8));
    EXPECT_EQ("", logged());
    EXPECT_EQ(1, zel_path_get_drive("//host12/x", out, 8));
    EXPECT_EQ(1, zel_path_get_drive("c", out, 8));
    EXPECT_EQ(1, zel_path_get_drive("c:", out, 2));
    EXPECT_EQ("* zel_path_get_drive: buffer to short 8\n* zel_path_get_drive: path to short\n"
              "* zel_path_get_drive: buffer to short\n",
              logged());
}

TEST(file_ext, is_cut_when_it_belongs_to_the_file)
{
    EXPECT_EQ("dir.d/file", changed("dir.d/file.x", zel_del_file_ext));
    EXPECT_EQ("dir.d/file", changed("dir.d/file", zel_del_file_ext));
    EXPECT_EQ("a.d:x", changed("a.d:x", zel_del_file_ext));
    EXPECT_EQ(".profile", changed(".profile", zel_del_file_ext));
}

TEST(file_ext, is_cut_and_replaced_when_it_is_the_one)
{
    const auto without = [](const char *ext) {
        return [ext](char *text) { zel_del_cmp_file_ext(text, ext); };
    };
    EXPECT_EQ("a", changed("a.lang-src", without("lang-src")));
    EXPECT_EQ("a.lang-src", changed("a.lang-src", without("lang")));
    EXPECT_EQ("a.LANG", changed("a.LANG", without("lang")));

    char buffer[64];
    EXPECT_STREQ("a.lang", zel_add_file_ext(buffer, "a.lang", "lang"));
    EXPECT_STREQ("a.lang.bak", zel_add_file_ext(buffer, buffer, "bak"));
    EXPECT_EQ(nullptr, zel_add_file_ext(buffer, nullptr, "bak"));

    std::strcpy(buffer, "dir.x\\a.txt");
    EXPECT_EQ(0, zel_gen_file_name_with_ext(buffer, "lang"));
    EXPECT_STREQ("dir.x/a.txt.lang", buffer);
    EXPECT_EQ(0, zel_gen_file_name_with_ext(buffer, "lang"));
    EXPECT_STREQ("dir.x/a.txt.lang", buffer);
}

TEST(file_ext, is_found_in_a_list_with_its_dot)
{
    char c[] = ".c";
    char h[] = ".h";
    const zel_list_guard list(zel_list_append(zel_list_append(nullptr, c), h));
    EXPECT_EQ(1, zel_if_ext(list.get(), "a.b.h"));
    EXPECT_EQ(0, zel_if_ext(list.get(), "a.cc"));
    EXPECT_EQ(0, zel_if_ext(list.get(), "h"));
    EXPECT_EQ(1, zel_if_ext(list.get(), nullptr));
    EXPECT_EQ(1, zel_if_ext(nullptr, "a.h"));
}
