#pragma once

// Merging two language sources that come from one: by group, item, language and field. What only
// one side changed is taken; what both changed alike is taken; stamps take the later one, and what
// a check finds (the mark of use and the places) is united. An item that one side has new stands
// behind its neighbour there. Groups, items and texts that one side moved are moved.
//
// Changed on both sides differently, or changed on one and removed on the other, is a conflict: it
// stays as it is in ours, and its item loses the ready mark. Places, stamps, the kind of request
// and the loss of the mark of use never make one, nor does the ready mark.

#include <optional>
#include <string>
#include <vector>

#include "merge/compare.h"
#include "source/model.h"

namespace zel {

// Which side a conflict goes to without being one.
enum class side { neither, ours, theirs };

// Where both sides disagree, named down to where it is.
struct conflict {
    std::optional<std::string> group;
    std::optional<std::string> item;
    std::optional<std::string> language;
    std::string field;  // as in a difference
    field_value ours;   // none: removed there
    field_value theirs; // none: removed there
};

// Makes ours the merged source. The base stays as it is; theirs loses what ours takes and is good
// for nothing but its release. Returns the conflicts, in the order of the result.
std::vector<conflict> merge_sources(LangSource *base, LangSource *ours, LangSource *theirs,
                                    side prefer);

} // namespace zel
