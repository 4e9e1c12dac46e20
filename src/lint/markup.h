#pragma once

// Tags in texts.

#include <cstddef>
#include <string_view>

namespace zel::lint {

// Length of the tag, opened or closed, that the text begins with; 0 when it begins with none.
std::size_t tag_length(std::string_view text);

} // namespace zel::lint
