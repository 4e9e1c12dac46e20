#pragma once

// Requests whose texts are written in pieces where only one piece is read: "Open " "file" in a form
// without a description. The application asks for the whole, the check knows the first piece.

#include <cstdint>
#include <functional>
#include <string>

namespace zel {

enum class piece { group, item, description };

struct adjacent_request {
    const char *path;
    std::uint32_t line;   // of the second piece,
    std::uint32_t column; // characters before it on the line
    piece of;             // what is in pieces; but for an item the request is not read at all
    std::string group;    // as far as it was read
    std::string read;     // the first piece
    std::string whole;    // all of them; a name without a value stands for itself
};
using adjacent_listener = std::function<void(const adjacent_request &)>;

// Looks through a file as the check does (checker/c-scan.h) and tells every such request, also
// those inside string literals. Prints nothing. False when the file cannot be opened.
bool find_adjacent(const char *path, const adjacent_listener &to);

} // namespace zel
