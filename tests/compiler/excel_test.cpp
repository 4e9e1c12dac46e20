#include "compiler/excel.h"

#include "source/group.h"
#include "test-support.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/resource.h>

namespace {

class Excel : public testing::Test {
protected:
    // The bytes of the file; what is printed goes to printed.
    std::string write(const std::string &path = "out.slk")
    {
        printed = zel_test::capture_stdout([&] {
            result = to_excel_unicode_text(source.get(), path.c_str(), "english", "german");
        });
        return zel_test::read_file(path);
    }

    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
    source_guard source{lang_alloc_group()};
    std::string printed;
    int result = -2;
};

TEST_F(Excel, OneRecordPerItem)
{
    insert_group_item(source.get(), "main", "ok");
    insert_group_item(source.get(), "main", "cancel");
    insert_group_item(source.get(), "a\"b", "\"\r\n\tgr\xc3\xb6\xdf");
    edit_t *empty = lang_alloc_edit();
    source->groups = g_list_append(source->groups, empty);
    zel_test::write_file("out.slk", std::string(1000, 'x'));
    zel_test::write_file("out.slk.tmp", "of a killed process");
    EXPECT_EQ(write(), "\"main.ok\"\t\"main.ok\"\t\r"
                       "\"main.cancel\"\t\"main.cancel\"\t\r"
                       "\"a\"\"b.\"\"\x1b :\x1b : gr\xc3\xb6\xdf\"\t"
                       "\"a\"\"b.\"\"\x1b :\x1b : gr\xc3\xb6\xdf\"\t\r");
    EXPECT_EQ(printed, "to_excel_unicode_text: entry\nto_excel_unicode_text: exit\n");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(zel_test::read_file("out.slk.tmp"), "");
}

TEST_F(Excel, KeysAreCutBeforeTheyAreEscaped)
{
    insert_group_item(source.get(), "g", std::string(1500, '"').c_str());
    const std::string key = "\"g." + std::string(2 * 1021, '"') + "\"\t";
    EXPECT_EQ(write(), key + key + "\r");
}

TEST_F(Excel, NothingToWriteAndNowhereToWriteIt)
{
    EXPECT_EQ(write(), "");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(to_excel_unicode_text(nullptr, "out.slk", nullptr, nullptr), 0);
    EXPECT_EQ(to_excel_unicode_text(nullptr, nullptr, nullptr, nullptr), 1);
    write("none/out.slk");
    EXPECT_EQ(printed, "to_excel_unicode_text: entry\n"
                       "ERROR open excel unicode text file file ->none/out.slk<-\n");
    EXPECT_EQ(result, 1);
}

TEST_F(Excel, AFullDiskIsToldAndTheOldTableStays)
{
    for (int i = 0; i < 1000; i++)
        insert_group_item(source.get(), "main", ("item " + std::to_string(i)).c_str());
    zel_test::write_file("out.slk", "old");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full{8192, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &full);
    const std::string report = zel_test::capture_stderr([&] { write(); });
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_NE(report.find("lang: out.slk: File too large\n"), report.npos) << report;
    EXPECT_EQ(result, 1);
    EXPECT_EQ(zel_test::read_file("out.slk"), "old");
}

} // namespace
