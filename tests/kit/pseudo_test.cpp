#include "kit/run-kit.h"
#include "kit/support/pseudo-text.h"
#include "rows.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using zel::kit::pseudo_how;
using zel::kit::pseudo_text;
using zel_test::kit;

std::string pseudo(const std::string &reference, pseudo_how how = {0, true})
{
    const item_guard item(alloc_item());
    return pseudo_text(reference, item.get(), how);
}

TEST(PseudoText, IsWhatTheTableHolds)
{
    for (const zel_test::row &row : zel_test::rows_of("kit/pseudo.rows")) {
        const bool grows = row.section == "grow";
        const pseudo_how how{grows ? std::stoi(row[2]) : 0, !grows};
        EXPECT_EQ(pseudo(row[0], how), row[1]) << row.line;
    }
    const std::string text = "The words that must all stand in the note.";
    EXPECT_EQ(pseudo(text, {40, false}).size(), text.size() * 14 / 10 + 1 + 2);
}

// Whatever the texts are, lint finds nothing new in the language but that some are long.
TEST(PseudoSlow, LintFindsNothing)
{
    const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
    std::filesystem::copy_file(LANG_SOURCE_ROOT "/examples/notes.lang-src", "app.lang-src");
    for (const char *grow : {"0", "40", "300"}) {
        EXPECT_EQ(kit(std::string("pseudo --grow ") + grow + " app.lang-src").status, 0);
        EXPECT_EQ(kit("lint --language pseudo --fail-on info --without length,unused,not-ready "
                      "app.lang-src")
                      .out,
                  "");
    }
}

} // namespace
