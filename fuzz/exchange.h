#pragma once

// A file of another format: its texts are taken into a source, which can be written afterwards.

#include <string_view>

namespace fuzz {

void read_and_import(const char *format, std::string_view bytes);

// A file with a text for each key becomes a source, as the default language's file and another's.
void read_keys(const char *format, std::string_view bytes);

} // namespace fuzz
