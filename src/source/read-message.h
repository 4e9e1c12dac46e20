#pragma once

// The messages of the language source reader, and how they reach whoever reads.

#include <cstdint>
#include <functional>
#include <span>

namespace zel {

// Where something stands in a file: line from 1, column as the scanner counts it (characters before
// it on the line). Line 0: nowhere in particular.
struct place {
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

// What follows a construct that was read, or a message.
enum class outcome {
    go_on,
    give_up, // the source cannot be read
    stop,    // the same; a command ends the process
    recover  // the item ends at the next token, which must be its brace
};

// One row per message. Texts are formats that take the number, then line, column and kind of the
// token as far as they name them.
struct read_message_row {
    int number;
    const char *text;    // as it is printed; empty: nothing is
    const char *follow;  // printed behind it, or null
    const char *meaning; // the same in words for people, without a place
    outcome after;
    int log_line; // named in the log once everything is released, 0 none
};

// All rows, and the one with that number (which must exist).
std::span<const read_message_row> read_messages();
const read_message_row &read_message_of(int number);

// One message, as a listener hears it while the file is read.
struct read_message {
    const read_message_row *row;
    place at;
    int kind;         // of the token, see lex/lex-token.h; for read_not_opened errno, or 0
    const char *path; // of the file
};
using read_listener = std::function<void(const read_message &)>;

// Whether something of the file is not in the source that is read from it, and would be lost if
// that were written over it.
bool is_loss(const read_message_row &row);

// Prints the message on standard output. Three things go to standard error: that a file may have
// been cut, that it holds a NUL byte, and why it cannot be read.
void print_read_message(const read_message &message);

// Why the file that the message is about cannot be read, in the system's words; null for any other
// message.
const char *read_failure(const read_message &message);

// The message numbers that code outside the table names: most are about the file itself.
enum {
    read_not_opened = 146,
    read_no_path = 155,
    read_no_default_lang = 261, // nothing is printed
    read_maybe_cut = 1,         // the file lacks the line that ends every written one
    read_nul_byte = 2           // a string holds a NUL byte, which ends it
};

} // namespace zel
