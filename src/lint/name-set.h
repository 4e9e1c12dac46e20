#pragma once

// Names that are looked up: a hostile text has any number of them.

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace zel::lint {

class name_set {
public:
    explicit name_set(std::vector<std::string_view> names) : names_(std::move(names))
    {
        std::sort(names_.begin(), names_.end());
    }
    bool has(std::string_view name) const
    {
        return std::binary_search(names_.begin(), names_.end(), name);
    }

private:
    std::vector<std::string_view> names_;
};

// Of two sorted lists, what stands in the first only.
inline std::vector<std::string> lacking(const std::vector<std::string> &has,
                                        const std::vector<std::string> &lacks)
{
    std::vector<std::string> out;
    std::set_difference(has.begin(), has.end(), lacks.begin(), lacks.end(),
                        std::back_inserter(out));
    return out;
}

} // namespace zel::lint
