// Texts with forms for a number, and the rules that meet them.

#include "lint/judge.h"

#include "lint/plural.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using zel::lint::has_plural_forms;
using zel_test::made_source;

TEST(PluralForms, AreToldFromOtherBars)
{
    for (const char *text :
         {"%d note|%d notes", "one note|%d notes", "%s: %u note|%s: %u notes", "a|b|%lld"})
        EXPECT_TRUE(has_plural_forms(text)) << text;
    for (const char *text : {"%d notes", "File|Open", "%s|%s", "%d | %d", "%d|", "|%d", "||%d",
                             "%d|%s %d", "%d|%ld", "%s|%d", "%d|50% off", "one|%d, 100%", "", "|"})
        EXPECT_FALSE(has_plural_forms(text)) << text;
}

TEST(PluralForms, EachLanguageHasItsCount)
{
    made_source source({"Русский", "french", "japanese", "klingonese"});
    zel::replace_string(source.add_language("own name")->file, zel_strdup("texts/pl.lang"));
    source.add("list", "%d note|%d notes",
               {{"english", "%d note|%d notes"},
                {"german", "%d Notiz"},
                {"Русский", "%d заметка|%d заметок"},
                {"french", "%d note|%d notes"},
                {"japanese", "%d|%d"},
                {"klingonese", "%d|%d|%d|%d"},
                {"own name", "%d notatka|%d notatki|%d notatek"}});
    EXPECT_THAT(
        source.findings(zel_test::only("plural")),
        ElementsAre("plural: german: the language has 2 plural forms (one, other), the text has 1",
                    "plural: Русский: the language has 3 plural forms (one, few, many), the text "
                    "has 2",
                    "plural: japanese: the language has 1 plural form (other), the text has 2"));

    made_source wrong({"french"});
    wrong.add("list", "a|b|%d", {{"english", "a|b|%d"}, {"french", "a|b|c|%d"}});
    EXPECT_THAT(wrong.findings(zel_test::only("plural")),
                ElementsAre("plural: english: the language has 2 plural forms (one, other), the "
                            "text has 3",
                            "plural: french: the language has 2 or 3 plural forms (one, many, "
                            "other), the text has 4"));
}

} // namespace
