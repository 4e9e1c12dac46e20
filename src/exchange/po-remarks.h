#pragma once

// Lines in an item's comments that keep what a catalog says and a source has no place for:
//   flags: no-c-format, range: 0..10     in the default language's: the flags, where the text
//                                        alone does not tell them; "none" for no flag
//   fuzzy: was "Open" in "menu"          in the text's language: it is a guess, made from that

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/po-message.h"

namespace zel::exchange {

// Of a text whose numbers do not tell it, and of one that only looks like a plural.
constexpr std::string_view plural_flag = "plural";
constexpr std::string_view no_plural_flag = "no-plural";

std::optional<std::vector<std::string>> flags_of(std::string_view comment);
std::string flags_line(const std::vector<std::string> &flags);

// What the text alone tells: "c-format" where it holds conversions of printf.
std::vector<std::string> usual_flags(std::string_view text);

// The mark of a guess, and what the comment says that it was made from.
std::string fuzzy_line(const po_id &previous);
bool read_fuzzy(std::string_view comment, po_id &previous);

std::string without_fuzzy(std::string_view comment);

// Whether a line is one of these.
bool is_mark(std::string_view line);

// The comment for people, without such lines, and these lines alone.
std::string without_marks(std::string_view comment);
std::string marks_of(std::string_view comment);

} // namespace zel::exchange
