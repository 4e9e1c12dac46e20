#include "checker/c-scan.h"

#include "app/global.h"
#include "rows.h"
#include "source/group.h"
#include "source/item-index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Scan : public testing::Test {
protected:
    Scan() { lang_global.start_time = 1234567; }

    // What the scan of a file with that text prints after its first line.
    std::string scan(const std::string &text, const std::string &path = "a.c")
    {
        zel_test::write_file(path, text);
        const std::string printed = zel_test::capture_stdout([&] {
            zel::item_index index(source.get());
            result = zel::check_file(index, path.c_str(), how);
        });
        const std::string head = "check c file >" + path + "<\n";
        EXPECT_EQ(printed.substr(0, head.size()), head);
        return printed.substr(std::min(head.size(), printed.size()));
    }

    item_t *item(const char *group, const char *name)
    {
        return get_item_ptr(source.get(), group, name);
    }

    std::vector<std::string> places(const char *group, const char *name)
    {
        std::vector<std::string> found;
        if (const item_t *used = item(group, name))
            for (const char *place : zel::each<char>(used->used_in))
                found.emplace_back(place);
        return found;
    }

    // All items as "group/item", in order.
    std::vector<std::string> items()
    {
        std::vector<std::string> found;
        for (const edit_t *group : zel::each<edit_t>(source->groups))
            for (const item_t *known : zel::each<item_t>(group->items))
                found.push_back(std::string(group->name) + "/" + known->name);
        return found;
    }

    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
    source_guard source{lang_alloc_group()};
    zel::scan_how how{1234567, stdout, nullptr, nullptr};
    int result = -2;
};

TEST_F(Scan, EachFormOfRequestFindsItsItem)
{
    for (const zel_test::row &row : zel_test::rows_of("checker/scan.rows", "forms")) {
        SCOPED_TRACE(row.line);
        source.reset(lang_alloc_group());
        insert_group_item(source.get(), "main", "ok");
        const item_t *ok = item("main", "ok");
        item("main", "ok")->typ = 7;
        EXPECT_EQ(scan(row[0]), "    found 00002:a.c: ->main<->ok<-\n");
        EXPECT_EQ(result, 0);
        EXPECT_THAT(items(), ElementsAre("main/ok"));
        EXPECT_EQ(ok->used, 1U);
        EXPECT_EQ(std::to_string(ok->typ), row[1]);
        EXPECT_EQ(ok->description == nullptr ? "-" : std::string(ok->description), row[2]);
        EXPECT_EQ(ok->ctime, 0);
        EXPECT_THAT(places("main", "ok"), ElementsAre("00002:a.c"));
    }
}

TEST_F(Scan, InsertsWhatTheSourceDoesNotKnow)
{
    EXPECT_EQ(scan("lang_tooltip(\"a\", \"x\");\nlang_get(\"Why\", \"b\", \"y\");\n"
                   "lang_get_string(\"a\", \"x\");\nlang_get_string(\"a\", \"z\");"),
              "not found, insert item 00001:a.c: ->a<->x<-\n"
              "not found, insert item 00002:a.c: ->b<->y<-\n"
              "    found 00003:a.c: ->a<->x<-\n"
              "not found, insert item 00004:a.c: ->a<->z<-\n");
    EXPECT_THAT(items(), ElementsAre("a/x", "a/z", "b/y"));
    EXPECT_EQ(item("a", "x")->typ, 1) << "the last request's";
    EXPECT_EQ(item("a", "x")->ctime, 1234567);
    EXPECT_THAT(places("a", "x"), ElementsAre("00001:a.c", "00003:a.c"));
    EXPECT_EQ(item("b", "y")->typ, 0);
    EXPECT_STREQ(item("b", "y")->description, "Why");
    const auto *entry = static_cast<lang_entry_t *>(item("b", "y")->langs->data);
    EXPECT_STREQ(entry->lang, "english");
    EXPECT_STREQ(static_cast<char *>(entry->texts->data), "y");
    EXPECT_EQ(source->item_count, 0U);
}

TEST_F(Scan, PrintsAndInsertsWhatTheTableHolds)
{
    for (const zel_test::row &row : zel_test::rows_of("checker/scan.rows", "files")) {
        source.reset(lang_alloc_group());
        EXPECT_EQ(scan(row[0]), row[1]) << row.line;
        EXPECT_EQ(items(), std::vector<std::string>(row.texts.begin() + 2, row.texts.end()));
        EXPECT_EQ(result, 0);
    }
}

TEST_F(Scan, Definitions)
{
    EXPECT_EQ(scan("#define A \"first\"\n#define A \"second\"\n#define \"Q\" \"quoted\"\n"
                   "#define EMPTY\n#define N 4\n#undef A\n#define F(x) \"no value\"\n"
                   "lang_get_string(\"g\", A); lang_get_string(\"g\", Q);\n"
                   "lang_get_string(\"g\", N); lang_get_string(\"g\", F);\n"
                   "\"#define S \\\"in a string\\\"\"; lang_get_string(\"g\", S);"),
              "symtab_add: duplicate key >A<\n"
              "not found, insert item 00008:a.c: ->g<->first<-\n"
              "not found, insert item 00008:a.c: ->g<->quoted<-\n"
              "WARNING: syntax a.c line 9 symbol not found\n"
              "WARNING: syntax a.c line 9 symbol not found\n"
              "not found, insert item 00010:a.c: ->g<->in a string<-\n");
    // The next file starts without them.
    EXPECT_EQ(scan("lang_get_string(\"g\", A);", "b.c"),
              "WARNING: syntax b.c line 1 symbol not found\n");
    // What does not belong to a definition is read on.
    EXPECT_EQ(scan("# lang_get_string(\"g\", \"first\")\n#define lang_tooltip(\"g\", \"first\")\n"
                   "#define X lang_get_string(\"g\", \"first\")"),
              "    found 00001:a.c: ->g<->first<-\n    found 00002:a.c: ->g<->first<-\n"
              "    found 00003:a.c: ->g<->first<-\n");
}

TEST_F(Scan, ApplicationName)
{
    EXPECT_EQ(scan("#define ZEL_LANGUAGE_APP \"viewer\" \"2\""), "");
    EXPECT_STREQ(source->app, "viewer:2");
    EXPECT_EQ(scan("#define V \"3\"\n#define zel_language_app \"viewer\" V"), "");
    EXPECT_STREQ(source->app, "viewer:3");

    EXPECT_EQ(scan("#define ZEL_LANGUAGE_APP viewer \"4\"\n"),
              "ERROR(7): syntax a.c line 1 missing first string \n");
    EXPECT_EQ(scan("#define ZEL_LANGUAGE_APP\n\"viewer\" 4\n"),
              "ERROR(8): syntax a.c line 2 string or id expecetd\n");
    EXPECT_EQ(scan("#define ZEL_LANGUAGE_APP \"viewer\" UNKNOWN\n"),
              "WARNING: syntax a.c line 1 symbol not found\n");
    EXPECT_STREQ(source->app, "viewer:3") << "stays as it was";

    scan("#define ZEL_LANGUAGE_APP \"" + std::string(2000, 'a') + "\" \"" + std::string(2000, 'b') +
         "\"");
    EXPECT_EQ(source->app, std::string(1023, 'a') + ":" + std::string(1023, 'b'));
}

TEST_F(Scan, GivesUpOneRequestThatIsBroken)
{
    for (const zel_test::row &row : zel_test::rows_of("checker/scan.rows", "broken")) {
        source.reset(lang_alloc_group());
        EXPECT_EQ(scan("\n" + row[0] + "\n; lang_get_string(\"g\", \"next\");"),
                  row[1] + "not found, insert item 00003:a.c: ->g<->next<-\n");
        EXPECT_THAT(items(), ElementsAre("g/next")) << row.line;
    }
}

TEST_F(Scan, LongNamesAndPlacesAreCut)
{
    const std::string group(3000, 'g');
    const std::string piece(600, 'i');
    const std::string folder = std::string(250, 'd') + "/";
    std::string path;
    for (int i = 0; i < 5; ++i)
        std::filesystem::create_directory(path += folder);
    path += "a.c";
    scan("lang_get(\"d\", \"" + group + "\", \"" + piece + "\" \"" + piece + "\")", path);
    const std::string cut_item(1023, 'i');
    EXPECT_THAT(items(), ElementsAre(group.substr(0, 1023) + "/" + cut_item));
    EXPECT_THAT(places(group.substr(0, 1023).c_str(), cut_item.c_str()),
                ElementsAre(("00001:" + path).substr(0, 1023)));
}

TEST_F(Scan, BackslashesOfAPathBecomeSlashesInThePlace)
{
    EXPECT_THAT(scan("lang_get_string(\"g\", \"i\")", "dir\\a.c"), HasSubstr("00001:dir/a.c: "));
}

TEST_F(Scan, OldAndForeignFiles)
{
    scan("/* f\xfcr */\r\nchar *\r\nf(kind, p)\r\n    int kind;\r\n    register struct x "
         "*p;\r\n{\r\n"
         "    puts(\"one \\\r\nline\"); return lang_get_string(\"g\", "
         "\"gr\xf6\xdf\"\r\n);\r\n}\r\n");
    EXPECT_THAT(items(), ElementsAre("g/gr\xf6\xdf"));
    EXPECT_THAT(places("g", "gr\xf6\xdf"), ElementsAre("00008:a.c"));
}

TEST_F(Scan, TheFirstOfEqualNamesCounts)
{
    // Two groups of one name, the first with one item twice.
    insert_group_item(source.get(), "g", "x");
    item_t *twin = alloc_item();
    twin->name = g_strdup("x");
    auto *first = static_cast<edit_t *>(source->groups->data);
    first->items = g_list_append(first->items, twin);
    edit_t *second = lang_alloc_edit();
    second->name = g_strdup("g");
    source->groups = g_list_append(source->groups, second);

    scan("lang_get_string(\"g\", \"x\"); lang_get_string(\"g\", \"new\");");
    EXPECT_THAT(places("g", "x"), ElementsAre("00001:a.c"));
    EXPECT_EQ(twin->used, 0U);
    EXPECT_EQ(g_list_length(first->items), 3U);
    EXPECT_EQ(second->items, nullptr);
}

// Literals inside literals, each quote hidden by \x22 and each level's backslash by \x5c.
std::string nested(unsigned levels, const std::string &text)
{
    std::string inner = text;
    for (unsigned level = 0; level < levels; ++level) {
        std::string outer = "\"";
        for (const char c : inner)
            outer += c == '"' ? "\\x22" : c == '\\' ? "\\x5c" : std::string(1, c);
        inner = outer + "\"";
    }
    return inner;
}

TEST_F(Scan, StringsInStrings)
{
    scan(nested(6, "lang_get_string(\"g\", \"deep\")"));
    EXPECT_THAT(items(), ElementsAre("g/deep"));
    EXPECT_EQ(scan(nested(120, "\"\"")), "");
    EXPECT_EQ(result, 0);
}

TEST_F(Scan, AFileThatCannotBeOpenedEndsTheRun)
{
    zel::item_index index(source.get());
    EXPECT_EQ(zel_test::capture_stdout([&] { result = zel::check_file(index, "none.c", how); }),
              "check c file >none.c<\nERROR(3): unable to init lexical scanner\n");
    EXPECT_EQ(result, -1);
    EXPECT_THAT(zel_test::capture_stdout([&] { result = zel::check_file(index, nullptr, how); }),
                HasSubstr("\nERROR(4): unable to open file "));
    EXPECT_EQ(result, -1);
    EXPECT_EXIT(check_c_file(source.get(), "none.c"), testing::ExitedWithCode(0), "");
}

// The readers of one construct, called by themselves.
class Readers : public Scan {
protected:
    void read(const char *text)
    {
        buffer.reset(zel_lex_buf_mem_new(text, static_cast<std::uint32_t>(std::strlen(text))));
        zel_lex_set_buf(lex.get(), buffer.get());
    }
    zel_lex_guard lex{zel::new_check_scanner()};
    zel_lex_buf_guard buffer;
    symtab_guard symbols{symtab_new()};
};

TEST_F(Readers, OneRequest)
{
    zel_test::capture_stdout([&] {
        read("\"g\", \"a\")");
        EXPECT_EQ(parse_lang_entry(source.get(), symbols.get(), lex.get(), "a.c", 2), 0);
        read("s, \"d\", \"g\", \"b\")");
        EXPECT_EQ(parse_lang_entry2(source.get(), symbols.get(), lex.get(), "a.c", 1), 0);
        read("lang_tooltip(\"g\", \"c\")");
        EXPECT_EQ(check_parse(source.get(), symbols.get(), lex.get(), "a.c"), 0);
    });
    EXPECT_THAT(items(), ElementsAre("g/a", "g/b", "g/c"));
}

TEST_F(Readers, IdOrString)
{
    symtab_add(symbols.get(), "NAME", "value");
    char text[1024] = "old";
    const std::string printed = zel_test::capture_stdout([&] {
        read("12 UNKNOWN NAME \"string\"");
        for (const char *expected : {"old", "old", "value", "string"}) {
            EXPECT_EQ(get_id_or_string(source.get(), symbols.get(), lex.get(), text, "a.c"), 0);
            EXPECT_STREQ(text, expected);
        }
    });
    EXPECT_EQ(printed, "ERROR(23): syntax a.c line 1 string or id expecetd\n"
                       "WARNING: syntax a.c line 1 symbol not found\n");
}

TEST(Symtab, KeepsTheFirstValue)
{
    const symtab_guard table(symtab_new());
    EXPECT_EQ(symtab_get(table.get(), "a"), nullptr);
    EXPECT_EQ(symtab_add(table.get(), "a", "1"), 0);
    EXPECT_EQ(symtab_add(table.get(), "A", ""), 0);
    EXPECT_EQ(zel_test::capture_stdout([&] { EXPECT_EQ(symtab_add(table.get(), "a", "2"), 1); }),
              "symtab_add: duplicate key >a<\n");
    for (int i = 0; i < 5000; ++i)
        symtab_add(table.get(), ("n" + std::to_string(i)).c_str(), std::to_string(i).c_str());
    EXPECT_STREQ(symtab_get(table.get(), "a"), "1");
    EXPECT_STREQ(symtab_get(table.get(), "A"), "");
    EXPECT_STREQ(symtab_get(table.get(), "n4321"), "4321");
}

} // namespace
