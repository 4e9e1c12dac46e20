#pragma once

// A search in which upper and lower case of all scripts are equal.

#include <string>
#include <string_view>
#include <vector>

#include "assist/pieces.h"
#include "source/model.h"

namespace zel::assist {

// The text with every letter as its lower-case one, and with "ss" for the German sharp s; every
// byte that is no UTF-8 as the replacement character. Independent of the locale.
std::string fold(std::string_view text);

// The same of one character, appended.
void append_folded(std::string &out, char32_t c);

class folded_words {
public:
    folded_words() = default;

    // The words of a search text, split at blanks and tabs.
    explicit folded_words(std::string_view text);

    bool empty() const { return words_.empty(); }

    // Whether every word stands in the item's name, or every word in its first language, or every
    // word in its second, as in the search by bytes. Languages may be null.
    bool are_in(const item_t *item, const char *lang1, const char *lang2) const;

    // Where the words stand in the text, in its bytes: in their order, without overlapping.
    std::vector<piece> hits(std::string_view text) const;

private:
    bool are_in_strings(GList *strings) const;

    std::vector<std::string> words_; // folded; none is empty
    bool ascii_ = true;              // all of them
};

} // namespace zel::assist
