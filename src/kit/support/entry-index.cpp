#include "kit/support/entry-index.h"

#include <bit>
#include <cstring>

namespace zel::kit {

namespace {

std::uint32_t hash_of_place(const item_t *item, const char *language)
{
    // The lowest bits of an address are always the same.
    const auto address = std::bit_cast<std::uintptr_t>(item);
    return hash_of(language) ^ static_cast<std::uint32_t>(address >> 4) * 0x85EBCA6BU;
}

} // namespace

entry_index::entry_index(const LangSource *source, GList *item_t::*list) : list_(list)
{
    for (const edit_t *group : each<edit_t>(source->groups))
        for (const item_t *item : each<item_t>(group->items))
            for (lang_entry_t *entry : each<lang_entry_t>(item->*list_))
                add(item, entry);
}

void entry_index::add(const item_t *item, lang_entry_t *entry)
{
    if (entry->lang == nullptr || find(item, entry->lang) != nullptr)
        return;
    index_.add(hash_of_place(item, entry->lang), static_cast<std::uint32_t>(places_.size()));
    places_.push_back({item, entry});
}

lang_entry_t *entry_index::find(const item_t *item, const char *language) const
{
    if (language == nullptr)
        return nullptr;
    const std::uint32_t at = index_.find(hash_of_place(item, language), [&](std::uint32_t i) {
        return places_[i].item == item && std::strcmp(places_[i].entry->lang, language) == 0;
    });
    return at == hash_index::none ? nullptr : places_[at].entry;
}

lang_entry_t *entry_index::append(item_t *item, const char *language)
{
    lang_entry_t *entry = alloc_lang_entry(language);
    // Each item's last node is remembered: finding the end would walk the list each time.
    const auto [known, is_new] = last_.try_emplace(item);
    GList *&last = known->second;
    if (is_new)
        last = g_list_last(item->*list_);
    if (last == nullptr)
        last = item->*list_ = g_list_append(nullptr, entry);
    else
        last = g_list_append(last, entry)->next;
    add(item, entry);
    return entry;
}

} // namespace zel::kit
