#pragma once

// What the program shows on a terminal.

namespace zel {

// What is written to standard output or standard error when the program was started without it.
enum class missing_output { vanishes, fails };

// Descriptors 0 to 2 that are closed are opened on nothing, so that no file of ours gets their
// numbers and with them what is meant for a reader.
void open_missing_streams(missing_output what);

// Where standard output or standard error is a terminal, control characters in what is printed
// (names and paths may hold any) are shown as "\x1b" from now on; line ends and tabs stay. In a
// pipe and in a file all bytes are as they are.
void escape_on_terminals();

} // namespace zel
