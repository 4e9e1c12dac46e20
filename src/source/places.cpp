#include "source/places.h"

#include <algorithm>
#include <functional>

namespace zel {

place source_places::of(const void *record) const
{
    // Records are mostly asked for in the order in which they were read: the neighbours of the last
    // hit are tried before the sorted copy.
    constexpr std::size_t near = 64; // an item's entries stand together
    const std::size_t end = std::min(found_.size(), cursor_ + near);
    for (std::size_t at = cursor_ < near ? 0 : cursor_ - near; at < end; ++at) {
        if (found_[at].record == record) {
            cursor_ = at;
            return found_[at].at;
        }
    }
    // std::less orders any two pointers; "<" promises nothing for records of different blocks.
    const auto before = [](const row &a, const row &b) {
        return std::less<const void *>{}(a.record, b.record);
    };
    // Sorted again whenever add has appended a record since the last sort.
    if (by_record_.size() != found_.size()) {
        by_record_ = found_;
        std::sort(by_record_.begin(), by_record_.end(), before);
    }
    const auto it = std::lower_bound(by_record_.begin(), by_record_.end(), row{record, {}}, before);
    return it != by_record_.end() && it->record == record ? it->at : place{};
}

} // namespace zel
