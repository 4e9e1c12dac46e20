#pragma once

// Names that are looked up: a hostile text has any number of them.

#include <algorithm>
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

} // namespace zel::lint
