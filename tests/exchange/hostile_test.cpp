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
    const std::string po = po_head;
    const std::string open = xliff_head;
    const std::string deep(100000, '[');
    std::string crowd;
    for (int i = 0; i < 1000; ++i)
        crowd += " a" + std::to_string(i) + "=\"b\"";
    const struct {
        const char *format;
        std::string bytes;
        std::uint32_t line;
        const char *text;
    } cases[] = {
        {"po", po + "msgid \"a\"\nmsgstr \"\xFF\"\n", 5, "a byte that is no UTF-8"},
        {"po", po + "msgid \"a\"\nmsgstr \"\\377\"\n", 5, "escapes that make no UTF-8"},
        {"po", po + "msgid \"a\"\nmsgstr \"x\\0\"\n", 5, "an escape that is not known"},
        {"po", po + "msgid \"a\"\nmsgstr \"x\\q\"\n", 5, "an escape that is not known"},
        {"po", po + std::string("msgid \"a\0\"", 10), 4, "a zero byte"},
        {"po", po + "msgid \"a\nmsgstr \"b\"\n", 4, "without its closing quote"},
        {"po", po + "msgid \"a\"\nmsgstr \"", 5, "without its closing quote"},
        {"po", po + "msgid \"a\"\n\nmsgid \"b\"\nmsgstr \"\"\n", 6, "wrong place"},
        {"po", po + "msgid \"a\"\nmsgctxt \"b\"\nmsgstr \"\"\n", 5, "wrong place"},
        {"po", po + "msgstr \"b\"\n", 4, "msgstr without its msgid"},
        {"po", po + "msgid \"a\"\n", 5, "msgstr is missing"},
        {"po", po + "msgid \"a\"\nmsgid_plural \"b\"\nmsgstr[1] \"\"\n", 6, "msgstr[0] is missing"},
        {"po", po + "<<<<<<< ours\n", 4, "no word of a catalog"},
        {"po", "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=KLINGON\\n\"\n", 2,
         "\"KLINGON\" is not known"},
        {"csv", "group,item,german\ng,i,\"x\n", 2, "without its closing quote"},
        {"csv", "group,item,german\n\"g\n\",i,x\ng,\xC3,x\n", 4, "a byte that is no UTF-8"},
        {"csv", "group,german\n", 1, "\"group\" and \"item\" are missing"},
        {"csv", "", 1, "no columns"},
        {"csv", "group,item,german\ng,i,x,y\n", 2, "more cells than columns"},
        {"xliff", "<!DOCTYPE x [<!ENTITY a \"b\">]>\n" + open + "&a;" + xliff_tail, 1,
         "a document type"},
        {"xliff", "<?xml version=\"1.0\"?><!-- > --> <!DOCTYPE x SYSTEM \"/etc/passwd\"><x/>", 1,
         "a document type"},
        {"xliff", "\xFF\xFE" + wide("<!DOCTYPE x [<!ENTITY a \"b\">]><x>&a;</x>"), 1,
         "a byte that is no UTF-8"}, // a document type in another encoding
        {"xliff", wide("<!DOCTYPE x SYSTEM \"/etc/passwd\"><x/>"), 1, ""},
        {"xliff", open + "<target>&a;</target>" + xliff_tail, 2, "a"},
        {"xliff", open + "<target>\n<x id=\"1\"/></target>" + xliff_tail, 3, "a placeholder"},
        {"xliff", open + "<target>a", 2, "a"},
        {"xliff", open + "<target>\xC3</target>" + xliff_tail, 2, "a byte that is no UTF-8"},
        {"xliff", "<!-- < -->\n<xliff version='>'" + crowd + "/>", 2, "more than 1,000 attributes"},
        {"xliff", "<html/>", 1, "no XLIFF"},
        {"xliff", "<xliff version=\"3.0\"/>", 1, "no XLIFF of version 1 or 2"},
        {"json", "{\"language_source\": 1,\n \"app\": \"\xFF\"}", 2, "a byte that is no UTF-8"},
        {"json", "{\"language_source\": 1,\n \"app\": \"\\u0000\"}", 2, "a zero byte"},
        {"json", "{\"language_source\": 1, \"app\": \"\\ud800\"}", 1, "no JSON"},
        {"json", "{\"language_source\": 1,\n\"app\" 2}", 2, "no JSON"},
        {"json", "{\"language_source\": 1, \"ap\": \"x\"}", 0, "ap: not known"},
        {"json", "{}", 0, "\"language_source\" is missing"},
        {"json", "[]", 0, "no object"},
        {"json", "{}\n{}", 2, "something behind the object"},
        {"json", "9[]", 1, "no object"},
        {"json", "", 1, ""},
        {"json", deep, 1, "brackets deeper"},
        {"json", "{\"language_source\":1,\n\"groups\":[{\"items\":[\n{\"ready\":true}]}]}", 3,
         "groups 0 items 0 ready: no whole number"},
        {"json", "{\"language_source\":1,\n\"groups\":[{\"items\":[{\n\"typ\":9999999999}]}]}", 2,
         "too large"},
        {"json", "{\"language_source\":1,\n\"groups\":[{\"items\":[0]}]}", 0, "no object"},
        {"json", "/* */ {}", 1, "only in strings"},
    };
    for (const auto &row : cases) {
        const fault wrong = fault_of(row.format, row.bytes);
        const std::string shown = row.bytes.substr(0, 200);
        EXPECT_TRUE(wrong) << shown;
        EXPECT_EQ(wrong.line, row.line) << shown;
        EXPECT_THAT(wrong.text, HasSubstr(row.text)) << shown;
    }
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

INSTANTIATE_TEST_SUITE_P(Readers, Broken, testing::Values("po", "csv", "xliff", "xliff2", "json"),
                         [](const auto &param) { return std::string(param.param); });

} // namespace
