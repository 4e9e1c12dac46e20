#pragma once

// Pieces of XML files. Bytes that XML cannot hold are carried (exchange/carry.h).

#include <string>
#include <string_view>

namespace zel::exchange {

void append_xml(std::string &out, std::string_view text, bool in_attribute = false);

// Appends ' NAME="VALUE"'.
void append_attribute(std::string &out, std::string_view name, std::string_view value);

// Appends "START>TEXT</NAME>" and a line end; the start is a tag without its end.
void append_element(std::string &out, std::string_view start, std::string_view name,
                    std::string_view text);

} // namespace zel::exchange
