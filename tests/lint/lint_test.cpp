// Whole sources: which texts are judged, in which order, and the rules that compare items.

#include "lint/judge.h"

#include "lint/conflict.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using zel_test::made_source;
using zel_test::only;

TEST(Lint, TellsMissingEmptyUndefinedAndWhatIsNotUsedOrReady)
{
    made_source source({"french"});
    item_t *item =
        source.add("main", "Open", {{"english", "Open"}, {"german", " \n"}, {"klingon", "poSmoH"}});
    item->ready = 0;
    EXPECT_THAT(source.findings(),
                ElementsAre("missing: french: there is no text", "not-ready: not marked ready",
                            "empty: german: the text is empty",
                            "undefined: klingon: the language has no definition, so its text is "
                            "never used"));
    item->used = 0;
    EXPECT_THAT(source.findings(), ElementsAre("unused: the application does not ask for it"));
}

TEST(Lint, NothingToSayNeedsNoTranslation)
{
    made_source source;
    source.add("main", " ", {{"english", " "}, {"german", ""}});
    EXPECT_THAT(source.findings(), IsEmpty());
}

// Whatever language is shown, the default one too, the blank of the code is gone.
TEST(Lint, AnItemThatEndsInWhiteSpace)
{
    made_source source;
    for (const char *name : {"Name: ", "Saved\n", "Name:", " "})
        source.add("main", name, {{"english", "Name:"}, {"german", "Name:"}});
    item_t *unused = source.add("main", "Old ", {{"english", "Old"}, {"german", "Alt"}});
    unused->used = 0;
    const auto said = HasSubstr("no text keeps: take it out of the item");
    EXPECT_THAT(source.findings(only("item-end")), ElementsAre(said, said));
}

TEST(Lint, TheItemStandsInForTheDefaultLanguagesText)
{
    made_source source;
    source.add("main", "Name:", {{"english", ""}, {"german", "Name"}});
    EXPECT_THAT(source.findings(only("ending")), ElementsAre(HasSubstr("has a colon")));
}

TEST(Lint, LanguagesOfEntriesMatchWhateverTheirCase)
{
    made_source source;
    source.add("main", "Name:", {{"English", "Name:"}, {"GERMAN", "Name:"}});
    EXPECT_THAT(source.findings(), IsEmpty());
}

TEST(Lint, TextsOfSeveralStringsAreOne)
{
    made_source source;
    item_t *item = source.add("main", "a %s\nb %d", {{"english", "a %s\nb %d"}, {"german", "a %"}});
    auto *entry = static_cast<lang_entry_t *>(item->langs->next->data);
    entry->texts = g_list_append(entry->texts, zel_strdup2("s\nb %d"));
    EXPECT_THAT(source.findings(), IsEmpty());
}

TEST(Lint, Duplicates)
{
    made_source source({"German"});
    static_cast<void>(source.add_language("austrian"));
    auto *austrian = static_cast<lang_t *>(g_list_last(source.get()->langs)->data);
    zel::replace_string(austrian->file, zel_strdup("german"));
    source.add("main", "Open", {{"english", "Open"}, {"english", "Öffnen"}});
    source.add("menu", "Open", {});
    source.add("main", "Open", {});
    EXPECT_THAT(
        source.findings(only("duplicate")),
        ElementsAre("duplicate: German: a second definition of the language",
                    "duplicate: austrian: the file \"german\" is that of german already",
                    "duplicate: english: a second text in the language, which is never used",
                    "duplicate: a second item \"main:Open\", which is never found"));
}

TEST(Lint, ConsistencyIsToldOncePerReferenceAndLanguage)
{
    made_source source;
    source.add("a", "1", {{"english", "Save it"}, {"german", "Sichern"}});
    source.add("a", "2", {{"english", "Save it"}, {"german", "Sichern"}});
    source.add("b", "3", {{"english", "Save it"}, {"german", "Speichern"}});
    source.add("b", "4", {{"english", "Save it"}, {"german", "Merken"}});
    source.add("b", "5", {{"english", "Open"}, {"german", "Auf"}});
    source.add("c", "6", {{"english", "Open"}, {"german", "Öffnen"}}); // one word, many meanings
    EXPECT_THAT(source.findings(only("consistency")),
                ElementsAre("consistency: german: \"Save it\" is \"Speichern\" here and "
                            "\"Sichern\" in a:1"));
}

TEST(Lint, Collision)
{
    made_source source;
    source.add("menu", "_Open", {{"english", "_Open"}, {"german", "Ö_ffnen"}});
    source.add("menu", "_File", {{"english", "_File"}, {"german", "Da_Fei"}});
    source.add("menu", "_Off", {{"english", "_Off"}, {"german", "_Aus"}});
    source.add("other", "_On", {{"english", "_On"}, {"german", "_Aus"}});
    EXPECT_THAT(source.findings(only("collision")),
                ElementsAre("collision: german: the mnemonic is that of \"Ö_ffnen\"",
                            "collision: english: the mnemonic is that of \"_Open\""));
    // Several menus use a key twice; too many texts are not seen together.
    source.add("menus", "_Aa", {{"english", "_Aa"}, {"german", "_X"}});
    source.add("menus", "_Ab", {{"english", "_Ab"}, {"german", "_Y"}});
    source.add("menus", "_Ba", {{"english", "_Ba"}, {"german", "_X"}});
    source.add("menus", "_Bb", {{"english", "_Bb"}, {"german", "_Z"}});
    EXPECT_EQ(source.findings(only("collision")).size(), 2U);
    for (int i = 0; i < 30; ++i)
        source.add("menu", "_Open " + std::to_string(i), {});
    EXPECT_THAT(source.findings(only("collision")), IsEmpty());
}

TEST(Lint, SameIsAPhraseThatMostLanguagesTranslate)
{
    made_source source({"french", "polish", "british english", "en_CA"});
    zel::replace_string(source.get()->app, zel_strdup("Tea"));
    for (const char *kept :
         {"© the small team", "notes-of-mine.txt", "brew [<options>] with milk", "tea brew some"})
        source.add("a", kept, {{"english", kept}, {"german", kept}});
    source.add("a", "1",
               {{"english", "Notify with a toaster"},
                {"german", "Notify with a toaster"},
                {"french", "Avertir"},
                {"polish", "x"},
                {"british english", "Notify with a toaster"},
                {"en_CA", "Notify with a toaster"}});
    source.add("a", "2", {{"english", "Mail User Agent"}, {"german", "Mail User Agent"}});
    source.add("a", "3",
               {{"english", "van der valk pattern"},
                {"german", "van der valk pattern"},
                {"french", "van der valk pattern"},
                {"polish", "x"}});
    EXPECT_THAT(source.findings(only("same")),
                ElementsAre("same: german: the text is that of the reference"));
}

// With german there are thirteen languages; the last ones say what is told of them.
std::string told_of(const std::string &rule, const std::string &reference,
                    const std::vector<std::string> &last)
{
    constexpr std::size_t more = 12;
    std::vector<std::string> names;
    for (std::size_t i = 0; i < more; ++i)
        names.push_back(std::string(1, static_cast<char>('a' + i)));
    made_source source(names);
    made_source::texts texts{{"english", reference}, {"german", reference}};
    const bool is_same = rule == "same";
    for (std::size_t i = 0; i < more; ++i)
        texts.emplace_back(names[i], i < more - last.size() ? (is_same ? "x" : reference)
                                                            : last[i - (more - last.size())]);
    if (!is_same)
        texts[1].second = last.front();
    source.add("main", reference, texts);
    const auto found = source.findings(only(rule));
    return found.empty() ? "" : found.front();
}

TEST(Lint, WhatManyLanguagesHaveInTheirOwnWayIsNoMistake)
{
    const char *left = "notify with a toaster";
    EXPECT_EQ(told_of("same", left, {"y"}), "same: german: the text is that of the reference");
    EXPECT_EQ(told_of("same", left, {left}), "");
    EXPECT_EQ(told_of("same", "GNU Small Public License, this or later", {"y"}), "");
    EXPECT_EQ(told_of("same", "* %s(blob)->%s(path), ftp://a.b file1 [file2]", {"y"}), "");
    // German's number is another one, too.
    EXPECT_EQ(told_of("link", "RFC 5322", {"RFC 2822", "RFC 2822"}),
              "link: german: the number 5322 is 2822");
    EXPECT_EQ(told_of("link", "Mono 12", {"Sans 10", "Sans 11", "Sans 14"}), "");
    EXPECT_EQ(told_of("link", "https://a.org/x", {"https://b.org/old", "https://b.org/old"}),
              "link: german: the address https://a.org/x is https://b.org/old");
    EXPECT_EQ(told_of("link", "https://a.org/x", {"https://b.org/old", "https://c.org/new"}), "");
}

TEST(Lint, ACommentSwitchesARuleOffForItsLanguage)
{
    made_source source({"french"});
    item_t *item = source.add(
        "main", "Name:", {{"english", "Name:"}, {"german", "Name "}, {"french", "Nom "}});
    item->ready = 0;
    const auto add = [&](const char *language, const char *text) {
        item->comments = g_list_append(item->comments, made_source::entry(language, text));
    };
    add("german", "It is a title. lint: ending off lint:blank off");
    add("english", "lint: not-ready off");
    add("french", "lint: blank on, lint: nonsense off");
    EXPECT_THAT(source.findings(),
                ElementsAre(HasSubstr("blank: french"), HasSubstr("ending: french")));
}

TEST(Lint, OnlyTheLanguagesAskedForAreJudged)
{
    made_source source({"french"});
    source.add("main", "Name:", {{"english", "Name:"}, {"german", "Name"}, {"klingon", "x"}});
    zel::lint::choice wanted;
    wanted.languages = {"German"};
    EXPECT_THAT(source.findings(wanted), ElementsAre(HasSubstr("ending: german")));
}

TEST(Lint, BytesAreJudgedInNamesCommentsAndTextsNobodyUses)
{
    made_source source;
    item_t *item = source.add("main", "a\xFF", {{"english", "b\xFF"}});
    item->used = 0;
    item->comments = g_list_append(nullptr, made_source::entry("german", "c\xFF"));
    zel::replace_string(item->description, zel_strdup("d\xFF"));
    EXPECT_EQ(source.findings(only("encoding")).size(), 4U);
    source.get()->format = LANG_SOURCE_ASCII; // bytes of the application's own
    EXPECT_THAT(source.findings(only("encoding")), IsEmpty());
}

TEST(Lint, OneItemIsJudgedAlone)
{
    made_source source;
    source.add("main", "Open", {{"english", "Open"}, {"german", "Auf"}});
    const item_t *item = source.add("main", "Open", {{"english", "Open:"}, {"german", "Auf"}});
    const auto *group = static_cast<const edit_t *>(source.get()->groups->data);
    std::vector<std::string> said;
    zel::lint::linter(source.get(), {}).check_item(group, item, [&](const auto &found) {
        said.push_back(zel::lint::rule_of(found.rule).name);
        EXPECT_EQ(found.item, item);
        EXPECT_EQ(found.record, item->langs->next->data);
    });
    EXPECT_THAT(said, ElementsAre("ending")); // and not that there is another
}

TEST(Lint, NoTextMakesARuleCrashOrSayNothing)
{
    // Bytes that begin or end something, alone and in pairs, at both ends.
    const std::string pieces[] = {"%",  "%1$",     "_",        "<",        "</", "<a", "&",
                                  "&#", "\xE2",    "\xE2\x80", "\xF0\x9F", "(",  ")",  "。",
                                  "1,", "http://", "@",        "\n",       " ",  "..."};
    for (const std::string &first : pieces)
        for (const std::string &second : pieces) {
            made_source source;
            source.add("main", first + second, {{"english", first + second}, {"german", second}});
            source.add("main", second, {{"english", first}, {"german", second + first}});
            EXPECT_THAT(source.findings(), Not(Contains(EndsWith(": "))));
        }
}

TEST(Conflict, MarkersAreWholeLines)
{
    const auto found = zel::lint::find_conflict_markers("a\n<<<<<<< HEAD\nb\n=======\r\n"
                                                        "||||||| base\n>>>>>>> side\n"
                                                        "<<<<<<<<\n ======= \n=======x\n");
    ASSERT_EQ(found.size(), 4U);
    EXPECT_EQ(found[0].line, "<<<<<<< HEAD");
    EXPECT_EQ(found[0].at.line, 2U);
    EXPECT_EQ(found[1].line, "=======");
    EXPECT_EQ(found[3].at.line, 6U);
}

} // namespace
