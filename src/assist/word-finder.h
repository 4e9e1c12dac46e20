#pragma once

// Where a word, or some in a row, stands in texts: upper and lower case of all scripts are equal,
// the sign of a mnemonic inside it does not hide it, and what belongs to the application (pieces,
// escapes, entities) is none of it.

#include <string>
#include <string_view>
#include <vector>

#include "assist/pieces.h"

namespace zel::assist {

enum class word_extent {
    whole,    // no letter or digit before and behind
    beginning // none before
};

class word_finder {
public:
    word_finder() = default;

    // Blanks around the words do not count.
    word_finder(std::string_view words, word_extent extent);

    bool empty() const { return wanted_.empty(); }

    // Where the words stand, in the text's order, each with the mnemonic's sign before or in it.
    std::vector<piece> hits(std::string_view text) const { return find(text, false); }
    bool are_in(std::string_view text) const { return !find(text, true).empty(); }

private:
    std::vector<piece> find(std::string_view text, bool one_is_enough) const;
    std::size_t end_of_match(std::string_view text, std::size_t at, bool marks) const;

    std::string wanted_; // folded
    word_extent extent_ = word_extent::whole;
    bool may_begin_[256] = {}; // bytes of texts that the words may begin with
};

// The word at a place in bytes, which may be its end, without a mnemonic's sign; else the one
// before the place, else the one behind it. Empty where the text has none.
std::string word_at(std::string_view text, std::size_t place);

// The beginning of a word by which its other forms are found as well: without its last three
// letters, but four at least.
std::string stem_of(std::string_view word);

// Puts words in the place of others, whole ones only.
class word_replacer {
public:
    word_replacer(std::string_view words, std::string_view others);

    // The text with the others in it, in the case of those that they replace and with their
    // mnemonic; and where they stand there. Without a hit both are empty, and where the text is no
    // UTF-8.
    struct replaced {
        std::string text;
        std::vector<piece> places;
        bool any() const { return !places.empty(); }
    };
    replaced in(std::string_view text) const;

    const word_finder &finder() const { return finder_; }
    bool removes() const { return others_.empty(); } // there is nothing to put in

private:
    std::string written_for(std::string_view written) const;

    std::string words_;
    std::string others_;
    word_finder finder_;
};

} // namespace zel::assist
