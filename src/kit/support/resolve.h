#pragma once

// Sources that a merge of git has left with several versions, because it ran without the merge
// driver of lang-kit: they are merged by item from the versions that git keeps.

#include <string>
#include <vector>

namespace zel::kit {

// Merges the named files, all sources in conflict without a name, writes each, and adds those
// without a conflict. Says what became of each and returns the exit status: found when something
// is left to do.
int resolve_conflicts(const std::vector<std::string> &names, bool dry_run);

} // namespace zel::kit
