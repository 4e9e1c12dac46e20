#pragma once

// How a catalog counts: the field "Plural-Forms" of its header,
//   nplurals=3; plural=(n%10==1 && n%100!=11 ? 0 : n%10>=2 && n%10<=4 ? 1 : 2);
// beside the rule by which lang_plural of liblang counts (langlib/plural-rule.h).

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/plural-expression.h"

namespace zel::exchange {

inline constexpr std::size_t most_plural_forms = 64; // no language has more than six

inline constexpr std::string_view plural_field = "Plural-Forms";

// The line of a catalog on which the field stands; 1 where it does not.
std::uint32_t plural_line(std::string_view bytes);

// The numbers at which two ways of counting are compared; they agree at all others, too, unless one
// was made for numbers that nobody counts to.
std::array<std::uint64_t, 1013> plural_samples();

struct plural_header {
    std::size_t count = 0; // of forms; 0: the field is missing, or a template's placeholder
    plural_expression expression;
    std::vector<std::uint8_t> known; // the forms of the first numbers, once it is read

    // Reads the field's value. What is wrong with it, or an empty text.
    std::string read(std::string_view value);

    // The form of a number that the header was read for.
    std::size_t form(std::uint64_t n) const;
};

// Whether liblang knows how a language of that name counts.
bool has_plural_rule(std::string_view language);

// The rule in force for a language as sources name it, one edition alone; that of English for a
// language without one.
std::string_view plural_rule_of(std::string_view language);

// Whether a form of the rule begins at a million.
bool is_rare_form(std::string_view rule, std::size_t form);

// A number for each form of a header: the smallest from 1 on, 0 for one that has no other.
std::vector<std::uint64_t> plural_numbers(const plural_header &header);

// Whether each number has the same form by the header as in a text of the header's count.
bool counts_alike(const plural_header &header, std::string_view rule);

// The value of a header that counts by the rule, with the forms that begin at a million or without
// them: the one that catalogs of such a language have had for long, or else the rule itself.
std::string header_of_rule(std::string_view rule, bool with_rare_forms);

} // namespace zel::exchange
