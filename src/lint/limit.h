#pragma once

// The room that a text has: a comment of its item tells it, in the text's language or, for all of
// them, in the default language.

#include <cstddef>
#include <string_view>

#include "lint/finding.h"
#include "lint/switch.h"

namespace zel::lint {

// The limit of the item's text in that language; one of the language's own comes first.
length_limit limit_of(const LangSource &source, const item_t *item, const char *language);

// How long a text is where people read it, in characters or, with a ruler, in pixels: of forms for
// a number the longest one, without the underscore of a mnemonic.
std::size_t shown_length(std::string_view text, const text_width &ruler = nullptr);

} // namespace zel::lint
