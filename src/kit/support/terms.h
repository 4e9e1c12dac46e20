#pragma once

// The short texts of a source as a list of terms: how its translators have called what a longer
// text speaks of.

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kit/support/entry-index.h"
#include "source/model.h"

namespace zel::kit {

class term_list {
public:
    // References of at most three words that have a text in the language; the first of several.
    term_list(const LangSource *source, const entry_index &entries, const char *language);

    // Those that stand in a text which is more than the term itself, each once, in its order.
    std::vector<std::pair<std::string, std::string>> in(std::string_view text) const;

private:
    struct term {
        std::string reference;
        std::string text;
    };
    std::unordered_map<std::string, term> terms_; // by their words in small letters
};

} // namespace zel::kit
