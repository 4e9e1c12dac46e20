#include "family/dir_list.h"

#include "log-fixture.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

using ::testing::EndsWith;
using ::testing::HasSubstr;
using zel_test::write_file;
namespace fs = std::filesystem;

namespace {

using dir_guard = std::unique_ptr<zel_list, zel::release<dir_list_free>>;

std::string names(const zel_list *list)
{
    std::string text;
    for (; list != nullptr; list = list->next)
        text += std::string(dir_list_file(list)) + " ";
    return text;
}

// "kind:token" of every token.
std::string tokens(const char *path)
{
    std::string text;
    char token[64];
    for (int kind = 0; kind != CD_END;) {
        kind = cd_next_token(&path, token);
        text += std::to_string(kind) + ":" + token + " ";
    }
    return text;
}

class directories : public zel_test::with_log {
protected:
    int make(const char *path) { return cre_dir(dir.path().c_str(), path); }
    bool is_dir(const char *path) { return fs::is_directory(dir / path); }
};

} // namespace

TEST_F(directories, listed_with_an_ending_and_sorted)
{
    fs::create_directory(dir / "lang");
    for (const char *name : {"de.lang", "de.lang.bak", "en.lang", ".lang", "lang/x"})
        write_file(dir / name, "");
    dir_guard list(dir_list_sort(dir_list(nullptr, dir.path().c_str(), ".lang")));
    EXPECT_EQ(".lang de.lang en.lang ", names(list.get()));
    EXPECT_EQ(1, dir_list_search(list.get(), "en.lang"));
    EXPECT_EQ(0, dir_list_search(list.get(), "en"));
    list.reset(dir_list(list.release(), (dir / "lang").c_str(), nullptr));
    EXPECT_EQ(".lang de.lang en.lang x ", names(list.get()));
    list.reset(dir_list_sort_back(list.release()));
    EXPECT_EQ("x en.lang de.lang .lang ", names(list.get()));
    EXPECT_EQ("dir_list_print >x<\n",
              zel_test::capture_stdout([&] { dir_list_print(stdout, list.get()); }).substr(0, 19));
}

TEST_F(directories, hold_files_or_not)
{
    const std::string inner = dir / "inner";
    fs::create_directory(inner);
    EXPECT_EQ(0, if_files_in_dir(inner.c_str()));
    write_file(inner + "/.x", "");
    EXPECT_EQ(1, if_files_in_dir(inner.c_str()));
    const std::string missing = dir / "missing";
    EXPECT_EQ(0, if_files_in_dir(missing.c_str()));
    EXPECT_EQ(nullptr, dir_list(nullptr, missing.c_str(), nullptr));
    const std::string end = std::to_string(ENOENT) + " ->" + missing + "<-\n";
    EXPECT_EQ("* if_files_in_dir exit(1) " + end + "* dir_list entry  exit(1) " + end, logged());
}

TEST(path_tokens, kinds)
{
    EXPECT_EQ("3:a 1:/ 3:b.c 1:\\ 5: ", tokens("a/b.c\\"));
    EXPECT_EQ("1:./ 3:.. 1:/ 3:.rc 5: ", tokens("./../.rc"));
    EXPECT_EQ("4:c: 1:\\ 3:x 5: ", tokens("c:\\x"));
    EXPECT_EQ("2:\\\\ 3:host 1:/ 3:x 5: ", tokens("\\\\host/x"));
    EXPECT_EQ("1:/ 1:\\ 5: ", tokens("/\\"));
}

TEST_F(directories, made_step_by_step)
{
    EXPECT_EQ(0, make("a/b/c"));
    EXPECT_TRUE(is_dir("a/b/c"));
    EXPECT_EQ("* cre_dir dir: dir >" + dir.path() + "<:>a/b/c<\n* cre_dir dir: wd  >" + dir.path() +
                  "<\n* cre_dir dir buf >" + (dir / "a") + "< check existence\n" +
                  "* cre_dir dir buf >" + (dir / "a/b") + "< check existence\n" +
                  "* cre_dir dir buf >" + (dir / "a/b/c") + "< check existence\n" +
                  "* cre_dir dir: exit OK\n",
              logged());
    EXPECT_EQ(0, make("a/b/d/"));
    EXPECT_TRUE(is_dir("a/b/d"));
    EXPECT_EQ(0, cre_dir(nullptr, (dir / "e/f").c_str()));
    EXPECT_TRUE(is_dir("e/f"));
    EXPECT_EQ(0, make(nullptr));
    EXPECT_EQ(0, make(""));
    EXPECT_THAT(logged(), EndsWith("* cre_dir dir: dir null ptr\n* cre_dir dir: dir null len\n"));
}

TEST_F(directories, malformed_paths_have_numbers)
{
    EXPECT_EQ(6, make("a/./b"));
    EXPECT_THAT(logged(), EndsWith("* cre_dir dir: ERROR 4 >" + (dir / "a/") + "<\n"));
    EXPECT_TRUE(is_dir("a"));
    EXPECT_EQ(1, make("///"));
    EXPECT_THAT(logged(), EndsWith("* cre_dir dir: ERROR 1 >//<\n"));
    EXPECT_EQ(2, make("a//host"));
    EXPECT_THAT(logged(), EndsWith("* cre_dir dir: ERROR 2 >//host<\n"));
    EXPECT_EQ(3, make("//host/"));
    EXPECT_THAT(logged(), EndsWith("* cre_dir dir: ERROR 3 >//host/<\n"));
    EXPECT_EQ(0, make("c:"));
    EXPECT_EQ(0, make("c:x"));
}

TEST(cre_dir, drive_and_name_is_one_directory)
{
    const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
    EXPECT_EQ(0, cre_dir(nullptr, "c:\\name"));
    EXPECT_TRUE(fs::is_directory("c:\\name"));
}

TEST_F(directories, that_cannot_be_made)
{
    write_file(dir / "file", "");
    EXPECT_EQ(8, make("file/x"));
    EXPECT_THAT(logged(), HasSubstr("* cre_dir dir: ERROR 8 (UNIX)\n"));
    std::string deep;
    while (deep.size() < 3000)
        deep += std::string(200, 'x') + "/";
    EXPECT_EQ(8, make(deep.c_str()));
    if (getuid() == 0)
        return;
    fs::create_directory(dir / "locked");
    fs::permissions(dir / "locked", fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(10, make("locked/x"));
    EXPECT_THAT(logged(), EndsWith("->" + (dir / "locked") + "<- ERROR 9.2 no write access\n"));
    EXPECT_EQ(10, cre_dir((dir / "locked").c_str(), "x"));
    EXPECT_THAT(logged(), EndsWith("->" + (dir / "locked/") + "<- ERROR 9.1 no write access\n"));
}
