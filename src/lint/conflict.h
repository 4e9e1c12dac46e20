#pragma once

// What a merge of version control leaves in a file when both sides changed the same lines.

#include <string_view>
#include <vector>

#include "source/read-message.h"

namespace zel::lint {

struct conflict_marker {
    place at;
    std::string_view line; // without its end
};

// The lines of the text that are conflict markers.
std::vector<conflict_marker> find_conflict_markers(std::string_view text);

} // namespace zel::lint
