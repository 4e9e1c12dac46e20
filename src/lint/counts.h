#pragma once

// How far each language of a source is.

#include <cstddef>
#include <string_view>
#include <vector>

#include "source/model.h"

namespace zel::lint {

struct amount {
    std::size_t words = 0; // between blanks; a Chinese or Japanese character is one
    std::size_t characters = 0;

    void add(amount other)
    {
        words += other.words;
        characters += other.characters;
    }
};

amount measure(std::string_view text);

// Of the items that are used. Each is translated, missing or empty; the others are parts of those
// that are translated.
struct language_counts {
    const lang_t *language = nullptr;
    bool is_reference =
        false; // the default language: its texts are the reference, and never the same
    std::size_t translated = 0;
    std::size_t missing = 0; // there is no text
    std::size_t empty = 0;   // there is one with nothing in it
    std::size_t same = 0;    // equal to the reference text
    std::size_t ready = 0;   // the item is marked ready
    amount done;             // of the language's texts
    amount left;             // of the reference texts of what is missing or empty
};

struct source_counts {
    std::size_t items = 0;                  // all,
    std::size_t used = 0;                   // and those that are used
    std::vector<language_counts> languages; // in the order of their definitions
};

source_counts count_texts(const LangSource *source);

} // namespace zel::lint
