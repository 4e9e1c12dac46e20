#pragma once

// Texts that hold their forms for a number, "%d note|%d notes".

#include <string_view>

namespace zel::exchange {

// Whether a reference text has plural forms: signs "|" without white space beside them, a number in
// the last form ("%d", "%n" and "%1" of window libraries, or something in braces), and in each
// other form the same or none. So a menu path, "File|Open", and a row of a table, "%s | %d", are
// none.
bool is_plural_text(std::string_view text);

} // namespace zel::exchange
