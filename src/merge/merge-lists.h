#pragma once

// Merging two lists of records that come from one list.

#include <span>
#include <vector>

#include "merge/numbering.h"
#include "merge/records.h"
#include "source/model.h"

namespace zel {

// Whether a list has an order of its own: it has records that only the other one has too, or those
// that all three have in another order than the base, which numbers them.
inline bool has_own_order(std::span<const std::uint32_t> list, std::span<const std::uint32_t> other,
                          std::size_t base_count, std::uint32_t count)
{
    std::vector<bool> in_other(count);
    for (const std::uint32_t at : other)
        in_other[at] = true;
    std::uint32_t last = 0;
    for (const std::uint32_t at : list) {
        if (!in_other[at])
            continue;
        if (at >= base_count || at < last)
            return true;
        last = at;
    }
    return false;
}

// The order of the merged list, which is ours with what theirs has new; theirs with ours where only
// theirs has an order of its own.
inline std::vector<std::uint32_t> merged_order(std::span<const std::uint32_t> ours,
                                               std::span<const std::uint32_t> theirs,
                                               std::size_t base_count, std::uint32_t count)
{
    const bool as_theirs = !has_own_order(ours, theirs, base_count, count) &&
                           has_own_order(theirs, ours, base_count, count);
    return as_theirs ? weave(theirs, ours, count) : weave(ours, theirs, count);
}

// One record as the three lists have it; null where one has it not.
template <class T>
struct trio {
    T *base = nullptr;
    T *ours = nullptr;
    GList *theirs = nullptr; // its node
};

// The records of three lists, by number.
template <class T>
struct trios {
    std::vector<trio<T>> all;
    std::vector<std::uint32_t> order; // of those that ours or theirs has, in the merged list

    trios(GList *base, GList *ours, GList *theirs)
    {
        numbering numbers;
        const auto base_numbers = numbers.number(names_of<T>(base));
        const auto our_numbers = numbers.number(names_of<T>(ours));
        const auto their_numbers = numbers.number(names_of<T>(theirs));
        all.resize(numbers.count());
        fill(base_numbers, base, [](trio<T> &one, GList *node) { one.base = record_of(node); });
        fill(our_numbers, ours, [](trio<T> &one, GList *node) { one.ours = record_of(node); });
        fill(their_numbers, theirs, [](trio<T> &one, GList *node) { one.theirs = node; });
        order = merged_order(our_numbers, their_numbers, base_numbers.size(), numbers.count());
    }

    static T *record_of(GList *node)
    {
        return node == nullptr ? nullptr : static_cast<T *>(node->data);
    }

private:
    template <class Put>
    void fill(const std::vector<std::uint32_t> &numbers, GList *list, Put put)
    {
        for (const std::uint32_t at : numbers) {
            put(all[at], list);
            list = list->next;
        }
    }
};

// Merges two lists into ours. For each record merge(base, ours, theirs), each of which may be null,
// gives what the result has: ours; theirs when ours is null; or null. What ours loses goes to
// release, as a list.
template <class T, class Merge>
void merge_lists(GList *base, GList *&ours, GList *&theirs, void (*release)(GList *), Merge merge)
{
    if (same_names<T>(base, ours) && same_names<T>(ours, theirs)) {
        GList *b = base;
        GList *t = theirs;
        for (T *one : each<T>(ours)) {
            merge(static_cast<T *>(b->data), one, static_cast<T *>(t->data));
            b = b->next;
            t = t->next;
        }
        return;
    }
    const trios<T> records(base, ours, theirs);
    GList *merged = nullptr;
    GList *lost = nullptr;
    list_tail tail(merged);
    for (const std::uint32_t at : records.order) {
        const trio<T> &one = records.all[at];
        T *result = merge(one.base, one.ours, trios<T>::record_of(one.theirs));
        if (result != nullptr)
            tail.append(result);
        if (result == nullptr && one.ours != nullptr)
            lost = g_list_prepend(lost, one.ours);
        if (result != nullptr && one.ours == nullptr)
            theirs = g_list_delete_link(theirs, one.theirs);
    }
    g_list_free(ours);
    ours = merged;
    release(lost);
}

} // namespace zel
