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
};

struct succession {
    const edit_t *group;
    item_t *item;                        // in use, without a text but the default language's
    std::vector<predecessor> candidates; // one; several where nobody can tell which it is
};

// Finds the predecessors of all such items of the source, in their order; those without one are
// left out. Of one group before others, and of one file of code where the places are known.
std::vector<succession> find_predecessors(const LangSource *source, unsigned at_least);

} // namespace zel::kit
