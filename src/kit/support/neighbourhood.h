#pragma once

// What stands around an item: a text whose neighbours are those that another one had has most
// likely taken its place.

#include <unordered_map>
#include <vector>

#include "source/model.h"

namespace zel::kit {

class neighbourhood {
public:
    // Nobody is anybody's neighbour.
    neighbourhood() = default;

    // Of the items that are in use and have a translation, the nearest ones are neighbours: of an
    // item in use in the files of code, of another one in its group.
    explicit neighbourhood(const LangSource *source,
                           bool (*is_translated)(const LangSource *source, const item_t *item));

    // How many neighbours an item in use and one that is not have in common.
    unsigned shared(const item_t *used, const item_t *unused) const;

private:
    void read_groups(const LangSource *source);
    void read_code(const LangSource *source);
    void add_around(const std::vector<const item_t *> &row);

    std::unordered_map<const item_t *, bool> stays_;                         // of all items
    std::unordered_map<const item_t *, std::vector<const item_t *>> around_; // in their order
};

} // namespace zel::kit
