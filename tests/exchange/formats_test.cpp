// What the readers and writers of the formats do one by one.

#include "exchange/c-format.h"
#include "exchange/csv.h"
#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/po-read.h"
#include "exchange/sources.h"
#include "exchange/xliff.h"

#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace zel::exchange;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using zel_test::found;
using zel_test::source_of;
using zel_test::written;

std::string key_of(const std::string &group, const std::string &item)
{
    std::string key;
    append_key(key, group, item);
    return key;
}

TEST(Key, StandsForOneItemOnly)
{
    EXPECT_EQ(key_of("menu", "_Open"), "menu:_Open");
    EXPECT_EQ(key_of("a:b", "c:d"), "a\\:b:c:d");
    EXPECT_EQ(xliff_id("az:AZ-09._/"), "az:AZ-09._5F_2F");
    EXPECT_EQ(key_of("", "two\nlines\t\x01\xFF\\"), ":two\\nlines\\t\\x01\\xff\\\\");
    std::set<std::string> keys;
    std::set<std::pair<std::string, std::string>> names;
    for (unsigned seed = 0; seed < 3; ++seed) {
        zel_test::awkward_source make(seed, true);
        for (int times = 0; times < 2000; ++times) {
            const std::string group = make.text(3);
            const std::string item = make.text(3);
            const std::string key = key_of(group, item);
            EXPECT_EQ(key.find_first_of("\n\r\t\x01"), std::string::npos);
            keys.insert(key);
            names.insert({group, item});
            std::string group_again;
            std::string item_again;
            ASSERT_TRUE(split_key(key, group_again, item_again)) << key;
            EXPECT_EQ(group_again, group);
            EXPECT_EQ(item_again, item);
            std::string same;
            EXPECT_TRUE(read_xliff_id(xliff_id(key), same));
            EXPECT_EQ(same, key);
        }
    }
    EXPECT_EQ(keys.size(), names.size());
    std::string group;
    std::string item;
    for (const char *none : {"", "no colon", "a\\", "a\\q:b", "a:b\\x0", "a:b\\x00", "a:b\\xg1"})
        EXPECT_FALSE(split_key(none, group, item)) << none;
}

TEST(Carry, AnyBytesTravelAsCharacters)
{
    const auto carried = [](std::string_view text, holds what) {
        std::string out;
        append_carried(out, text, what);
        return out;
    };
    EXPECT_EQ(carried("plain \xC3\xB6\x01", holds::utf8), "plain \xC3\xB6\x01");
    EXPECT_EQ(carried("\x01\t", holds::xml), "\xEE\xBC\x81\t");
    EXPECT_EQ(carried("\xFF", holds::utf8), "\xEE\xBF\xBF");
    EXPECT_EQ(carried("a\tb\r\n", holds::cells), "a\xEE\xBC\x89"
                                                 "b\xEE\xBC\x8D\n");
    std::mt19937 random(1);
    for (int times = 0; times < 20000; ++times) {
        std::string text;
        for (std::size_t length = random() % 8; length > 0; --length)
            text += random() % 2 == 0
                        ? std::string(1, static_cast<char>(1 + random() % 255))
                        : zel_test::awkward_pieces()[random() % zel_test::awkward_pieces().size()];
        for (const holds what : {holds::utf8, holds::xml, holds::cells}) {
            std::string out = carried(text, what);
            EXPECT_EQ(valid_length(out), out.size());
            EXPECT_EQ(must_carry(text, what), out != text);
            uncarry(out, encoding::any);
            EXPECT_EQ(out, text);
        }
    }
    // A translator's own private character stays what it is where bytes must be UTF-8.
    std::string own = "\xEE\xBE\x85";
    uncarry(own, encoding::utf8);
    EXPECT_EQ(own, "\xEE\xBE\x85");
}

TEST(Po, ReadsWhatCatalogsHold)
{
    po_reader reader("\xEF\xBB\xBF# rem\\\nark\n#\n#. hint\n#: a.c:1 \xE2\x81\xA8"
                     "b c.c\xE2\x81\xA9:2\r\n"
                     "#, fuzzy, c-format ,range: 1..5\n#| msgctxt \"old\"\n#| msgid \"was\"\n"
                     "msgctxt \"c\\\ntx\"\nmsgid \"o\" \"ne\\n\"\n  \"\\x41\\101\\v\"\n"
                     "msgid_plural \"many\"\nmsgstr[0] \"1\"\nmsgstr[1] \"\\303\\266\"\n"
                     "#~ msgid \"gone\"\n#~ \" far\"\n#~ msgstr \"weg\"\n# end\n");
    po_message message;
    ASSERT_TRUE(reader.next(message)) << reader.wrong().text;
    EXPECT_THAT(message.remarks, ElementsAre("remark", ""));
    EXPECT_THAT(message.extracted, ElementsAre("hint"));
    EXPECT_THAT(message.references, ElementsAre("a.c:1", "\xE2\x81\xA8"
                                                         "b c.c\xE2\x81\xA9:2"));
    EXPECT_TRUE(message.fuzzy);
    EXPECT_THAT(message.flags, ElementsAre("c-format", "range: 1..5"));
    EXPECT_EQ(message.previous.context, "old");
    EXPECT_EQ(message.previous.text, "was");
    EXPECT_EQ(message.id.context, "ctx");
    EXPECT_EQ(message.id.text, "one\nAA\v");
    EXPECT_EQ(message.id.plural, "many");
    EXPECT_THAT(message.texts, ElementsAre("1", "\xC3\xB6"));
    EXPECT_EQ(message.line, 9U);
    ASSERT_TRUE(reader.next(message));
    EXPECT_TRUE(message.obsolete);
    EXPECT_EQ(message.id.text, "gone far");
    EXPECT_FALSE(message.id.context);
    EXPECT_FALSE(reader.next(message));
    EXPECT_FALSE(reader.wrong()) << reader.wrong().text;
}

TEST(Po, ReadsTheEncodingThatItsHeaderNames)
{
    const auto read = [](const std::string &charset, const std::string &text) {
        const std::string bytes =
            "msgid \"\"\nmsgstr \"\"\n\"Content-Type: text/plain; charset=" + charset +
            "\\n\"\n\nmsgid \"a\"\nmsgstr \"" + text + "\"\n";
        po_reader reader(bytes);
        po_message head;
        po_message message;
        if (!reader.next(head) || !reader.next(message))
            return std::to_string(reader.wrong().line) + reader.wrong().text;
        return head.texts.front() + message.texts.front();
    };
    const std::string head = "Content-Type: text/plain; charset=UTF-8\n";
    EXPECT_EQ(read("ISO-8859-1", "\xF6"), head + "\xC3\xB6");
    // The second byte of this character is a backslash.
    EXPECT_EQ(read("SHIFT_JIS", "\x95\x5C"), head + "\xE8\xA1\xA8");
    EXPECT_EQ(read("utf-8", "\xC3\xB6"), "Content-Type: text/plain; charset=utf-8\n\xC3\xB6");
    EXPECT_EQ(read("ASCII", "\xC3\xB6"), head + "\xC3\xB6");
    EXPECT_EQ(read("EUC-JP", "\xFF"), "6a byte that is no EUC-JP");
}

TEST(Po, MarksWhatACatalogsCompilerWouldRefuse)
{
    const auto po = [](const std::string &english, const std::string &german, bool fuzzy = false) {
        const source_guard source =
            source_of("define file \"f\" lang \"english\" 1 1 1 file \"g\" lang \"german\" 1 1 1\n"
                      "GROUP \"g\" { ITEM \"i\" { USED YES LANG \"english\" { \"" +
                      english + "\" } LANG \"german\" { \"" + german + "\" } } }");
        export_request request;
        request.source = source.get();
        request.fuzzy = fuzzy;
        return written(request, "po")[1];
    };
    EXPECT_THAT(po("a", "b"), Not(HasSubstr("#,")));
    EXPECT_THAT(po("a", "b", true), HasSubstr("#, fuzzy\n"));
    EXPECT_THAT(po("a", "", true), Not(HasSubstr("#,")));
    EXPECT_THAT(po("%d of %s", "%d von %s"), HasSubstr("#, c-format\n"));
    EXPECT_THAT(po("%d of %s", "%s: %d"), HasSubstr("#, fuzzy, c-format\n"));
    EXPECT_THAT(po("%d of %s", "%2$s: %1$d"), HasSubstr("#, c-format\n"));
    EXPECT_THAT(po("50% done", "50 % fertig"), Not(HasSubstr("#,")));
    EXPECT_THAT(po("100%", "%"), Not(HasSubstr("#,")));
    EXPECT_THAT(po("a\\n", "b"), HasSubstr("#, fuzzy\n"));
    EXPECT_THAT(po("\\na", "b"), HasSubstr("#, fuzzy\n"));
}

TEST(CFormat, GivesTheTypeOfEachArgument)
{
    const auto types = [](std::string_view text) {
        const auto found = c_format_arguments(text);
        std::string out = found ? "" : "none";
        for (const auto &type : found.value_or(std::vector<std::string_view>()))
            out.append(out.empty() ? "" : " ").append(type);
        return out;
    };
    EXPECT_EQ(types("no %% conversions"), "");
    EXPECT_EQ(types("%d %i %5.2f %-8s %lu %hhx %c"), "d d f s lu hhu c");
    EXPECT_EQ(types("%*.*f"), "d d f");
    EXPECT_EQ(types("%2$s %1$*3$d %2$s"), "d s d");
    for (const char *none :
         {"%", "% d", "%y", "%1$s %d", "%2$s", "%1$s %1$d", "%99999$d", "%hs", "%101$d", "%0$d"})
        EXPECT_EQ(types(none), "none") << none;
}

TEST(Csv, ReadsWhatSpreadsheetsMakeOfIt)
{
    const auto read = [](const std::string &bytes) {
        std::string out;
        const auto all = found("csv", bytes);
        EXPECT_FALSE(all.wrong) << all.wrong.text;
        for (const text_unit &unit : all.units)
            if (!unit.text.empty())
                out += unit.group + "/" + unit.item + " " + all.languages[unit.language].name +
                       "=" + unit.text + "@" + std::to_string(unit.line) + "|";
        return out;
    };
    EXPECT_EQ(read("\xEF\xBB\xBFgroup;item;german\r\ng;i;\"a;\"\"b\"\"\"\r\n"),
              "g/i german=a;\"b\"@2|");
    EXPECT_EQ(read("german\titem\tgroup\nx\ti\tg\n\n\t\t\ny\tj\tg"),
              "g/i german=x@2|g/j german=y@5|");
    EXPECT_EQ(read("group,item,german,,french\n\"g\n\n\",i,x,note,y\ng,k\n"),
              "g\n\n/i german=x@2|g\n\n/i french=y@2|");
    // A formula's sign is taken off, another apostrophe stays.
    EXPECT_EQ(read("group,item,german\ng,i,'=1\ng,j,'tis\ng,k,''tis\ng,l,=1\n"),
              "g/i german==1@2|g/j german='tis@3|g/k german='tis@4|g/l german==1@5|");
}

TEST(Xliff, ReadsWhatToolsMakeOfIt)
{
    const auto one = found(
        "xliff",
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><x:xliff version=\"1.2\" xmlns:x=\"u\">"
        "<x:file target-language=\"pt-BR\"><x:body><x:group><x:trans-unit id=\"a\\:b:c\" "
        "approved=\"yes\"><x:source>s</x:source><x:target>\xC3\xB6 <x:g>in</x:g> &#x41;&amp;"
        "<![CDATA[<b>]]></x:target><x:note>new</x:note><x:note from=\"comment\">old</x:note>"
        "<x:note from=\"description\">d</x:note>"
        "<x:alt-trans><x:source>no</x:source><x:target>no</x:target></x:alt-trans>"
        "</x:trans-unit></x:group></x:body></x:file></x:xliff>");
    EXPECT_FALSE(one.wrong) << one.wrong.text;
    ASSERT_EQ(one.units.size(), 1U);
    EXPECT_EQ(one.languages.front().code, "pt_BR");
    const text_unit &unit = one.units.front();
    EXPECT_EQ(unit.group + "|" + unit.item, "a:b|c");
    EXPECT_EQ(unit.reference, "s");
    EXPECT_EQ(unit.text, "\xC3\xB6 in A&<b>");
    EXPECT_TRUE(unit.final);
    EXPECT_EQ(unit.note.text, "old\nnew");
    EXPECT_TRUE(unit.note.replaces);

    const auto two = found(
        "xliff2",
        "<xliff version=\"2.1\" trgLang=\"sr-Latn\"><file><notes><note category=\"language\">"
        "serbian</note></notes>"
        "<unit id=\"g:_5Fa\"><segment state=\"final\"><source>1</source><target>eins</target>"
        "</segment><ignorable><source> </source></ignorable><segment state=\"final\"><source>2"
        "</source><target>zwei<cp hex=\"0001\"/></target></segment></unit>"
        "<unit id=\"g:b\"><segment><source>1</source><target>eins</target></segment>"
        "<segment><source>2</source></segment></unit>"
        "<unit id=\"g:c\"><segment state=\"initial\"><source>1</source><target>1</target>"
        "</segment></unit></file></xliff>");
    EXPECT_FALSE(two.wrong) << two.wrong.text;
    ASSERT_EQ(two.units.size(), 3U);
    EXPECT_EQ(two.languages.back().code, "sr@latin");
    EXPECT_EQ(two.languages.back().name, "serbian");
    EXPECT_EQ(two.units[0].item, "_a");
    EXPECT_EQ(two.units[0].text, "eins zwei\x01");
    EXPECT_TRUE(two.units[0].final);
    EXPECT_EQ(two.units[1].text, "");
    EXPECT_TRUE(two.units[2].fuzzy);
    EXPECT_FALSE(two.units[2].final);
}

TEST(LanguageCode, NamesAndCodesFindEachOther)
{
    EXPECT_EQ(code_of("German"), "de");
    EXPECT_EQ(code_of("brazilian portuguese"), "pt_BR");
    EXPECT_EQ(code_of("pt-BR"), "pt_BR");
    EXPECT_EQ(code_of("Portuguese (Brazil)"), "pt_BR");
    EXPECT_EQ(code_of("Serbian (Latin)"), "sr@latin");
    EXPECT_EQ(code_of("Deutsch (alt)"), "");
    EXPECT_EQ(name_of_code("de"), "german");
    EXPECT_EQ(name_of_code("zh"), "chinese");
    EXPECT_EQ(name_of_code("fr_XY"), "french");
    EXPECT_EQ(name_of_code("xx"), "");
    for (const char *code : {"de", "pt_BR", "sr@latin", ""})
        EXPECT_EQ(code_of_xml(xml_code(code)), code);
}

TEST(ReadFileTexts, KnowsTheFormatByTheEnding)
{
    const zel_test::temp_dir dir;
    zel_test::write_file(dir / "x.po", "msgctxt \"g:i\"\nmsgid \"a\"\nmsgstr \"b\"\n");
    const read_answer answer = read_file_texts(nullptr, dir / "x.po");
    EXPECT_FALSE(answer.wrong);
    ASSERT_EQ(answer.file.units.size(), 1U);
    EXPECT_EQ(answer.file.units.front().reference, "a");
    EXPECT_EQ(answer.file.units.front().item, "i");
    EXPECT_TRUE(read_file_texts(nullptr, dir / "x.txt").wrong);
    EXPECT_TRUE(read_file_texts("json", dir / "x.po").wrong);
    EXPECT_TRUE(read_file_texts("po", dir / "none.po").wrong);
}

} // namespace
