#pragma once

// A text that looks translated and can still be read: "Save as..." becomes "[Šååvéé ååš]...". It
// shows what an application does not ask for by the library, what does not fit, and what is put
// together from pieces.

#include <string>
#include <string_view>

#include "source/model.h"

namespace zel::kit {

struct pseudo_how {
    int grow = 40;       // percent of characters more, by doubled letters
    bool accents = true; // the letters get accents; not where the source is no UTF-8
};

// Makes such a text of a reference text. Letters get accents and some of them are doubled, brackets
// stand at both ends as far as what lint expects there lets them. Conversions, symbols between
// percent signs, mnemonics, tags, entities, escapes, addresses, paths, digits, blanks and line ends
// stay. The item is the one that has the text.
std::string pseudo_text(std::string_view reference, const item_t *item, const pseudo_how &how);

} // namespace zel::kit
