#pragma once

// Finds the entries of a source's items by their language, for callers that walk through the
// languages one after the other: texts, or remarks. Nobody else may add such entries meanwhile.

#include <string>
#include <unordered_map>
#include <vector>

#include "source/model.h"
#include "support/hash-index.h"

namespace zel::kit {

class entry_index {
public:
    explicit entry_index(const LangSource *source, GList *item_t::*list = &item_t::langs);

    // The item's first entry in the language, or null.
    lang_entry_t *find(const item_t *item, const char *language) const;

    // Appends a new entry, the item's last.
    lang_entry_t *append(item_t *item, const char *language);

private:
    struct place {
        const item_t *item;
        lang_entry_t *entry;
    };
    void add(const item_t *item, lang_entry_t *entry);

    GList *item_t::*list_;
    std::vector<place> places_;
    hash_index index_;
    std::unordered_map<const item_t *, GList *> last_; // nodes, of items that got an entry
};

} // namespace zel::kit
