#pragma once

// Lines of fields with a tab between them. In a field a tab, a line end, a carriage return and a
// backslash are "\t", "\n", "\r" and "\\".

#include <string>
#include <string_view>
#include <vector>

namespace zel {

void append_field(std::string &out, std::string_view text);

// The fields of a line, which is given without its end; what is no escape stays as it is.
std::vector<std::string> fields_of(std::string_view line);

} // namespace zel
