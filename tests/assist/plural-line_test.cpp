// Which numbers take which form of a text, as the line under a translation shows it.

#include "assist/plural-line.h"

#include "langlib/lang-locale.h"
#include "langlib/languages.h"
#include "langlib/plural-rule.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

#include "langlib/handles.h"
#include "rows.h"

using zel::assist::number_forms;

namespace {

std::string_view rule_of(std::string_view language)
{
    zel::language_row row;
    return zel::find_language(language, row) ? row.plural : std::string_view{};
}

std::string line_of(std::string_view rule, std::string_view text)
{
    std::string out;
    for (const zel::assist::number_form &form : number_forms(rule, text))
        out += (out.empty() ? "" : " | ") + std::string(form.is_missing ? "!" : "") +
               (form.numbers.empty() ? "none" : form.numbers);
    return out;
}

// The numbers that a line names, of a range both ends and one between.
std::vector<std::int64_t> named(const std::string &numbers)
{
    std::vector<std::int64_t> out;
    std::istringstream words(numbers);
    for (std::string word; words >> word;) {
        char *end = nullptr;
        out.push_back(std::strtol(word.c_str(), &end, 10));
        if (*end == '-') {
            out.push_back(std::strtol(end + 1, nullptr, 10));
            out.push_back((out[out.size() - 2] + out.back()) / 2);
        }
    }
    return out;
}

class PluralLineSlow : public langlib_test::loading {};

} // namespace

TEST(PluralLine, TellsWhichNumbersTakeAForm)
{
    for (const zel_test::row &row : zel_test::rows_of("assist/plural-line.rows", "lines"))
        EXPECT_EQ(line_of(rule_of(row[0]), row[1]), row[2]) << row.line;
    for (const zel_test::row &row : zel_test::rows_of("assist/plural-line.rows", "numbers"))
        EXPECT_EQ(zel::assist::with_number(row[0], std::stoul(row[1])), row[2]) << row.line;
    for (const zel_test::row &row : zel_test::rows_of("assist/plural-line.rows", "needed"))
        EXPECT_EQ(zel::assist::needed_forms(rule_of(row[0]), row[1], rule_of(row[2])), row[3])
            << row.line;
}

// What stands in the line is what the application gets, in every language of the table.
TEST_F(PluralLineSlow, TheLibraryPicksTheFormForEachNumber)
{
    std::set<std::string> codes;
    std::ifstream file(LANG_SOURCE_ROOT "/tests/langlib/plural-samples.txt");
    for (std::string line; std::getline(file, line);) {
        std::istringstream first(line.substr(0, line.find(' ')));
        for (std::string code; std::getline(first, code, ',');)
            codes.insert(code);
    }
    EXPECT_GT(codes.size(), 200U);
    for (const std::string &code : codes) {
        const zel::plural_forms needed = zel::count_plural_forms(rule_of(code));
        for (const std::size_t count : std::set{needed.everyday, needed.all}) {
            std::string text = "0";
            for (std::size_t i = 1; i < count; ++i)
                text += "|" + std::to_string(i);
            const auto handle =
                langlib_test::load("LANGUAGE \"" + code + "\" GROUP g a { \"" + text + "\" }");
            const char *own = lang_get_str(handle.get(), "g", "a");
            const auto forms = number_forms(rule_of(code), text);
            ASSERT_EQ(forms.size(), count) << code;
            for (std::size_t i = 0; i < count; ++i)
                for (const std::int64_t n : named(forms[i].numbers))
                    EXPECT_EQ(lang_plural_of(handle.get(), own, n), std::to_string(i))
                        << code << " " << n;
        }
    }
}
