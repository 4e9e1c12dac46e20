#pragma once

// Forms that several words print.

#include <string>
#include <string_view>

#include "source/model.h"

namespace zel::kit {

// Appends a JSON string with its quotes; bytes that are no UTF-8 become U+FFFD each. A null text
// becomes null.
void append_json(std::string &out, std::string_view text);
void append_json(std::string &out, const char *text);

// Appends a text with its line ends and tabs as escapes, so that it stays one line.
void append_line(std::string &out, std::string_view text);

// A count and what is counted, in the right number: "1 item", "2 items".
std::string counted(std::size_t count, const std::string &one);

// A number with a comma between its thousands.
std::string with_commas(std::size_t number);

// How many columns a text takes on a terminal.
std::size_t columns_of(std::string_view text);

// A text on one line, in double quotes, with the escapes of sources.
std::string quoted(std::string_view text);

// "group/item", as the companion's words name an item.
std::string shown_key(const edit_t *group, const item_t *item);

// The first place where an item is used, "00140:src/note.c" as "src/note.c:140"; empty without one.
std::string place_of(const item_t *item);

// What stands in a message for a text: on one line, in double quotes, with the escapes of sources,
// cut in the middle where it is very long.
std::string shown(std::string_view text);

} // namespace zel::kit
