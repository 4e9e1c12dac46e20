#pragma once

// The line that ends every written source: /* EOF path-it-was-written-to */.

#include <string>

namespace zel {

// Whether the open file begins like one that the program wrote and lacks that line: it may have
// lost its end.
bool lacks_last_line(int file);

// The path in the last line of a file, as it was written; empty when there is none.
std::string name_in_last_line(const char *path);

// Appends the line that ends a source written to that path.
void append_last_line(std::string &out, const char *path);

} // namespace zel
