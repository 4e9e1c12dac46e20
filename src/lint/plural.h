#pragma once

// Texts that hold their forms for a number, "%d note|%d notes", as lang_plural of liblang reads
// them.

#include <string_view>
#include <vector>

#include "lint/text.h"
#include "source/model.h"

namespace zel::lint {

// Whether a reference text has plural forms: signs "|" without blanks beside them, a conversion for
// a whole number in the last form, and in each other form the same conversions or none. So a menu
// path, "File|Open", and a row of a table, "%s | %d", are none.
bool has_plural_forms(std::string_view text);

// Notes it in the text, for rules that ask once for each translation; one that is_plural has
// forms whatever it holds.
void note_forms(text &of, bool is_plural);

// Whether a form of so many serves one number alone, which it may write out: "one note".
bool is_of_one_number(std::string_view rule, std::size_t count, std::size_t form);

// The published rule of a language for its forms (langlib/plural-rule.h), which its name or its
// file tells; empty when it is not known or has none.
std::string_view plural_rule_of(const lang_t &language);

// The forms of a text, at least one.
std::vector<std::string_view> read_forms(std::string_view text);

} // namespace zel::lint
