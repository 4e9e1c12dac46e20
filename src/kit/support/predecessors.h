#pragma once

// Which items of a source were others before the text in the code changed: a check has marked the
// old item as unused, and put in a new one that has nothing but its name.

#include <functional>
#include <vector>

#include "source/model.h"

namespace zel::kit {

// An unused item with texts.
struct predecessor {
    const edit_t *group;
    const item_t *item;
    unsigned likeness; // percent
    bool nearly;       // only case, blanks, the sign at the end or a mnemonic differ
    bool by_place;     // too little likeness, but between the same neighbours
};

struct succession {
    const edit_t *group;
    item_t *item;                        // in use, without a text but the default language's
    std::vector<predecessor> candidates; // one; several where nobody can tell which it is
};

struct grouped_item {
    const edit_t *group;
    item_t *item;
};

// Finds what items were before, among others: in their order, without those that were nothing.
// Predecessors of one group come before others, and of one file of code where the places are known.
// Of two within 5 points nobody can tell which it is, unless what they hold is as good as the same.
std::vector<succession> find_predecessors(const std::vector<grouped_item> &items,
                                          const std::vector<grouped_item> &among,
                                          unsigned at_least);

// The same of all such items of a source, where neighbours in the code and in a group are evidence,
// too: three in common count as 6 points of likeness.
std::vector<succession> find_predecessors(const LangSource *source, unsigned at_least);

} // namespace zel::kit
