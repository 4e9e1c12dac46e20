#include "langlib/lang.h"

#include "handles.h"

#include <cstdlib>
#include <glib.h>
#include <memory>

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
    EXPECT_EQ(dump(nullptr), "<translation>\n  <language>a&amp;b</language>\n  <ctime>12</ctime>\n"
                             "  <translation_list>\n    <translation_entry>\n"
                             "      <key>main:a</key>\n      <value>\xC3\xA9</value>\n"
                             "    </translation_entry>\n    <translation_entry>\n"
                             "      <key>main:z</key>\n"
                             "      <value>&lt;%d&gt; &quot;it&apos;s&quot; \t&#x1;</value>\n"
                             "    </translation_entry>\n"
                             "  </translation_list>\n</translation>\n");
}

TEST_F(LangXml, PrintsAFrameForAnEmptyHandle)
{
    EXPECT_EQ(dump(nullptr), "<translation>\n  <ctime>0</ctime>\n  <translation_list>\n"
                             "  </translation_list>\n</translation>\n");
}

// The values of a handle whose only text is this one.
std::string dumped_value(std::string text)
{
    char key[] = "g:i";
    lang_text_t table[] = {{0, nullptr, nullptr}, {0, key, text.data()}, {0, nullptr, nullptr}};
    lang_handle_t handle{};
    handle.lang = table;
    handle.count = 3;
    handle.loaded = 1;
    const std::string all = dump(&handle);
    const std::size_t start = all.find("<value>") + 7;
    return all.substr(start, all.rfind("</value>") - start);
}

TEST_F(LangXml, EscapesEveryCharacterAsTheMarkupFormatterDoes)
{
    std::string text;
    for (gunichar c = 1; c < 0x110000; c = c < 0x3000 ? c + 1 : c + 97) {
        char bytes[6];
        if (g_unichar_validate(c))
            text.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(c, bytes)));
    }
    text += "\xEF\xBF\xBE\xEF\xBF\xBF"; // no characters of XML, and still UTF-8
    const std::unique_ptr<char, decltype(&g_free)> expected(
        g_markup_printf_escaped("%s", text.c_str()), g_free);
    EXPECT_TRUE(dumped_value(text) == expected.get());
}

TEST_F(LangXml, ReplacesOnlyBytesThatAreNoUtf8)
{
    const std::string bad = "\xEF\xBF\xBD";
    // Cut sequences, an overlong one, a surrogate, a number beyond the last character.
    EXPECT_EQ(dumped_value("\xE2\x82 \xC0\x80 \xED\xA0\x80 \xF4\x90\x80\x80 \xF0\x9F\x98\x80 \xE4"),
              bad + bad + " " + bad + bad + " " + bad + bad + bad + " " + bad + bad + bad + bad +
                  " \xF0\x9F\x98\x80 " + bad);
    std::string text = "LANGUAGE \"\xE4\" GROUP \"g\xFF\" ";
    for (int byte = 32; byte < 256; ++byte)
        if (byte != '"' && byte != '\\')
            text += "\"k" + std::to_string(byte) + "\" { \"<" + static_cast<char>(byte) + ">\" }\n";
    load_process_wide(text);
    expect_well_formed(dump(nullptr));
}
