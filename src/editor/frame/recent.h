#pragma once

// The sources that were opened last, as the desktop remembers them.

#include <string>
#include <vector>

namespace zel {

void remember_source(const char *path);

// The files that still exist, the last one first, ten at most.
std::vector<std::string> recent_sources();

} // namespace zel
