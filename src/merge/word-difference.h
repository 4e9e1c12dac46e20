#pragma once

// What differs between two texts, by words.

#include <string>
#include <string_view>
#include <vector>

namespace zel {

enum class word_change { none, gone, added };

struct word_run {
    word_change how;
    std::string text; // words with one blank between them; a line end counts as one
};

// The words of both texts in their order; of two places that both changed the old words come first.
// Very long texts differ as a whole.
std::vector<word_run> compare_words(std::string_view before, std::string_view after);

// The same by words and signs, so that "file" and "file..." share a word, and with the blanks as
// they are written.
std::vector<word_run> compare_pieces(std::string_view before, std::string_view after);

} // namespace zel
