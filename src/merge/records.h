#pragma once

// Records as comparing and merging see them: by their names, in lists; and what a record is before
// anything is known of it.

#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

#include "merge/fields.h"
#include "source/model.h"
#include "support/guard.h"

namespace zel {

inline std::string_view name_of(const lang_t &lang) { return view_of(lang.name); }
inline std::string_view name_of(const edit_t &group) { return view_of(group.name); }
inline std::string_view name_of(const item_t &item) { return view_of(item.name); }
inline std::string_view name_of(const lang_entry_t &entry) { return view_of(entry.lang); }
inline std::string_view name_of(const char &place) { return view_of(&place); }

template <class T>
std::string_view name_at(const GList *node)
{
    const auto *record = static_cast<const T *>(node->data);
    return record == nullptr ? std::string_view() : name_of(*record);
}

template <class T>
std::vector<std::string_view> names_of(GList *list)
{
    std::vector<std::string_view> names;
    for (; list != nullptr; list = list->next)
        names.push_back(name_at<T>(list));
    return names;
}

// Whether two lists bear the same names in the same order.
template <class T>
bool same_names(const GList *a, const GList *b)
{
    for (; a != nullptr && b != nullptr; a = a->next, b = b->next)
        if (name_at<T>(a) != name_at<T>(b))
            return false;
    return a == b;
}

// A record without strings, as it is made by its constructor.
template <class T>
T fresh_record(T *(*make)())
{
    const std::unique_ptr<T, release<std::free>> made(make());
    return made == nullptr ? T{} : *made;
}

} // namespace zel
