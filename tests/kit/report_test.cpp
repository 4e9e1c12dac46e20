// The word report: the page it writes, without a browser.

#include "kit/run-kit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using zel_test::kit;
using zel_test::read_file;
using zel_test::write_file;

class Report : public testing::Test {
protected:
    Report()
    {
        write_file("app.lang-src",
                   "define format utf8\n"
                   "define file \"e\" lang \"english\" 200 200 1\n"
                   "file \"g\" lang \"german\" 200 200 1 file \"g\" lang \"x\" 1 1 1\n"
                   "GROUP \"main\" {\n"
                   "ITEM \"</script><!--\" { READY 1 USED YES { \"00012:a.c\" }\n"
                   "LANG \"english\" { \"Name:\" } LANG \"german\" { \"Na\" \"me\" }\n"
                   "LANG \"klingon\" { \"x\" } COMMENT \"german\" { \"a title\" } } }\n"
                   "GROUP \"../main\" { } GROUP \"other\" { }\n");
    }
    static std::string data_of(const std::string &page)
    {
        const std::string mark = "id=\"data\">";
        const std::size_t start = page.find(mark) + mark.size();
        return page.substr(start, page.find("</script>", start) - start);
    }
    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

TEST_F(Report, HoldsTheTextsAsData)
{
    const auto result = kit("report app.lang-src");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, StartsWith("<!DOCTYPE html>\n"));
    EXPECT_THAT(result.out, EndsWith("</html>\n"));
    EXPECT_EQ(result.out.find("://"), std::string::npos); // nothing is asked for anywhere
    const std::string data = data_of(result.out);
    EXPECT_THAT(data, Not(HasSubstr("<")));
    EXPECT_THAT(data,
                HasSubstr("\n[\"\\u003c/script>\\u003c!--\",3,\"\",[\"Name:\",\"Name\",null],"));
    EXPECT_THAT(data, HasSubstr(",\"there is no sign at the end, the reference has a colon\"]"));
    EXPECT_THAT(data, HasSubstr("[-1,5,\"klingon: the language has no definition, so its text is "
                                "never used\"]"));
    EXPECT_THAT(data, HasSubstr("[[1,\"a title\"]],[\"00012:a.c\"]]"));
    EXPECT_THAT(data, HasSubstr("\"findings\":[[-1,4,\"x: the file \\\"g\\\" is that of german "
                                "already\"]]"));
    // The states are filters of the page, no findings.
    EXPECT_THAT(data, Not(HasSubstr("\"there is no text\"]")));
}

TEST_F(Report, GoesWholeToAFileOrNotAtAll)
{
    EXPECT_EQ(kit("report -o page.html app.lang-src").out, "");
    const std::string page = read_file("page.html");
    EXPECT_THAT(page, EndsWith("</html>\n"));
    write_file("bad.lang-src", "GROUP 7");
    const auto bad = kit("report -o page.html bad.lang-src none.lang-src");
    EXPECT_EQ(bad.status, 2);
    EXPECT_THAT(bad.err, HasSubstr("bad.lang-src:1:7: error: GROUP needs a name in quotes"));
    EXPECT_THAT(
        bad.err,
        HasSubstr("lang-kit: none.lang-src: the file cannot be read: No such file or directory\n"));
    EXPECT_EQ(read_file("page.html"), page);
    EXPECT_EQ(kit("report -o none/page.html app.lang-src").status, 2);
    // What can be read is shown.
    const auto some = kit("report bad.lang-src app.lang-src");
    EXPECT_EQ(some.status, 2);
    EXPECT_THAT(some.out, HasSubstr("\"path\":\"app.lang-src\""));
}

TEST_F(Report, IsTheSameForTheSameTime)
{
    setenv("SOURCE_DATE_EPOCH", "1700000000", 1);
    EXPECT_EQ(kit("report app.lang-src").out, kit("report app.lang-src").out);
    EXPECT_THAT(kit("report app.lang-src").out, HasSubstr("{\"made\":\"2023-11-1"));
    unsetenv("SOURCE_DATE_EPOCH");
}

TEST_F(Report, EmbedsTheScreenshotsThatAreOnes)
{
    std::filesystem::create_directories("ScreenShots");
    write_file("ScreenShots/main.jpg", "\xFF\xD8\xFF\xE0 picture");
    write_file("ScreenShots/other.jpg", "#!/bin/sh");
    write_file("main.jpg", "\xFF\xD8\xFF\xE0 elsewhere"); // what "../main" would name
    const std::string page = kit("report --screenshots app.lang-src").out;
    EXPECT_THAT(page,
                HasSubstr("{\"name\":\"main\",\"shot\":\"data:image/jpeg;base64,/9j/4CBwaWN0dXJl"
                          "\",\"items\""));
    EXPECT_EQ(page.find("base64,"), page.rfind("base64,"));
    EXPECT_THAT(kit("report app.lang-src").out, Not(HasSubstr("base64,")));
}

} // namespace
