#pragma once

// A merge of three files, as the merge word and the set-up for git run it.

#include <string>

#include "merge/merge3.h"

namespace zel::kit {

struct merge_job {
    std::string base, ours, theirs;
    std::string output; // where the result goes; empty: it replaces ours
    std::string driver; // the path that the three files stand for, when they are copies of that one
    bool are_own = false; // the copies are this program's: messages name that path
    side prefer = side::neither;
    bool dry_run = false;
};

// Merges, writes, and prints the conflicts on standard error. Returns the exit status: found when
// there are conflicts, for which ours stay.
int merge_files(const merge_job &job);

} // namespace zel::kit
