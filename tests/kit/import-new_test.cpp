// A project comes over with its catalogs.

#include "exchange/sources.h"
#include "kit/run-kit.h"
#include "source/entry.h"
#include "source/group.h"
#include "source/misc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using zel_test::kit;
using zel_test::read_file;
using zel_test::source_of;
using zel_test::write_file;

constexpr char german[] =
    "msgid \"\"\nmsgstr \"Project-Id-Version: notes 1.4\\nLanguage: de\\n\"\n\n"
    "# Knapp halten.\n#. a button\n#. in the bar\n#: src/window.c:31 lib/a.c:7\nmsgid \"Open\"\n"
    "msgstr \"\xC3\x96"
    "ffnen\"\n\n"
    "#: src/window.c:40\nmsgctxt \"window\"\nmsgid \"Open\"\nmsgstr \"Offen\"\n\n"
    "#: src/note.c:9\n#, c-format\nmsgid \"%d note\"\nmsgid_plural \"%d notes\"\n"
    "msgstr[0] \"%d Notiz\"\nmsgstr[1] \"%d Notizen\"\n\n"
    "#, fuzzy\nmsgid \"Guess\"\nmsgstr \"Ratet\"\n\n#~ msgid \"Old\"\n#~ msgstr \"Alt\"\n";
constexpr char russian[] = "msgid \"\"\nmsgstr \"Language: ru\\n\"\n\n"
                           "#: lib/a.c:7\nmsgid \"Open\"\nmsgstr \"o\"\n\n"
                           "msgid \"%d note\"\nmsgid_plural \"%d notes\"\n"
                           "msgstr[0] \"r1\"\nmsgstr[1] \"r2\"\nmsgstr[2] \"r5\"\n";
constexpr char japanese[] = "msgid \"%d note\"\nmsgid_plural \"%d notes\"\nmsgstr[0] \"j\"\n";

class ImportNew : public testing::Test {
protected:
    // A text of the new source.
    std::string text(const char *group, const char *item, const char *language)
    {
        item_t *found = get_item_ptr(source.get(), group, item);
        lang_entry_t *entry = misc_select_lang_entry(found, language);
        return found == nullptr ? "no item" : entry == nullptr ? "no text" : zel::text_of(entry);
    }

    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
    source_guard source;
};

TEST_F(ImportNew, MakesASourceFromCatalogs)
{
    write_file("de.po", german);
    write_file("x.po", russian);
    write_file("ja.po", japanese);
    const auto made = kit("import --format po --new -o app.lang-src de.po x.po ja.po");
    EXPECT_EQ(made.status, 0);
    EXPECT_EQ(made.out, "app.lang-src: 5 items in 4 groups\n"
                        "german: 4\njapanese: 2\nrussian: 3\n");
    EXPECT_EQ(made.err, "left out 1 fuzzy text\n"
                        "left out 1 plural form between the first and the last\n");
    const std::string file = read_file("app.lang-src");
    EXPECT_THAT(file, HasSubstr("app \"notes\"\n"));
    EXPECT_THAT(file, HasSubstr("lang \"english\" 200 200 1\ndefine file \"german.lang\" lang "
                                "\"german\" 200 200 1\ndefine file \"russian.lang\""));
    source = source_of(file);
    EXPECT_EQ(text("window", "Open", "german"), "\xC3\x96"
                                                "ffnen");
    EXPECT_EQ(text("window", "Open", "english"), "Open");
    EXPECT_EQ(text("window", "Open", "russian"), "o") << "by its id, whatever its first place is";
    EXPECT_EQ(text("window-2", "Open", "german"), "Offen") << "another message of that name";
    EXPECT_EQ(text("note", "%d note", "german"), "%d Notiz");
    EXPECT_EQ(text("note", "%d notes", "german"), "%d Notizen");
    EXPECT_EQ(text("note", "%d note", "russian"), "r1");
    EXPECT_EQ(text("note", "%d notes", "russian"), "r5");
    EXPECT_EQ(text("note", "%d notes", "japanese"), "j");
    EXPECT_EQ(text("messages", "Guess", "german"), "no text");
    EXPECT_EQ(text("messages", "Old", "german"), "no item");
    const item_t *item = get_item_ptr(source.get(), "window", "Open");
    EXPECT_STREQ(item->description, "a button\nin the bar");
    EXPECT_EQ(item->used, 1U);
    EXPECT_STREQ(static_cast<char *>(item->used_in->data), "00031:src/window.c");
    EXPECT_STREQ(
        static_cast<char *>(static_cast<lang_entry_t *>(item->comments->data)->texts->data),
        "Knapp halten.");
    // The program compiles it.
    EXPECT_EQ(std::system("mkdir out && '" LANG_PROGRAM "' compile -dst-dir out app.lang-src >log"),
              0);
    EXPECT_THAT(read_file("out/german-edit/german.lang"), HasSubstr("%d Notizen"));

    EXPECT_EQ(
        kit("import --format po --new --fuzzy --group all --default en -o b.lang-src de.po").status,
        0);
    source = source_of(read_file("b.lang-src"));
    EXPECT_EQ(text("all", "Guess", "german"), "Ratet");
    EXPECT_EQ(text("all", "Open", "en"), "Open");
}

// What was exported and is made anew holds the same texts under the same keys.
TEST_F(ImportNew, TakesItsOwnExportsForWhatTheyAre)
{
    write_file("a.lang-src", zel_test::awkward_source(4, false).make(40));
    ASSERT_EQ(kit("export --format po a.lang-src").status, 0);
    ASSERT_EQ(kit("import --format po --fuzzy --new -o b.lang-src *.po").status, 0);
    ASSERT_EQ(kit("export --format po a.lang-src").status, 0);
    const auto again = kit("import --format po --fuzzy b.lang-src *.po");
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(again.out, "");
}

} // namespace
