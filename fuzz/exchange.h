#pragma once

// A file of another format: its texts are taken into a source, which can be written afterwards.

#include <string_view>

namespace fuzz {

void read_and_import(const char *format, std::string_view bytes);

} // namespace fuzz
