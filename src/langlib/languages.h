#pragma once

// The languages of the world: their codes, their names in English and in themselves, and how they
// count. Nothing here allocates.

#include <cstddef>
#include <string_view>

namespace zel {

// A row of the table; the texts live as long as the process. Several codes or names of one field
// have "|" between them.
struct language_row {
    std::string_view code;        // of ISO 639, perhaps with a script or a territory: "de", "pt_BR"
    std::string_view other_codes; // that stand for the same
    std::string_view english;
    std::string_view own;
    std::string_view other_names;
    std::string_view plural; // the rule as langlib/plural-rule.h reads it; empty: none is published
};

// The row with that code or name, whatever the case of its letters. False when there is none.
bool find_language(std::string_view name, language_row &row);

// A language as files and settings name it, with its parts in one form: "de", "de_AT", "zh_Hant",
// "sr_RS@latin".
struct language_tag {
    static constexpr std::size_t limit = 63;

    char text[limit + 1] = ""; // empty: no language
    std::size_t length = 0;

    std::string_view view() const { return {text, length}; }
};

// Reads a code or a name of the table, alone or with a territory, a script, an encoding (which does
// not count) and a modifier behind it, or with their English names in parentheses: "de-at",
// "German_AT", "german (AT)", "zh-Hant-HK", "de_AT.UTF-8@euro". False, and an empty tag, when the
// table has no such language.
bool read_language(std::string_view name, language_tag &tag, language_row &row);

// A language that is read instead of the one with that code: "no" for "nb"; empty for most.
std::string_view near_language(std::string_view code);

// The languages that do for a wanted one, the best first: each is written into the tag. Position 0
// is the first; false behind the last. "sr_RS@latin" gives itself, "sr@latin", "sr_RS", "sr".
bool next_choice(const language_tag &wanted, unsigned position, language_tag &tag);

} // namespace zel
