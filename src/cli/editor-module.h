#pragma once

// The editor as the program reaches it: a module that is loaded when it is needed, so that a
// command does not wait for the toolkit.

namespace zel {

// Takes the toolkit's own options out of the command line. They all begin with two dashes: without
// such a word nothing is loaded.
void take_toolkit_args(int *argc, char ***argv);

// Runs the editor, with the file unless it is null, until it ends. Where it cannot be loaded or has
// no display, a line on standard error says so.
void run_editor(const char *file);

} // namespace zel
