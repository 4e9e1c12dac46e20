#pragma once

// Texts that hold their forms for a number, "%d note|%d notes".

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel::exchange {

// Whether a reference text has plural forms: signs "|" without white space beside them, a number in
// the last form ("%d", "%n" and "%1" of window libraries, or something in braces), and in each
// other form the same or none. So a menu path, "File|Open", and a row of a table, "%s | %d", are
// none.
bool is_plural_text(std::string_view text);

// A line of the default language's comment says what a catalog says of a message and its text does
// not: "flags: plural, no-c-format".
std::optional<std::vector<std::string>> flags_of(std::string_view comment);
std::string without_flags(std::string_view comment);
bool has_flag(std::string_view comment, std::string_view flag);

} // namespace zel::exchange
