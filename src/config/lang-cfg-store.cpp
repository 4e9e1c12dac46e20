#include "config/lang-cfg-store.h"

#include "support/string-copy.h"

#include <cstdlib>
#include <cstring>

namespace zel {

cfg_entry_t *cfg_find(zel_list *entries, const char *name)
{
    for (const zel_list *node = entries; node != nullptr; node = node->next) {
        auto *entry = static_cast<cfg_entry_t *>(node->data);
        if (std::strcmp(entry->name, name) == 0)
            return entry;
    }
    return nullptr;
}

cfg_entry_t *cfg_find_or_add(zel_list *&entries, const char *name, int type)
{
    if (cfg_entry_t *found = cfg_find(entries, name))
        return found;
    auto *entry = static_cast<cfg_entry_t *>(std::calloc(1, sizeof(cfg_entry_t)));
    char *copy = zel_strdup2(name);
    if (entry == nullptr || copy == nullptr) {
        std::free(entry);
        std::free(copy);
        return nullptr;
    }
    entry->type = type;
    entry->name = copy;
    entries = zel_list_append(entries, entry);
    return entry;
}

cfg_entry_t *cfg_key(cfg_entry_t *section, const char *name)
{
    zel_list *keys = cfg_keys(section);
    cfg_entry_t *key = cfg_find_or_add(keys, name, CFG_VOID);
    section->data = keys;
    return key;
}

} // namespace zel
