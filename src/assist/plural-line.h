#pragma once

// What a translator sees of a text with several forms for a number: which numbers take which form.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zel::assist {

struct number_form {
    std::vector<std::uint64_t> samples; // numbers that take it, at most three
    std::string numbers;                // some of them as one reads them, "2-4, 22"; empty: none
    bool is_missing = false;            // the language needs it, the text does not have it
};

// The forms of a text and those that it lacks, by the language's plural rule
// (langlib/plural-rule.h; empty: the language has no published one, and two forms do).
// lang_plural_of picks the form for each number that stands here, once none is missing.
std::vector<number_form> number_forms(std::string_view rule, std::string_view text);

// The form with the number in the place of its conversion: "21 files".
std::string with_number(std::string_view form, std::uint64_t number);

// A text with all the forms that a language needs, each the one that the other text, of a language
// with its own rule, has for the first number that takes it: "%d note|%d notes|%d notes".
std::string needed_forms(std::string_view rule, std::string_view other,
                         std::string_view other_rule);

} // namespace zel::assist
