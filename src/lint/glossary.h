#pragma once

// The list of terms beside a source, terms.lang-src: each item is a term of the reference language,
// and its texts are what other languages call it. "folder/directory" allows both, "keep" says that
// the term stays as it is.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "source/model.h"

namespace zel::lint {

constexpr std::string_view glossary_file = "terms.lang-src";

// Where the list for a source lies; empty for the list itself, which has none.
std::string glossary_path(std::string_view source);

class glossary {
public:
    // Terms are the texts in the reference language, else the items of a list in that language.
    // Unused items and those of more words are left out; of equal terms the first one counts.
    glossary(const LangSource &list, const char *reference, std::size_t most_words = SIZE_MAX);

    // What a term is in a language: any of these.
    struct translation {
        std::string language;
        std::vector<std::string> any;
        bool is_kept; // it is the term itself
    };
    struct term {
        std::string text;
        std::vector<translation> translations;
        const translation *in(const char *language) const; // or null
    };

    // A term in a text, in bytes of the text.
    struct hit {
        const term *what;
        std::size_t from;
        std::size_t to;
    };

    // The terms of a text in their order, the longest at each place: whole words in any case,
    // without regard to mnemonics. Words of paths, options, symbols and tags are none.
    std::vector<hit> in(std::string_view text) const;

private:
    std::vector<term> terms_;
    std::unordered_map<std::string, std::size_t> places_; // by their words
    std::size_t longest_ = 0;                             // in words
};

// Whether a text speaks of the term as one of these: it has the first two thirds of each word, or
// all of what is kept. Short words must begin one of the text, longer ones may stand in a compound.
bool has_any(std::string_view text, const glossary::translation &wanted);

} // namespace zel::lint
