#pragma once

// An item's entries by language, for all languages at once: one pass over the entries of an item,
// however many languages there are.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "source/model.h"
#include "support/hash-index.h"

namespace zel {

class entry_table {
public:
    static constexpr std::uint32_t no_slot = UINT32_MAX;

    // The slot of a language that will be asked for; names that differ in case share one. A null
    // name has none.
    std::uint32_t add_language(const char *name);

    // Takes the entries of this item in place of the last one's.
    void load(const item_t *item);

    // The first of the item's entries in that language, or null.
    const lang_entry_t *find(std::uint32_t slot) const
    {
        return slot == no_slot ? nullptr : found_[slot];
    }

private:
    std::uint32_t slot_of(std::string_view name) const;
    std::uint32_t slot_at(std::size_t position, const char *name);

    // Items have their languages in one order, so that the name at a position is mostly the one
    // that stood there in the last item.
    struct guess {
        std::string name;
        std::uint32_t slot;
    };

    std::vector<std::string> names_; // in lower case, by slot
    hash_index index_;
    std::vector<const lang_entry_t *> found_;
    std::vector<guess> guesses_;
};

} // namespace zel
