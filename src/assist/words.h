#pragma once

// The words of a text that a dictionary can judge, and words put in their place.

#include <string>
#include <string_view>
#include <vector>

#include "assist/pieces.h"

namespace zel::assist {

struct word {
    piece place;         // in the text, with what stands inside it and is no letter
    std::string letters; // as a dictionary has it: no mnemonic's underscore, no soft hyphen, and
                         // the typewriter's apostrophe
};

// The words, in the order of the text. None are: what belongs to the application (pieces_of,
// entities, escapes), addresses, paths and options, what holds a digit, names made of several words
// ("file_name", "fileName", "file.txt"), words all in capitals, single letters, and scripts that
// set no blanks between words.
std::vector<word> words_of(std::string_view text);

// Whether the letter is of a script that sets no blanks between words.
bool sets_no_blanks(char32_t c);

// The letters with the mnemonic's underscore and the kind of apostrophe that the written word has;
// the underscore before the first letter that is the same, else before the first one.
std::string written_like(std::string_view written, std::string_view letters);

} // namespace zel::assist
