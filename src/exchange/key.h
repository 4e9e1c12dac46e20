#pragma once

// An item's key: group and item in one line of text, "menu:_Open". It stands for one item only,
// whatever the names hold: in both a backslash is "\\", a line end "\n", a tab "\t", a carriage
// return "\r", any other control character and any byte that is no UTF-8 "\x1b"; a colon of the
// group is "\:". A name that is null is an empty one.

#include <string>
#include <string_view>

namespace zel::exchange {

// A name on one line, with those escapes but that of the colon.
void append_name(std::string &out, std::string_view name);

void append_key(std::string &out, std::string_view group, std::string_view item);

// Takes a key apart: false where it has no colon or an escape that no key has.
bool split_key(std::string_view key, std::string &group, std::string &item);

// The name that append_name wrote; false for an escape that it does not write.
bool read_name(std::string_view text, std::string &name);

} // namespace zel::exchange
