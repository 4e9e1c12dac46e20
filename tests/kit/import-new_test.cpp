// A project comes over with any catalogs; pages/import-new.md tells what becomes of good ones.

#include "exchange/new-source.h"
#include "exchange/sources.h"
#include "kit/run-kit.h"

#include <gtest/gtest.h>

namespace {

using zel_test::kit;
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
class ImportNew : public testing::Test {
protected:
    zel_test::temp_dir dir{zel_test::temp_dir::enter::yes};
};

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

TEST_F(ImportNew, CutOrChangedCatalogsAreReadOrRefusedWhole)
{
    const std::string good = german;
    for (std::size_t end = 0; end < good.size(); ++end) {
        zel::exchange::new_source made({});
        static_cast<void>(made.take("de.po", good.substr(0, end)));
    }
    std::mt19937 random(1);
    for (int times = 0; times < 3000; ++times) {
        zel::exchange::new_source made({});
        const std::string bytes = zel_test::mutated(good, random);
        const auto wrong = made.take("de.po", bytes);
        if (!wrong) {
            EXPECT_EQ(made.source()->item_count == 0, made.source()->groups == nullptr);
        }
    }
}

} // namespace
