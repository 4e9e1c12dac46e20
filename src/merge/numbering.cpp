#include "merge/numbering.h"

#include <algorithm>

namespace zel {

std::uint32_t numbering::find(std::string_view name) const
{
    return first_ones_.find(hash_of(name),
                            [&](std::uint32_t at) { return keys_[at].name == name; });
}

// Puts a key at the end of its name's chain.
void numbering::link(std::uint32_t at)
{
    const std::uint32_t first = find(keys_[at].name);
    if (first == none) {
        first_ones_.add(hash_of(keys_[at].name), at);
        keys_[at].first = at;
        keys_[at].last = at;
        return;
    }
    keys_[at].first = first;
    keys_[keys_[first].last].next = at;
    keys_[first].last = at;
}

void numbering::index_keys()
{
    first_ones_.reserve(keys_.size());
    for (; indexed_ < count(); ++indexed_)
        link(indexed_);
}

// The current list has had the chain up to that one.
void numbering::take(std::uint32_t first, std::uint32_t at)
{
    keys_[first].free = keys_[at].next;
    keys_[first].free_for = list_;
}

// The number of the next free record of that name. A list may hold a name several times: the n-th
// meets the n-th of the other lists.
std::uint32_t numbering::number_one(std::string_view name)
{
    const std::uint32_t first = find(name);
    std::uint32_t at = first;
    if (first != none && keys_[first].free_for == list_)
        at = keys_[first].free;
    if (at == none) {
        at = count();
        keys_.push_back({name, at});
        link(at);
        indexed_ = count();
    }
    take(keys_[at].first, at);
    return at;
}

std::vector<std::uint32_t> numbering::number(std::span<const std::string_view> names)
{
    std::vector<std::uint32_t> numbers;
    numbers.reserve(names.size());
    const auto done = [&] { return static_cast<std::uint32_t>(numbers.size()); };
    // The first list names everything: its numbers are its positions.
    if (++list_ == 1) {
        for (const std::string_view name : names) {
            numbers.push_back(count());
            keys_.push_back({name, count()});
        }
        return numbers;
    }
    // Most lists begin alike, and many are alike to their end: no index is needed for that.
    while (done() < names.size() && done() < count() && keys_[done()].name == names[done()])
        numbers.push_back(done());
    if (done() == names.size())
        return numbers;
    index_keys();
    for (std::uint32_t at = 0; at < numbers.size(); ++at)
        take(keys_[at].first, at);
    for (const std::string_view name : names.subspan(done()))
        numbers.push_back(number_one(name));
    return numbers;
}

std::vector<std::uint32_t> weave(std::span<const std::uint32_t> first,
                                 std::span<const std::uint32_t> second, std::uint32_t count)
{
    // Nothing moved: the usual case, and the only one without tables.
    if (std::ranges::equal(first, second))
        return {first.begin(), first.end()};
    constexpr std::uint32_t none = UINT32_MAX;
    // Where each number stands in the first list, counted from 1; what has no neighbour there is
    // behind 0.
    std::vector<std::uint32_t> position(count, none);
    for (std::uint32_t at = 0; at < first.size(); ++at)
        position[first[at]] = at + 1;
    std::vector<bool> in_second(count);
    for (const std::uint32_t one : second)
        in_second[one] = true;
    // Each of the second list's own is behind a position; they keep their order there.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> own;
    // What the first list alone has at a position comes before that.
    const auto past_own = [&](std::uint32_t at) {
        while (at < first.size() && !in_second[first[at]])
            ++at;
        return at;
    };
    std::uint32_t behind = past_own(0);
    for (const std::uint32_t one : second) {
        if (position[one] == none)
            own.emplace_back(behind, one);
        else
            behind = past_own(position[one]);
    }
    std::ranges::stable_sort(own, {}, &std::pair<std::uint32_t, std::uint32_t>::first);
    std::vector<std::uint32_t> order;
    order.reserve(first.size() + own.size());
    auto next = own.begin();
    // The first list in its order, and behind each of its records what the second one added there.
    for (std::uint32_t at = 0; at <= first.size(); ++at) {
        if (at > 0)
            order.push_back(first[at - 1]);
        for (; next != own.end() && next->first == at; ++next)
            order.push_back(next->second);
    }
    return order;
}

} // namespace zel
