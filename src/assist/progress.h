#pragma once

// How far a source is in the two shown languages, kept item by item: each item is judged once and
// again only after it has changed.

#include <cstddef>
#include <string>
#include <vector>

#include "assist/judge.h"

namespace zel::assist {

struct language_progress {
    std::size_t translated = 0;
    std::size_t findings = 0;
    std::size_t questions = 0;
};

class progress {
public:
    // So many items, of none of which anything is known.
    void reset(std::size_t items);

    std::size_t count() const { return states_.size(); }
    bool is_known(std::size_t item) const { return states_[item].known; }
    bool is_all_known() const { return known_ == states_.size(); }
    const item_state &of(std::size_t item) const { return states_[item].state; }

    void set(std::size_t item, const item_state &state);

    // The first item from there on of which nothing is known; count() when there is none.
    std::size_t first_unknown(std::size_t from) const;

    // Of the items that are known.
    const language_progress &of_language(std::size_t i) const { return languages_[i]; }

private:
    struct entry {
        item_state state;
        bool known = false;
    };
    void add(const item_state &state, int sign);

    std::vector<entry> states_;
    std::size_t known_ = 0;
    std::array<language_progress, shown_languages> languages_;
};

// A number as people read it: "8,201".
std::string grouped(std::size_t number);

} // namespace zel::assist
