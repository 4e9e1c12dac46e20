// The faults that programs of this kind are known for, each with a file that would show it. Where
// such files are tried elsewhere, docs/trust.md names the test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "shell.h"
#include "working-dir.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using zel_test::read_file;
using zel_test::write_file;

constexpr char head[] = "define format utf8 app \"a\" default lang \"english\"\n"
                        "define file \"english.lang\" lang \"english\" 2 2 1\n"
                        "define file \"german.lang\" lang \"german\" 2 2 1\n";

std::string replaced(std::string text, std::string_view what, std::string_view with)
{
    for (std::size_t at = text.find(what); at != text.npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
    return text;
}

std::string many(const char *piece, int count = 100000)
{
    std::string text;
    while (count-- > 0)
        text += piece;
    return text;
}

class KnownFaults : public zel_test::working_dir {
protected:
    // What the command prints. It ends by itself, and no sanitizer has a word to say.
    std::string run(const std::string &line)
    {
        const auto ended = zel_test::shell(
            "HOME=\"$PWD\"; kit() { lang-kit \"$@\"; }; exec 2>&1\n" + limit + line);
        const std::string &said = ended.out;
        EXPECT_TRUE(ended.status >= 0 && ended.status <= 2) << line << ended.status;
        EXPECT_THAT(said, Not(testing::ContainsRegex("runtime error|Sanitizer"))) << line;
        return said;
    }

    std::string limit;
};
using KnownFaultsSlow = KnownFaults;

// A string freed twice: where one is given again, the one before is released once.
TEST_F(KnownFaults, WhatIsGivenTwiceIsReleasedOnce)
{
    std::string twice = head;
    for (const char *value : {"one", "two", "three"})
        twice += replaced("create_date \"@\" app \"@\" default lang \"@\"\n", "@", value);
    twice +=
        "group \"g\" { screen_shot \"a\" screen_shot \"b\" screen_shot \"c\"\n"
        "item \"i\" { description \"a\" description \"b\" description \"c\" used yes { \"1:a\" } "
        "used yes { \"2:a\" } lang \"german\" { \"x\" } lang \"german\" { \"y\" } } }\n";
    write_file("a.lang-src", twice);
    run("lang convert a.lang-src new.lang-src");
    const std::string written = read_file("new.lang-src");
    EXPECT_THAT(written, HasSubstr("app \"three\""));
    EXPECT_THAT(written, HasSubstr("SCREEN_SHOT  \"c\""));
    EXPECT_THAT(written, HasSubstr("DESCRIPTION  \"c\""));
    EXPECT_THAT(run("kit show a.lang-src"), HasSubstr("\"y\""));
}

// Integer overflow: each number that a file holds, just below and beyond what a type can hold.
TEST_F(KnownFaultsSlow, NumbersBeyondEveryType)
{
    const std::string source =
        "version @ whatsnew @ ctime @ mtime @\n" + std::string(head) +
        "define file \"f.lang\" lang \"french\" @ @ @ colwidth group @ colwidth item @\n"
        "group \"g\" { visible @ item \"%@s %@$d %.@d %*@$d\" { description "
        "\"width=@;formater=%@d\"\n"
        "size @ @ typ @ rowheight @ ctime -@ visible @ ready @ used yes { \"@:a.c\" }\n"
        "lang \"english\" { \"%@$s %@d|%@$n @\" } lang \"german\" { \"%@s @,@.@ \\x@\" } } }\n";
    const char *const catalog =
        "msgid \"\"\nmsgstr \"\"\n\"Language: de\\n\"\n"
        "\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
        "\"Plural-Forms: nplurals=@; plural=n==@;\\n\"\n\n#: a.c:@\nmsgctxt \"g\"\nmsgid \"i\"\n"
        "msgid_plural \"is\"\nmsgstr[0] \"x\"\nmsgstr[@] \"y\"\n";
    for (const char *number : {"2147483647", "2147483648", "9223372036854775808",
                               "18446744073709551616", "99999999999999999999999999"}) {
        SCOPED_TRACE(number);
        write_file("a.lang-src", replaced(source, "@", number));
        write_file("a.c", replaced("# @ \"f.c\"\n#line @\nlang_get_string(\"g\", \"i@\");\n"
                                   "lang_get_fmt(\"formater=%@s\", \"g\", \"%@d\");\n",
                                   "@", number));
        write_file("a.po", replaced(catalog, "@", number));
        std::filesystem::remove("new.lang-src");
        run("lang convert a.lang-src new.lang-src");
        EXPECT_THAT(read_file("new.lang-src"), HasSubstr("ROWHEIGHT 2147483647\n"));
        for (const char *word : {"lint", "stat", "report -o a.html", "pseudo -o p.lang-src",
                                 "export --format po -o .", "export --format json -o ."})
            run(std::string("kit ") + word + " a.lang-src");
        EXPECT_THAT(run("kit diff a.lang-src new.lang-src"), Not(HasSubstr("error")));
        EXPECT_THAT(run("kit import --format po -o i.lang-src a.lang-src a.po"),
                    HasSubstr("a.po:12: error: msgstr[1] is missing"));
        EXPECT_THAT(run("lang check a.lang-src a.c"), HasSubstr("insert item"));
        run("lang compile -dst-dir . a.lang-src");
    }
}

// Stack overflow by nesting: with a stack on which no function calls itself a thousand times.
TEST_F(KnownFaultsSlow, NestingUsesNoStack)
{
    limit = "ulimit -s 256 2>/dev/null || ulimit -s 1024\n";
    const std::string item = std::string(head) + "group \"g\" { item \"i\" { used yes ";
    const std::string xliff = "<xliff version=\"1.2\"><file target-language=\"de\"><body>";
    const std::string po =
        "msgid \"\"\nmsgstr \"\"\n\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
        "\"Plural-Forms: nplurals=2; plural=";
    const char *const lint = "kit lint a", *const check = "lang check none a";
    const auto import = [](const char *format) {
        return std::string("kit import --format ") + format + " -o i small a";
    };
    const auto texts = [&](const std::string &own) {
        return item + "lang \"english\" { \"x\" } lang \"german\" { \"" + own + "\" } } }";
    };
    const struct {
        std::string bytes, command;
        const char *said;
    } rows[] = {
        {many("{"), lint, "error"},
        {many("group \"g\" {"), lint, "nothing of a group begins here"},
        {item + "lang \"english\" " + many("{"), lint, "the item must end here"},
        {many("/*"), lint, "no statement begins here"},
        {texts(many("(")), lint, "[bracket]"},
        {texts(many(")")), lint, "[bracket]"},
        {texts(many("<b>")), lint, "[markup]"},
        {texts(many("%(")), "kit pseudo -o p a", "1 new text"},
        {"x = " + many("{"), check, ""},
        {"x = " + many("(") + "lang_get_string(\"g\", \"i\")" + many(")"), check, "->g<->i<-"},
        {many("lang_get_string(\"g\", "), check, ""},
        {many("/*") + "lang_get_string(\"g\", \"i\");", check, ""},
        {many("#if 1\n") + "lang_get_string(\"g\", \"i\");", check, "->g<->i<-"},
        {"x = \"" + many("lang_get_string(\\\"") + "\";", check, ""},
        {many("["), import("json"), "brackets deeper"},
        {many("{\"a\":"), import("json"), "brackets deeper"},
        {xliff + many("<group>"), import("xliff"), "deeper"},
        {xliff + "<trans-unit id=\"g:i\"><target>" + many("<g>"), import("xliff"), "deeper"},
        {po + many("(") + "n" + many(")") + "\\n\"\n", import("po"), ""},
        {po + many("n?") + "n" + many(":n") + "\\n\"\n", import("po"), ""},
    };
    write_file("small", item + "} }");
    for (const auto &row : rows) {
        write_file("a", row.bytes);
        std::filesystem::remove("none");
        EXPECT_THAT(run(row.command).substr(0, 2000), HasSubstr(row.said))
            << row.command << ": " << row.bytes.substr(0, 200);
    }
}

// A text used as a format: every name and text is one, and none is taken for it.
TEST_F(KnownFaults, NoTextIsAFormat)
{
    const std::string format = "%n%s%99999d%n";
    write_file(
        "a.lang-src",
        replaced(
            "define format utf8 app \"@\" default lang \"@\"\n"
            "define file \"@.lang\" lang \"@\" 2 2 1 define file \"b\" lang \"b@\" 2 2 1\n"
            "group \"@\" { screen_shot \"@\" item \"@\" { description \"@\" used yes { "
            "\"@\" } lang \"@\" { \"@\" } lang \"b@\" { \"%d\" } comment \"@\" { \"@\" } } }\n",
            "@", format));
    write_file(
        format + ".c",
        replaced("lang_get_string(\"@\", \"@\"); lang_get_string(\"@\", \"x@\");", "@", format));
    EXPECT_THAT(run("lang check a.lang-src '" + format + ".c'"),
                HasSubstr("found 00001:" + format + ".c: ->" + format + "<->" + format + "<-"));
    EXPECT_THAT(run("lang check '" + format + "' ."), HasSubstr(format));
    run("lang compile -dst-dir . a.lang-src");
    EXPECT_THAT(read_file(format + "-edit/" + format + ".lang"),
                HasSubstr("GROUP \"" + format + "\""));
    for (const char *word : {"lint", "stat", "show", "export --format csv", "diff '%n%s'"})
        EXPECT_THAT(run("kit " + std::string(word) + " a.lang-src"), HasSubstr("%n%s")) << word;
    EXPECT_THAT(run("lang convert a.lang-src 'none/" + format + "'"), HasSubstr(format));
}

} // namespace
