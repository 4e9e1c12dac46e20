#pragma once

// What a scan tells of the requests that it reads, and of those that it cannot read or not as the
// application asks for them. A request inside a string literal stands where the outermost literal
// does. What is pointed to is there for the length of the call.

#include <cstdint>
#include <functional>
#include <string>

#include "source/model.h"
#include "source/read-message.h"

namespace zel {

// The part of a request.
enum class piece { group, item, description, symbol, application };

struct found_request {
    const char *path;
    place at;          // of the item
    const char *group; // its name
    const item_t *item;
    bool inserted; // the source did not know it
};

enum class unread_cause {
    no_literal, // nothing is read
    goes_on,    // only what is read of the part: more follows, or it is too long
    two_values  // a name that is defined again, or with more than one string
};

// A request, or a part of it, that is not read; the first of its faults.
struct unread_request {
    const char *path;
    place at; // of the request
    piece of;
    unread_cause cause;
};

// A text is written in pieces where only one piece is read: "Open " "file" in a form without a
// description. The application asks for the whole, the scan knows the first piece.
struct adjacent_request {
    const char *path;
    place at; // of the second piece
    piece of; // what is in pieces; but for an item the request is not read at all
    std::string group;
    std::string read;  // the first piece
    std::string whole; // all of them; a name without a value stands for itself
};

struct scan_listener {
    std::function<void(const found_request &)> found;
    std::function<void(const unread_request &)> unread;
    std::function<void(const adjacent_request &)> in_pieces;
};

} // namespace zel
