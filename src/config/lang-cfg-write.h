#pragma once

// Writing the entries of a store into a settings file, and listing a store.

#include <cstdio>

#include "config/lang-cfg-store.h"

namespace zel {

// All sections with their keys, in order.
void cfg_write_sections(std::FILE *stream, zel_list *sections);

// Lists the store on standard output and in the log.
void cfg_print_store(lang_cfg_t *store);

} // namespace zel
