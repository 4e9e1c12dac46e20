#pragma once

// Which dictionary does for a language of a source.

#include <span>
#include <string>
#include <string_view>

namespace zel::assist {

// The best of the dictionaries that are there, whose names are codes ("de", "de_AT"), for a
// language's name or code ("german", "Deutsch", "de", "de_AT", "German (AT)"); empty when none
// does. The language itself comes first, then what it is a form of, then the form of the
// territory where the language is at home, then the territory that is first by the alphabet. A name
// that is no known language is still the name of a dictionary. A script other than the language's
// own (sr@latin) is never given up. Their order does not matter.
std::string choose_dictionary(std::string_view language, std::span<const std::string> there);

} // namespace zel::assist
