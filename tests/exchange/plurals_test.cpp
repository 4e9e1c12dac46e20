// The plurals of catalogs: how they count, and what becomes of their forms on the way in and out.

#include "exchange/plural-reader.h"
#include "exchange/sources.h"
#include "langlib/plural-rule.h"

#include <sstream>

#include <gtest/gtest.h>

namespace {

using namespace zel::exchange;

TEST(PluralExpression, CountsAsC)
{
    for (const zel_test::row &row : zel_test::rows_of("exchange/plurals.rows", "expression")) {
        plural_expression expression;
        const std::string wrong = expression.read(row[0]);
        std::string found = wrong;
        for (const std::uint64_t n : {0U, 1U, 2U, 5U, 11U, 22U})
            if (wrong.empty()) {
                const auto form = expression.form(n);
                found += (n == 0 ? "" : " ") + (form ? std::to_string(*form) : "-");
            }
        EXPECT_EQ(found, row[1]) << row[0];
    }
    plural_expression deep;
    const std::string open(31, '(');
    EXPECT_EQ(deep.read(open + "n" + std::string(31, ')')), "");
    EXPECT_EQ(deep.form(7), 7U);
    EXPECT_EQ(deep.read(open + open + "n"), "the expression nests deeper than 32");
    EXPECT_EQ(deep.read(std::string(4001, '!') + "n"), "");
    EXPECT_EQ(deep.form(7), 0U);
    EXPECT_EQ(deep.read(std::string(4100, '!') + "n"), "the expression is longer than 4,096 bytes");
}

// What a project's forms "0", "1" and so on become, and what is said of it.
TEST(PluralReaderSlow, GivesEachNumberItsText)
{
    for (const zel_test::row &row : zel_test::rows_of("exchange/plurals.rows", "language")) {
        plural_header header;
        header.read(row[1]);
        std::vector<std::string> forms;
        for (std::size_t form = 0; form < (header.count == 0 ? 2 : header.count); ++form)
            forms.push_back(std::to_string(form));
        std::istringstream languages(row[0]);
        for (std::string language; languages >> language;) {
            plural_reader reader;
            reader.open(language, row[1], 3);
            const plural_reader::answer answer = reader.join(forms, 7);
            std::string told =
                answer.wrong ? std::to_string(answer.wrong.line) + ": " + answer.wrong.text : "";
            for (const std::string &line : reader.told(true))
                told += (told.empty() ? "" : "; ") + line;
            EXPECT_EQ(answer.text, row[2]) << language << ": " << row[1];
            EXPECT_EQ(told, row[3]) << language << ": " << row[1];
        }
    }
}

TEST(PluralReader, TellsOnlyOfTextsThatDiffer)
{
    plural_reader reader;
    reader.open("sr",
                "nplurals=4; plural=n==1 ? 3 : n%10==1 && n%100!=11 ? 0 : n%10>=2 && n%10<=4 "
                "&& (n%100<10 || n%100>=20) ? 1 : 2",
                1);
    EXPECT_EQ(reader.join({"a", "b", "c", "a "}, 1).text, "a|b|c");
    EXPECT_TRUE(reader.told(true).empty());
    const plural_reader::answer lost = reader.join({"a\n", "b\n", "c\n", "1\n"}, 1);
    EXPECT_EQ(lost.text, "a|b|c");
    EXPECT_EQ(lost.remark, "plural form 3: 1");
    const plural_reader::answer part = reader.join({"a", "", "c", "1"}, 1);
    EXPECT_EQ(part.text + part.remark, "plural form 0: a\nplural form 2: c\nplural form 3: 1");
    EXPECT_EQ(reader.told(false).front(), "left out 1 plural without a text for each form");
    const plural_reader::answer apart = reader.join({"a", "b|", "c", "d"}, 1);
    EXPECT_EQ(apart.text + apart.one + apart.others, "ac");
    EXPECT_EQ(apart.remark,
              "plural form 0: a\nplural form 1: b|\nplural form 2: c\nplural form 3: d");
    EXPECT_EQ(reader.join({"a", "b"}, 9).wrong.text, "2 plural forms, and others have 4");
    reader.open("fr", "nplurals=3; plural=(n<2 ? 0 : n%1000000==0 ? 1 : 2);", 1);
    EXPECT_EQ(reader.join({"a", "b", "b"}, 1).text, "a|b");
    EXPECT_EQ(reader.join({"a", "b", "c"}, 1).text, "a|b|c");
    EXPECT_TRUE(shows_the_same("fr", "a|b", "a|b|b"));
    EXPECT_FALSE(shows_the_same("fr", "a|b", "a|c|b"));
}

// The codes of all languages whose rule is published.
std::vector<std::string> counting_languages()
{
    std::istringstream table(zel_test::read_file(LANG_SOURCE_ROOT "/src/langlib/languages.inc"));
    std::vector<std::string> codes;
    for (std::string line; std::getline(table, line);)
        if (const std::string code = line.substr(0, line.find("\\t"));
            code.starts_with("    \"") && has_plural_rule(code.substr(5)))
            codes.push_back(code.substr(5));
    return codes;
}

std::string numbered(std::size_t forms)
{
    std::string text;
    for (std::size_t form = 0; form < forms; ++form)
        text += (form == 0 ? "" : "|") + std::string("%d ") + static_cast<char>('a' + form);
    return text;
}

// Every language with a text of all its forms and one of the everyday ones. A second export has the
// everyday ones alone, whose header is another one where a form begins at a million.
std::string source_in_all_languages(const std::vector<std::string> &codes, bool with_rare)
{
    std::string head = "define format utf8\ndefault lang \"english\"\n";
    std::string all;
    std::string everyday;
    for (const std::string &code : codes) {
        const zel::plural_forms count = zel::count_plural_forms(plural_rule_of(code));
        head += "define file \"f\" lang \"" + code + "\" 1 1 1\n";
        all += "lang \"" + code + "\" { \"" + numbered(count.all) + "\" }\n";
        everyday += "lang \"" + code + "\" { \"" + numbered(count.everyday) + "\" }\n";
    }
    return head + "group \"g\" { item \"%d day|%d days\" { used yes " + everyday + "}\n" +
           (with_rare ? "item \"one|%d in all\" { used yes " + all + "}\n" : "") + "}\n";
}

TEST(PluralsSlow, GoOutAndComeBackInEveryLanguage)
{
    const bool judged = std::system("command -v msgfmt >/dev/null") == 0;
    std::vector<std::string> codes = counting_languages();
    ASSERT_GT(codes.size(), 200U);
    const zel_test::temp_dir dir;
    for (const bool with_rare : {true, false}) {
        const source_guard source = zel_test::source_of(source_in_all_languages(codes, with_rare));
        export_request request;
        request.source = source.get();
        import_request wishes;
        std::string said;
        wishes.hear = [&](const import_event &event) { said += event.unit->text + "\n"; };
        importer into(source.get(), wishes);
        std::size_t at = 0;
        for (const std::string &file : zel_test::written(request, "po")) {
            wishes.language = codes[at++];
            const fault wrong = into.take(*find_format("po"), wishes.language, file);
            EXPECT_FALSE(wrong) << file << wrong.text;
            EXPECT_EQ(into.plural_notes(), std::vector<std::string>()) << file;
            zel_test::write_file(dir / "x.po", file);
            EXPECT_TRUE(!judged ||
                        std::system(("msgfmt --check -o /dev/null " + (dir / "x.po")).c_str()) == 0)
                << file;
            EXPECT_EQ(file.find("fuzzy"), file.npos) << file;
        }
        EXPECT_EQ(said, "");
        EXPECT_EQ(into.changed() + into.guesses(), 0U);
        // The other header is the same where no form is rare.
        std::erase_if(codes, [](const std::string &code) {
            const zel::plural_forms count = zel::count_plural_forms(plural_rule_of(code));
            return count.all == count.everyday;
        });
    }
    if (!judged)
        GTEST_SKIP() << "gettext is not installed";
}

// What is a plural, and how a German text goes out: its flags and forms.
TEST(Plurals, GoOutWhereTheReferenceCounts)
{
    for (const zel_test::row &row : zel_test::rows_of("exchange/plurals.rows", "reference")) {
        const source_guard source =
            zel_test::source_of("define format utf8\ndefault lang \"english\"\ndefine file \"f\" "
                                "lang \"german\" 1 1 1\n"
                                "GROUP \"g\" { ITEM \"" +
                                row[0] + "\" { USED YES LANG \"german\" { \"" + row[1] +
                                "\" } COMMENT \"english\" { \"" + row[3] + "\" } } }");
        export_request request;
        request.source = source.get();
        std::string file = zel_test::written(request, "po").front();
        EXPECT_EQ(file.find("Plural-Forms: nplurals=2; plural=(n != 1);") != file.npos,
                  file.find("\nmsgid_plural ") != file.npos);
        std::string found;
        std::istringstream lines(file.substr(file.find("\n\n") + 2));
        for (std::string line; std::getline(lines, line);)
            if (!line.starts_with("msgctxt"))
                found += line.substr(line.starts_with("msg") ? 3 : 0) + "\n";
        EXPECT_EQ(found, row[2]) << row.line;
    }
}

// What comes back from others: other headers, other counts, and what cannot be taken.
TEST(Plurals, ComeBackByTheHeaderThatTheyBring)
{
    const source_guard source = zel_test::source_of(
        "define file \"f\" lang \"german\" 1 1 1 file \"h\" lang \"russian\" 1 1 1\n"
        "default lang \"english\"\n"
        "GROUP \"g\" { ITEM \"%d a|%d b\" { USED YES LANG \"russian\" { \"1|2|5\" } } }");
    for (const zel_test::row &row : zel_test::rows_of("exchange/plurals.rows", "return")) {
        std::string said;
        import_request wishes;
        wishes.hear = [&](const import_event &event) {
            said += std::to_string(static_cast<int>(event.kind)) + event.after + ";";
        };
        importer into(source.get(), wishes);
        std::string file =
            "msgid \"\"\nmsgstr \"Language: " + row[0] + "\\nPlural-Forms: " + row[1] +
            "\\n\"\n\nmsgctxt \"g:%d a|%d b\"\nmsgid \"%d a\"\n" + "msgid_plural \"%d b\"\n";
        for (std::size_t form = 0; form + 3 < row.texts.size(); ++form)
            file += "msgstr[" + std::to_string(form) + "] \"" + row[form + 3] + "\"\n";
        if (const fault wrong = into.take(*find_format("po"), "x", file))
            said += std::to_string(wrong.line) + wrong.text;
        for (const std::string &line : into.plural_notes())
            said += line;
        EXPECT_EQ(said, row[2]) << row.line;
    }
}

} // namespace
