#pragma once

// The placeholders of formats other than printf's, as far as a catalog's check looks at them.

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zel::exchange {

// The format that a message's flags name: "python" for "python-format", "" for none or for C's.
std::string_view other_format_of(const std::vector<std::string> &flags);

// What a text of that format asks for, a word each: its name or place, and its type where that
// shows. "%s of %(n)d" has "1s" and "n:d", "{} of {n}" has "1" and "n:", "%L1 of %n" has "1" and
// "n". Empty for no format.
std::set<std::string> other_arguments(std::string_view format, std::string_view text);

} // namespace zel::exchange
