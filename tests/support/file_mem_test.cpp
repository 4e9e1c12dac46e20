#include "family/file_mem.h"

#include "log-fixture.h"

#include "support/string-copy.h"

#include <fcntl.h>
#include <gtest/gtest.h>

using zel_test::read_file;
using zel_test::write_file;

namespace {

using file_mem_log = zel_test::with_log;

constexpr int create = O_WRONLY | O_CREAT | O_TRUNC;

} // namespace

TEST_F(file_mem_log, plain_buffers_go_in_and_out)
{
    const std::string path = dir / "a";
    EXPECT_EQ(3, zel_write_mem_to_file(path.c_str(), "a\0b", 3, create, 0600));
    char *data = nullptr;
    EXPECT_EQ(3, zel_read_file_to_mem(path.c_str(), &data));
    EXPECT_EQ(std::string("a\0b\0", 4), std::string(data, 4));
    zel::free_string(data);
    EXPECT_EQ(2, zel_write_mem_to_file(path.c_str(), "xy", -1, create, 0600));
    EXPECT_EQ("xy", read_file(path));

    const std::string missing = dir / "none/b";
    EXPECT_EQ(-1, zel_read_file_to_mem(missing.c_str(), &data));
    EXPECT_EQ(-1, zel_read_file_to_mem(dir.path().c_str(), &data));
    EXPECT_EQ(nullptr, data);
    EXPECT_EQ(-1, zel_write_mem_to_file(missing.c_str(), "x", 1, create, 0600));
    EXPECT_EQ(-1, zel_write_mem_to_file(path.c_str(), "x", 1, O_RDONLY, 0600));
    EXPECT_EQ(-1, zel_write_mem_to_file(nullptr, nullptr, 1, create, 0600));
    EXPECT_EQ("* zel_read_file_to_mem: ERROR stat file >" + missing +
                  "<\n* zel_read_file_to_mem: ERROR read file >" + dir.path() +
                  "<\n* zel_write_mem_to_file: ERROR open file >" + missing +
                  "<\n* zel_write_mem_to_file: ERROR write file >" + path +
                  "<\n* zel_write_mem_to_file: ERROR null ptr (nil):(nil)\n",
              logged());
}

TEST_F(file_mem_log, record_grows_and_is_written)
{
    write_file(dir / "a", "file");
    EXPECT_EQ(nullptr, zel_file_mem_append(nullptr, nullptr, 3));
    EXPECT_EQ(nullptr, zel_file_mem_append(nullptr, "x", 0));
    zel_file_mem_t *mem = zel_file_mem_append(nullptr, "begin,", -1);
    EXPECT_EQ(mem, zel_file_mem_read(mem, (dir / "a").c_str()));
    EXPECT_EQ(nullptr, zel_file_mem_read(mem, (dir / "none").c_str()));
    std::string expected = "begin,file";
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(mem, zel_file_mem_append(mem, ",end!", 4));
        expected += ",end";
    }
    EXPECT_EQ(expected, zel_file_mem_data(mem));
    EXPECT_EQ(static_cast<std::int64_t>(expected.size()), zel_file_mem_size(mem));
    EXPECT_EQ(zel_file_mem_size(mem), zel_file_mem_write(mem, (dir / "b").c_str(), create, 0600));
    EXPECT_EQ(expected, read_file(dir / "b"));

    zel_file_mem_append(mem, zel_file_mem_data(mem) + 6, 404); // a part of itself
    EXPECT_EQ(expected + expected.substr(6), zel_file_mem_data(mem));

    zel_file_mem_ref(mem);
    zel_file_mem_unref(mem);
    EXPECT_EQ(1, mem->ref);
    zel_file_mem_free(mem);
    EXPECT_EQ("* zel_file_mem_read: ERROR stat file >" + (dir / "none") + "<\n", logged());
}
