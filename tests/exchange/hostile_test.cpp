// Files from outside that are broken or mean harm: a clear fault, never more.

#include "exchange/json.h"
#include "exchange/sources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace zel::exchange;
using testing::HasSubstr;
using zel_test::found;

constexpr char po_head[] = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n";
constexpr char xliff_head[] =
    "<xliff version=\"1.2\"><file target-language=\"de\"><body>\n<trans-unit id=\"g:i\">";
constexpr char xliff_tail[] = "</trans-unit></body></file></xliff>";

fault fault_of(const std::string &format, const std::string &bytes)
{
    if (format != "json")
        return found(format.c_str(), bytes).wrong;
    fault wrong;
    const source_guard source = read_json(bytes, 1, wrong);
    EXPECT_EQ(source == nullptr, static_cast<bool>(wrong));
    return wrong;
}

// In UTF-16.
std::string wide(std::string_view text)
{
    std::string out;
    for (const char c : text)
        out.append(1, c).append(1, '\0');
    return out;
}

TEST(Hostile, FaultsNameTheirLineAndCause)
{
    const std::string deep(100000, '[');
    std::string crowd;
    for (int i = 0; i < 1000; ++i)
        crowd += " a" + std::to_string(i) + "=\"b\"";
    const auto expect_fault = [](const std::string &format, const std::string &bytes,
                                 std::uint32_t line, const std::string &text) {
        const fault wrong = fault_of(format, bytes);
        const std::string shown = bytes.substr(0, 200);
        EXPECT_TRUE(wrong) << shown;
        EXPECT_EQ(wrong.line, line) << shown;
        EXPECT_THAT(wrong.text, HasSubstr(text)) << shown;
    };
    for (const zel_test::row &row : zel_test::rows_of("exchange/hostile.rows")) {
        std::string bytes;
        for (std::size_t at = 0; at < row[0].size(); ++at)
            bytes += row[0][at] != '@'         ? std::string(1, row[0][at])
                     : row.section == "po"     ? po_head
                     : row.section == "ts"     ? "<!DOCTYPE TS>\n<TS language=\"de\"><message>"
                     : at + 1 == row[0].size() ? xliff_tail
                                               : xliff_head;
        expect_fault(row.section, bytes, static_cast<std::uint32_t>(std::stoi(row[1])), row[2]);
    }
    expect_fault("xliff", "\xFF\xFE" + wide("<!DOCTYPE x [<!ENTITY a \"b\">]><x>&a;</x>"), 1,
                 "a byte that is no UTF-8");
    expect_fault("xliff", wide("<!DOCTYPE x SYSTEM \"/etc/passwd\"><x/>"), 1, "");
    expect_fault("xliff", "<!-- < -->\n<xliff version='>'" + crowd + "/>", 2,
                 "more than 1,000 attributes");
    expect_fault("json", deep, 1, "brackets deeper");
}

// A text that grows while it is read must not outgrow the bytes that were sent.
TEST(HostileSlow, SizesAreBounded)
{
    const std::string large(largest_text + 1, 'x');
    EXPECT_THAT(fault_of("po", po_head + ("msgid \"" + large + "\"\nmsgstr \"\"\n")).text,
                HasSubstr("more than 8 MB"));
    EXPECT_THAT(fault_of("csv", "group,item,german\ng,i," + large + "\n").text,
                HasSubstr("more than 8 MB"));
    EXPECT_TRUE(fault_of("xliff", xliff_head + ("<target>" + large + "</target>") + xliff_tail));
    EXPECT_THAT(fault_of("json", "{\"app\": \"" + large + "\"}").text, HasSubstr("more than 8 MB"));
    EXPECT_THAT(fault_of("csv", std::string(3000, ',')).text, HasSubstr("columns"));
    std::string nested = xliff_head;
    for (int depth = 0; depth < 200; ++depth)
        nested += "<group>";
    EXPECT_THAT(fault_of("xliff", nested).text, HasSubstr("deeper"));
    std::string bytes;
    EXPECT_EQ(read_input("/dev/zero", bytes).text, "larger than 512 MB");
    EXPECT_EQ(read_input("/no/such/file", bytes).text, "No such file or directory");
    EXPECT_EQ(read_input("/", bytes).text, "Is a directory");
}

// Every reader, for a good file of its own cut at every byte, and with bytes changed at random.
class Broken : public testing::TestWithParam<const char *> {};

TEST_P(Broken, IsReadOrRefused)
{
    const std::string format = GetParam();
    const source_guard source = zel_test::source_of(zel_test::awkward_source(3, false).make(6));
    export_request request;
    request.source = source.get();
    request.comments = true;
    const std::string good = zel_test::written(request, format.c_str()).back();
    EXPECT_FALSE(fault_of(format, good));
    std::size_t refused = 0;
    for (std::size_t end = 0; end < good.size(); ++end)
        refused += fault_of(format, good.substr(0, end)) ? 1 : 0;
    EXPECT_GT(refused, good.size() / 4);
    std::mt19937 random(5);
    refused = 0;
    for (int times = 0; times < 4000; ++times)
        refused += fault_of(format, zel_test::mutated(good, random)) ? 1 : 0;
    EXPECT_GT(refused, 1000U);
    EXPECT_LT(refused, 4000U);
}

INSTANTIATE_TEST_SUITE_P(Readers, Broken,
                         testing::Values("po", "ts", "csv", "xliff", "xliff2", "tmx", "json"),
                         [](const auto &param) { return std::string(param.param); });

} // namespace
