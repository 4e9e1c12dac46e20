// Requests in pieces of which only the first is read.

#include "checker/adjacent.h"

#include "rows.h"

#include <gtest/gtest.h>

namespace {

TEST(Adjacent, RequestsInPiecesAreThoseOfTheTable)
{
    const zel_test::temp_dir dir;
    for (const zel_test::row &row : zel_test::rows_of("checker/scan.rows", "adjacent")) {
        zel_test::write_file(dir / "a.c", row[0]);
        std::vector<std::string> expected{row[0]};
        const std::string printed = zel_test::capture_stdout([&] {
            EXPECT_TRUE(zel::find_adjacent((dir / "a.c").c_str(), [&](const auto &found) {
                const char *what[] = {"group", "item", "description"};
                expected.push_back(std::to_string(found.line) + ":" + std::to_string(found.column) +
                                   " " + what[static_cast<int>(found.of)] + " " + found.group +
                                   "/" + found.read + "/" + found.whole);
            }));
        });
        EXPECT_EQ(printed, "");
        EXPECT_EQ(expected, row.texts) << row.line;
    }
    EXPECT_FALSE(zel::find_adjacent("/none/such.c", [](const auto &) {}));
}

} // namespace
