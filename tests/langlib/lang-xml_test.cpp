#include "langlib/lang.h"

#include "handles.h"

#include <cstdlib>

using namespace langlib_test;
using zel_test::capture_stdout;

namespace {

std::string dump(lang_handle_t *handle)
{
    return capture_stdout([handle] { lang_debug_print(stdout, handle); });
}

void expect_well_formed(const std::string &text)
{
    zel_test::write_file("dump.xml", text);
    if (std::system("command -v xmllint >/dev/null") != 0)
        return zel_test::missing("xmllint");
    EXPECT_EQ(std::system("xmllint --noout dump.xml"), 0) << text;
}

} // namespace

class LangXml : public loading {};

TEST_F(LangXml, PrintsTheTable)
{
    load_process_wide("LANGUAGE \"a&b\" CTIME 12 GROUP main "
                      "z { \"<%d> \\\"it's\\\" \\t\\x01\" } none { } a { \"\xC3\xA9\" }");
    EXPECT_EQ(dump(nullptr),
              "<translation>\n  <language>a&amp;b</language>\n  <ctime>12</ctime>\n"
              "  <translation_list>\n    <translation_entry>\n"
              "      <key>main:a</key>\n      <value>\xC3\xA9</value>\n"
              "    </translation_entry>\n    <translation_entry>\n"
              "      <key>main:z</key>\n"
              "      <value>&lt;%d&gt; &quot;it&apos;s&quot; \t\xEF\xBF\xBD</value>\n"
              "    </translation_entry>\n"
              "  </translation_list>\n</translation>\n");
    expect_well_formed(dump(nullptr));
}

TEST_F(LangXml, PrintsAFrameForAnEmptyHandle)
{
    EXPECT_EQ(dump(nullptr), "<translation>\n  <ctime>0</ctime>\n  <translation_list>\n"
                             "  </translation_list>\n</translation>\n");
}

TEST_F(LangXml, IsWellFormedWhateverTheBytes)
{
    std::string text = "LANGUAGE \"\xE4\" GROUP \"g\xFF\" ";
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '"' && byte != '\\' && byte != '\n' && byte != '\r')
            text += "\"k" + std::to_string(byte) + "\" { \"<" + static_cast<char>(byte) + ">\" }\n";
    // Cut sequences, an overlong one, a surrogate, two characters that no document may hold.
    text += "w { \"\xE2\x82 \xC0\x80 \xED\xA0\x80 \xEF\xBF\xBE \xEF\xBF\xBF \xF0\x9F\x98\x80\" }";
    load_process_wide(text);
    const std::string printed = dump(nullptr);
    const std::string bad = "\xEF\xBF\xBD";
    EXPECT_NE(printed.find("<value>" + bad + bad + " " + bad + bad + " " + bad + bad + bad + " " +
                           bad + " " + bad + " \xF0\x9F\x98\x80</value>"),
              printed.npos)
        << printed.substr(printed.size() - 200);
    EXPECT_NE(printed.find("<value>&lt;&#x7f;&gt;</value>"), printed.npos);
    expect_well_formed(printed);
}
