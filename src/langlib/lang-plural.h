#pragma once

// The form of a text that was asked for.

#include <cstddef>
#include <cstdint>

#include "langlib/lang-lookup.h"

namespace zel {

// The position of the form for a number in a text of so many forms, by the rule of the file that it
// came from. A text of the default language that stands in is read as lang_plural reads it.
std::size_t form_position(const asked_text &asked, std::size_t count, std::int64_t number);

} // namespace zel
