#pragma once

// How many forms a text with a number has in a language, and which of them a number takes: the
// rules of the table of languages, as langlib/languages.inc describes them. Nothing here allocates.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zel {

// A rule may have editions, with "/" between them, the one in force first: texts were written for
// the older ones, too. What is counted and named here is that of the first.

// What English has: one, and all others.
inline constexpr std::string_view rule_of_two = "one:n=1;other";

// A rule's forms.
struct plural_forms {
    std::size_t all = 0;
    std::size_t everyday = 0; // without those that begin at a million
};
plural_forms count_plural_forms(std::string_view rule);

// Whether an edition of the rule has so many forms, or so many everyday ones.
bool has_edition_with(std::string_view rule, std::size_t count);

// The form's name, "one"; empty behind the last.
std::string_view plural_form_name(std::string_view rule, std::size_t form);

// The position of the form for a number among so many: those of an edition of the rule, or its
// everyday ones. With another count the rule of two decides, or, when that fails too, it is the
// last form.
std::size_t plural_form(std::string_view rule, std::size_t count, std::uint64_t number);

// The forms of a text are what stands between the signs "|"; a text without has one.
inline constexpr char plural_sign = '|';
std::size_t count_text_forms(std::string_view text);

// The form at a position; the last one for a position behind it.
std::string_view text_form(std::string_view text, std::size_t form);

} // namespace zel
