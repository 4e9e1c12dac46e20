#include "config/lang-cfg-store.h"

#include "support/hash-index.h"
#include "support/string-copy.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

namespace zel {

// Finds an entry by its section (none for sections) and its name. The lists alone keep the order;
// to search them for each line would make reading a large file quadratic.
class cfg_index {
public:
    cfg_entry_t *find(const cfg_entry_t *section, const char *name) const
    {
        const std::uint32_t at = index_.find(hash(section, name), [&](std::uint32_t position) {
            const row &seen = rows_[position];
            return seen.section == section && std::strcmp(seen.entry->name, name) == 0;
        });
        return at == hash_index::none ? nullptr : rows_[at].entry;
    }

    void add(const cfg_entry_t *section, cfg_entry_t *entry)
    {
        index_.add(hash(section, entry->name), static_cast<std::uint32_t>(rows_.size()));
        rows_.push_back({section, entry});
    }

private:
    struct row {
        const cfg_entry_t *section;
        cfg_entry_t *entry;
    };

    static std::uint32_t hash(const cfg_entry_t *section, const char *name)
    {
        // The lowest four bits of such an address are always the same.
        const auto home = reinterpret_cast<std::uintptr_t>(section) >> 4;
        return hash_of(name) ^ static_cast<std::uint32_t>(home) * 0x85EBCA6BU;
    }

    std::vector<row> rows_;
    hash_index index_;
};

} // namespace zel

namespace {

cfg_entry_t *new_entry(const char *name, int type)
{
    auto *entry = static_cast<cfg_entry_t *>(std::calloc(1, sizeof(cfg_entry_t)));
    char *copy = zel_strdup2(name);
    if (entry == nullptr || copy == nullptr) {
        std::free(entry);
        std::free(copy);
        return nullptr;
    }
    entry->type = type;
    entry->name = copy;
    return entry;
}

// Makes an entry and appends it to the list whose last node is known.
cfg_entry_t *append_entry(zel_list *&head, zel_list *&last, const char *name, int type)
{
    cfg_entry_t *entry = new_entry(name, type);
    if (entry == nullptr)
        return nullptr;
    // Walks on from the last node, which is the end, and not from the head.
    zel::list_end list(last);
    if (!list.append(entry)) {
        std::free(entry->name);
        std::free(entry);
        return nullptr;
    }
    last = list.last;
    if (head == nullptr)
        head = last;
    return entry;
}

} // namespace

namespace zel {

// Without memory C callers get null: no exception may pass through them.
cfg_index *cfg_index_new() { return new (std::nothrow) cfg_index; }

void cfg_index_free(cfg_index *index) { delete index; }

cfg_entry_t *cfg_find_section(const lang_cfg_t *store, const char *name)
{
    return store->index->find(nullptr, name);
}

cfg_entry_t *cfg_section(lang_cfg_t *store, const char *name)
{
    if (cfg_entry_t *found = cfg_find_section(store, name))
        return found;
    cfg_entry_t *made = append_entry(store->sections, store->last_section, name, CFG_SECTION);
    if (made != nullptr)
        store->index->add(nullptr, made);
    return made;
}

cfg_entry_t *cfg_find_key(const lang_cfg_t *store, const cfg_entry_t *section, const char *name)
{
    return store->index->find(section, name);
}

cfg_entry_t *cfg_key(lang_cfg_t *store, cfg_entry_t *section, const char *name)
{
    if (cfg_entry_t *found = cfg_find_key(store, section, name))
        return found;
    // The section's data is the list itself, so it changes with the first key.
    zel_list *keys = cfg_keys(section);
    cfg_entry_t *made = append_entry(keys, section->last, name, CFG_VOID);
    section->data = keys;
    if (made != nullptr)
        store->index->add(section, made);
    return made;
}

} // namespace zel
