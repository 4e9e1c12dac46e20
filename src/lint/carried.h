#pragma once

// Remarks that tell which texts an item got from the one that it was before it changed. The line
//
//   carried from "Open a file" [1f3a99c0]
//
// stands in a comment of the text's language. What is in brackets is made from the text, so that
// the line means nothing any more once somebody has changed the text.

#include <string>
#include <string_view>

namespace zel::lint {

// The line, without an end, for a text that comes from the item whose name, quoted, is given.
std::string carried_mark(std::string_view quoted_name, std::string_view text);

// The quoted name in the comment's mark for just this text; empty when there is none.
std::string_view find_carried(std::string_view comment, std::string_view text);

// The comment without any marks.
std::string without_carried(std::string_view comment);

} // namespace zel::lint
