#include "compiler/entry-table.h"

#include "support/text.h"

#include <algorithm>
#include <cstring>

namespace {

std::string in_lower_case(std::string_view name)
{
    std::string lower(name);
    for (char &c : lower)
        c = static_cast<char>(zel::lower(c));
    return lower;
}

} // namespace

namespace zel {

std::uint32_t entry_table::add_language(const char *name)
{
    if (name == nullptr)
        return no_slot;
    const std::uint32_t known = slot_of(name);
    if (known != no_slot)
        return known;
    const auto slot = static_cast<std::uint32_t>(names_.size());
    names_.push_back(in_lower_case(name));
    index_.add(hash_of(names_.back()), slot);
    found_.push_back(nullptr);
    return slot;
}

std::uint32_t entry_table::slot_of(std::string_view name) const
{
    const std::string lower = in_lower_case(name);
    static_assert(hash_index::none == no_slot);
    return index_.find(hash_of(lower), [&](std::uint32_t slot) { return names_[slot] == lower; });
}

std::uint32_t entry_table::slot_at(std::size_t position, const char *name)
{
    // Items mostly list their languages in the same order. So the language last seen at this
    // position is usually the right one, and one comparison replaces a look-up.
    if (position == guesses_.size())
        guesses_.push_back({name, slot_of(name)});
    guess &last = guesses_[position];
    if (std::strcmp(last.name.c_str(), name) != 0)
        last = {name, slot_of(name)};
    return last.slot;
}

void entry_table::load(const item_t *item)
{
    std::fill(found_.begin(), found_.end(), nullptr);
    std::size_t position = 0;
    for (const lang_entry_t *entry : each<lang_entry_t>(item->langs)) {
        const std::uint32_t slot = slot_at(position++, or_empty(entry->lang));
        // The first entry of a language counts, as in find_entry.
        if (slot != no_slot && found_[slot] == nullptr)
            found_[slot] = entry;
    }
}

} // namespace zel
