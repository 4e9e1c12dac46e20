#pragma once

// Finds positions in a caller's array by the hash of what stands there. The caller keeps the array
// and compares; this keeps only hashes and positions, eight bytes a slot.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace zel {

inline std::uint32_t hash_of(std::string_view text)
{
    return static_cast<std::uint32_t>(std::hash<std::string_view>{}(text));
}

class hash_index {
public:
    static constexpr std::uint32_t none = UINT32_MAX;

    // The position added under that hash for which same(position) holds, or none.
    template <class Same>
    std::uint32_t find(std::uint32_t hash, Same same) const
    {
        if (slots_.empty())
            return none;
        for (std::size_t at = home(hash); slots_[at].used != 0; at = next(at))
            if (slots_[at].hash == hash && same(slots_[at].used - 1))
                return slots_[at].used - 1;
        return none;
    }

    // Makes room for that many at once.
    void reserve(std::size_t count)
    {
        while (count + count / 2 >= slots_.size())
            grow();
    }

    // Adds a position; what it stands for must not be there yet.
    void add(std::uint32_t hash, std::uint32_t position)
    {
        if (count_ + count_ / 2 >= slots_.size())
            grow();
        put({hash, position + 1});
        ++count_;
    }

private:
    struct slot {
        std::uint32_t hash;
        std::uint32_t used; // position + 1, 0 while the slot is free
    };

    // The hash is spread by a multiplication, for callers whose hashes are close together.
    std::size_t home(std::uint32_t hash) const { return hash * 0x9E3779B1u & (slots_.size() - 1); }
    std::size_t next(std::size_t at) const { return (at + 1) & (slots_.size() - 1); }

    void put(slot added)
    {
        std::size_t at = home(added.hash);
        while (slots_[at].used != 0)
            at = next(at);
        slots_[at] = added;
    }

    void grow()
    {
        const std::vector<slot> old = std::exchange(slots_, {});
        slots_.resize(old.empty() ? 16 : 2 * old.size());
        for (const slot &kept : old)
            if (kept.used != 0)
                put(kept);
    }

    std::vector<slot> slots_; // a power of two of them, at most two thirds in use
    std::size_t count_ = 0;
};

} // namespace zel
