// The form of a text for a number, in every language that has a rule.

#include "langlib/lang-locale.h"

#include "handles.h"
#include "langlib/languages.h"
#include "langlib/plural-rule.h"

#include <climits>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <vector>

namespace {

using namespace langlib_test;

class Plural : public loading {};

// The sample numbers that the rules are published with: "da,de other 0 2-16 100".
TEST_F(Plural, SampleNumbersOfEveryLanguage)
{
    std::ifstream file(LANG_SOURCE_ROOT "/tests/langlib/plural-samples.txt");
    std::set<std::string> languages;
    std::size_t numbers = 0;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string codes;
        std::string form;
        words >> codes >> form;
        std::vector<unsigned long> samples;
        for (std::string range; words >> range;) {
            char *end = nullptr;
            const unsigned long first = std::strtoul(range.c_str(), &end, 10);
            const unsigned long last = *end == '-' ? std::strtoul(end + 1, nullptr, 10) : first;
            for (unsigned long n = first; n <= last; ++n)
                samples.push_back(n);
        }
        std::istringstream all_codes(codes);
        for (std::string code; std::getline(all_codes, code, ',');) {
            zel::language_row row;
            ASSERT_TRUE(zel::find_language(code, row)) << line;
            languages.insert(code);
            numbers += samples.size();
            const zel::plural_forms forms = zel::count_plural_forms(row.plural);
            for (const unsigned long n : samples)
                EXPECT_EQ(
                    zel::plural_form_name(row.plural, zel::plural_form(row.plural, forms.all, n)),
                    form)
                    << code << " " << n;
        }
    }
    EXPECT_GT(languages.size(), 200U);
    EXPECT_GT(numbers, 5000U);
}

// The text's form for each of some numbers, where the language is loaded.
std::string forms(const std::string &language, const char *text,
                  std::initializer_list<std::int64_t> numbers)
{
    const handle_guard handle =
        load("LANGUAGE \"" + language + "\" GROUP g a { \"" + text + "\" }");
    const char *own = lang_get_str(handle.get(), "g", "a");
    std::string all;
    for (const std::int64_t n : numbers)
        all += (all.empty() ? "" : " ") + std::string(lang_plural_of(handle.get(), own, n));
    return all;
}

// What was found for a number is kept for others that end as it does.
TEST_F(Plural, LargeNumbersAreReadAsTheRuleHasThem)
{
    for (const char *code : {"ru", "fr", "kw", "cy", "ar", "lv", "gd", "en"}) {
        zel::language_row row;
        ASSERT_TRUE(zel::find_language(code, row));
        std::string text = "0";
        for (std::size_t i = 1; i < zel::count_plural_forms(row.plural).all; ++i)
            text += "|" + std::to_string(i);
        const handle_guard handle =
            load("LANGUAGE \"" + std::string(code) + "\" GROUP g a { \"" + text + "\" }");
        const char *own = lang_get_str(handle.get(), "g", "a");
        const std::size_t count = zel::count_text_forms(text);
        for (const std::uint64_t step : {1U, 1000U, 100003U, 1000000U, 20000001U})
            for (std::uint64_t n = 990 * step; n < 1130 * step; n += step)
                EXPECT_EQ(lang_plural_of(handle.get(), own, static_cast<std::int64_t>(n)),
                          zel::text_form(text, zel::plural_form(row.plural, count, n)))
                    << code << " " << n;
    }
}

TEST_F(Plural, FormsOfALoadedLanguage)
{
    EXPECT_EQ(forms("english", "one|other", {0, 1, 2, -1}), "other one other one");
    EXPECT_EQ(forms("Русский", "one|few|many", {1, 22, 5, 111}), "one few many many");
    EXPECT_EQ(forms("japanese", "all", {0, 1}), "all all");
    // A form that begins at a million may be left out.
    EXPECT_EQ(forms("french", "one|other", {0, 1, 2, 1000000}), "one one other other");
    EXPECT_EQ(forms("french", "one|many|other", {0, 2, 1000000}), "one other many");
    // Another count than the language's: a stand-in, read as in English, or its last form.
    EXPECT_EQ(forms("russian", "one|other", {1, 21, 0}), "one other other");
    EXPECT_EQ(forms("japanese", "one|other", {1, 0}), "one other");
    EXPECT_EQ(forms("russian", "a|b|c|d", {1, 2}), "d d");
    EXPECT_EQ(forms("unheard of", "one|other", {1, 2}), "one other");
    EXPECT_EQ(forms("german", "|other", {2, 1}), "other ");
    EXPECT_EQ(forms("german", "only", {1, 2}), "only only");
    EXPECT_EQ(forms("polish", "one|few|many", {INT64_MIN, INT64_MAX}), "many many");
    // As many forms as the language had by an older edition of the rules.
    EXPECT_EQ(forms("hebrew", "one|two|many|other", {1, 2, 0, 10, 11, 20, 30}),
              "one two other other other many many");
    EXPECT_EQ(forms("hebrew", "one|two|other", {1, 2, 20}), "one two other");
    EXPECT_EQ(forms("hebrew", "one|other", {1, 2, 20}), "one other other");
    EXPECT_EQ(forms("maltese", "one|few|many|other", {1, 0, 2, 11, 20}), "one few few many other");
    EXPECT_EQ(forms("maltese", "one|two|few|many|other", {1, 2, 0, 11, 20}),
              "one two few many other");
    EXPECT_EQ(forms("catalan", "one|other", {1, 0, 1000000}), "one other other");
}

// A chain from a language with two forms to one with three; a text that no file has is the item.
TEST_F(Plural, TheFileThatATextLiesInDecides)
{
    const char *item = "%d note|%d notes";
    zel_test::write_file("kk.lang", "GROUP g x { \"y\" }");
    zel_test::write_file("ru.lang", "GROUP g \"%d note|%d notes\" { \"%d заметка|%d "
                                    "заметки|%d заметок\" }");
    const handle_guard chain(lang_locale_new(".", "kk:ru"));
    const char *text = lang_get_str(chain.get(), "g", item);
    EXPECT_STREQ(lang_plural_of(chain.get(), text, 1), "%d заметка");
    EXPECT_STREQ(lang_plural_of(chain.get(), text, 22), "%d заметки");
    const auto form = [](const lang_handle_t *handle, const char *of, std::int64_t n) {
        return std::string(lang_plural_of(const_cast<lang_handle_t *>(handle), of, n));
    };
    const handle_guard filipino = load("LANGUAGE filipino GROUP g a { default \"one|other\" } "
                                       "b { \"one|other\" }");
    EXPECT_EQ(form(filipino.get(), item, 5), "%d notes");
    EXPECT_EQ(form(filipino.get(), lang_get_str(filipino.get(), "g", "a"), 5), "other");
    EXPECT_EQ(form(filipino.get(), lang_get_str(filipino.get(), "g", "b"), 5), "one");
    EXPECT_EQ(form(filipino.get(), filipino->lang[2].value + 1, 5), "ne") << "a part of a text";
    EXPECT_EQ(form(chain.get(), "a|b|c", 1), "c") << "neither English nor Kazakh";
    load_process_wide("LANGUAGE filipino GROUP g b { \"one|other\" }");
    EXPECT_STREQ(lang_plural(item, 5), "%d notes");
    EXPECT_STREQ(lang_plural(lang_get_string("g", "b"), 5), "one");
}

TEST_F(Plural, TheProcessWideLanguageDecides)
{
    const char *text = "one|few|many";
    EXPECT_STREQ(lang_plural(text, 1), "many") << "nothing is loaded";
    EXPECT_STREQ(lang_plural("one|other", 1), "one");
    load_process_wide("LANGUAGE czech GROUP g a { \"b\" }");
    const char *form = lang_plural(text, 3);
    EXPECT_STREQ(form, "few");
    EXPECT_EQ(lang_plural("x|few|y", 2), form) << "a form is kept once";
    EXPECT_EQ(lang_plural(text, 9), text + 8) << "the last form is not copied";
    EXPECT_STREQ(lang_plural(nullptr, 1), "");
    for (int i = 0; i < 1000; ++i) {
        const std::string name = "form " + std::to_string(i);
        EXPECT_EQ(lang_plural((name + "|b|c").c_str(), 1), name);
    }
    EXPECT_STREQ(form, "few");
}

struct Request {
    const char *language;
    const char *item;
    const char *text;
    std::int64_t number;
    const char *form;
};

TEST_F(Plural, ARequestWithANumber)
{
    const char *item = "%d note|%d notes";
    const char *written = "One note|%d notes";
    const Request rows[] = {
        {"german", item, "%d Notiz|%d Notizen", 1, "%d Notiz"},
        {"german", item, "%d Notiz|%d Notizen", -5, "%d Notizen"},
        {"japanese", item, "%d", 1, "%d"},
        {"english", item, item, 2, "%d notes"},
        {"polish", "a|b|c", "x|y|z", 22, "y"},
        // What fits any form of the item stands for each of them.
        {"german", written, "Eine Notiz|%d Notizen", 1, "Eine Notiz"},
        {"russian", written, "%d a|%d b|%d c", 21, "%d a"},
        {"russian", written, "%d a|%d b|keine", 5, "keine"},
        // What fits none: the item's form for the number, in English.
        {"german", item, "Eine Notiz|%d Notizen", 1, "%d note"},
        {"russian", item, "%d a|%d b|%n", 20, "%d notes"},
        {"russian", item, "%s|%d b|%d c", 21, "%d notes"},
        {"german", "%.4s: %d|%.4s: %d", "%2$d %1$.3s|%s: %d", 1, "%2$d %1$.3s"},
        {"german", "%.4s: %d|%.4s: %d", "%2$d %1$.3s|%s: %d", 2, "%.4s: %d"},
        {"german", "%d%|%d", "%d %|%d", 1, "%d%"},
    };
    for (const Request &row : rows) {
        lang_de_init();
        load_process_wide("LANGUAGE " + std::string(row.language) + " GROUP g \"" + row.item +
                          "\" { \"" + row.text + "\" }");
        std::int64_t n = row.number;
        EXPECT_STREQ(lang_count("g", row.item, n++), row.form) << row.language << ' ' << row.text;
        EXPECT_EQ(n, row.number + 1);
    }
    const handle_guard other = load("GROUP g a { \"b\" }");
    EXPECT_STREQ(_lang_count(other.get(), "g", item, 1, "", 1), "%d note");
    EXPECT_STREQ(lang_count("g", nullptr, 1), "");
}

TEST_F(Plural, ARequestForAFormat)
{
    load_process_wide("GROUP g \"Hello %s\" { \"Hallo %s\" } \"%s of %d\" { \"%d von %s\" } "
                      "\"100 % sure\" { \"sicher\" }");
    EXPECT_STREQ(lang_text("g", "Hello %s"), "Hallo %s");
    EXPECT_STREQ(lang_text("g", "%s of %d"), "%s of %d");
    EXPECT_STREQ(lang_text("g", "100 % sure"), "100 % sure");
    EXPECT_STREQ(lang_text(nullptr, nullptr), "");
}

} // namespace
