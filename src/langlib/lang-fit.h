#pragma once

// Whether printf may be called with one format in place of another.

#include <string_view>

namespace zel {

// The rules of lang_format_or (lang-locale.h). Both are pieces of texts: a NUL or the sign between
// two forms stands behind each.
bool format_fits(std::string_view text, std::string_view item);

} // namespace zel
