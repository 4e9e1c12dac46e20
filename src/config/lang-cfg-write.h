#pragma once

// Writing the entries of a store into a settings file.

#include <cstdio>

#include "config/lang-cfg.h"

namespace zel {

// All sections with their keys, in order.
void cfg_write_sections(std::FILE *stream, zel_list *sections);

} // namespace zel
