#pragma once

// What a compiled file says about itself before its texts.

#include <string_view>

namespace zel {

// The name in the file's LANGUAGE statement as a new string, released with free: null when there is
// none before the first group, the file cannot be read, or there is no memory. Data is what the
// file holds where it lies in memory, and else has no address.
[[nodiscard]] char *read_language_name(const char *path, std::string_view data);

} // namespace zel
