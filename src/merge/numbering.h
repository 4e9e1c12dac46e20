#pragma once

// Which records of several lists are the same one. Names are numbered so that the same name has
// the same number in every list; where a list has a name several times, the first one, the second
// one and so on are a name of their own each.

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "support/hash-index.h"

namespace zel {

class numbering {
public:
    // The numbers of a list's names, in its order. What they refer to must live as long as this.
    // Names that no list before had get new numbers; so those of the first list are 0, 1, 2 and so
    // on.
    std::vector<std::uint32_t> number(std::span<const std::string_view> names);

    std::uint32_t count() const { return static_cast<std::uint32_t>(keys_.size()); }

private:
    static constexpr std::uint32_t none = hash_index::none;

    // One name, or one of several equal ones, which are a chain.
    struct key {
        std::string_view name;
        std::uint32_t first;        // of its chain
        std::uint32_t next = none;  // in its chain
        std::uint32_t last = none;  // of the chain; of a first one only
        std::uint32_t free = none;  // the next of the chain that the current list has not had yet
        std::uint32_t free_for = 0; // the list for which that holds
    };

    void index_keys();
    std::uint32_t find(std::string_view name) const;
    void link(std::uint32_t at);
    void take(std::uint32_t first, std::uint32_t at);
    std::uint32_t number_one(std::string_view name);

    std::vector<key> keys_;
    hash_index first_ones_;
    std::uint32_t indexed_ = 0; // keys that are in chains and in the index
    std::uint32_t list_ = 0;
};

// The order in which records of two lists follow one another: that of the first list, and what
// only the second one has behind its neighbour there. Numbers are below count.
std::vector<std::uint32_t> weave(std::span<const std::uint32_t> first,
                                 std::span<const std::uint32_t> second, std::uint32_t count);

} // namespace zel
