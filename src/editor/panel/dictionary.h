#pragma once

// The machine's spelling dictionaries, by way of enchant. A program that is built without it has
// none.

#include <string>
#include <string_view>
#include <vector>

namespace zel {

// A loaded dictionary. Words are UTF-8, without blanks. Answers are kept, so that asking again
// costs a look into a table.
class dictionary {
public:
    virtual ~dictionary() = default;
    dictionary(const dictionary &) = delete;
    dictionary &operator=(const dictionary &) = delete;

    virtual bool is_right(const std::string &word) = 0;

    // What the word may have been meant to be, the best first.
    virtual std::vector<std::string> suggestions(const std::string &word, std::size_t most) = 0;

    // From now on the word is right, also in later sessions where the user's own list of words can
    // be written.
    virtual void add(const std::string &word) = 0;

protected:
    dictionary() = default;
};

// Whether the program can find dictionaries at all.
bool has_dictionaries();

// Whether there is a dictionary for the language, a name or a code. Loads none; one that could not
// be loaded before counts as missing.
bool is_dictionary_there(const std::string &language);

// Whether the next call would have nothing to load.
bool is_dictionary_ready(const std::string &language);

// The language's dictionary, which lives until find_dictionary has loaded several others; null when
// there is none. Loading takes some 100 ms for a big one.
dictionary *find_dictionary(const std::string &language);

// Frees all dictionaries.
void release_dictionaries();

} // namespace zel
