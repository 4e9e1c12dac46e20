// Compiled files that bear the time of SOURCE_DATE_EPOCH: the same source gives the same bytes.

#include "compiler/split.h"

#include "source/lang-read.h"
#include "working-dir.h"

#include <cstdlib>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>

namespace {

class BuildTime : public zel_test::working_dir {
protected:
    BuildTime()
    {
        if (const char *value = std::getenv(name))
            before_ = value;
    }
    ~BuildTime() override { set(before_ ? before_->c_str() : nullptr); }

    static void set(const char *value)
    {
        if (value == nullptr)
            unsetenv(name);
        else
            setenv(name, value, 1);
    }

    // The whole file that is compiled, and what is said on standard error.
    std::string compiled(const char *time)
    {
        set(time);
        zel_test::write_file("a.lang-src",
                             "mtime 5 define format utf8 file \"de\" lang \"de\" 1 2 1 "
                             "group \"g\" { item \"i\" { used yes lang \"de\" "
                             "{ \"Ja\" } } }");
        const source_guard source(lang_read_file("a.lang-src"));
        zel_test::capture_stdout([&] {
            said =
                zel_test::capture_stderr([&] { EXPECT_EQ(split_file(source.get(), nullptr), 0); });
        });
        return zel_test::read_file("de.lang");
    }

    std::string said;

private:
    static constexpr const char *name = "SOURCE_DATE_EPOCH";
    std::optional<std::string> before_;
};

TEST_F(BuildTime, IsThatOfTheVariable)
{
    for (const char *time : {"0", "1700000000", "4294967295"}) {
        EXPECT_EQ(compiled(time),
                  std::string("/* automatically generated file, do not edit de */\n\n"
                              "FORMAT UTF8\nLANGUAGE \"de\"\nCTIME ") +
                      time + "\nSRC_MTIME 5\n\n\nGROUP \"g\"\n  \"i\" {\n    \"Ja\"    }\n");
        EXPECT_EQ(said, "");
    }
}

TEST_F(BuildTime, IsNowWithoutAGoodValue)
{
    for (const char *time :
         {static_cast<const char *>(nullptr), "", "now", "4294967296", "-1", "12 ", " 12", "1e9"}) {
        const std::time_t before = std::time(nullptr);
        const std::string text = compiled(time);
        const auto written = std::strtoll(text.c_str() + text.find("CTIME ") + 6, nullptr, 10);
        EXPECT_THAT(written, testing::AllOf(testing::Ge(before), testing::Le(std::time(nullptr))));
        EXPECT_EQ(said.empty(), time == nullptr || *time == '\0') << said;
    }
}

} // namespace
