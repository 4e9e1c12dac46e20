#pragma once

// How the command line starts the editor; no name of the toolkit stands here. The program finds
// these by name in the editor's module.

extern "C" {

// Takes the toolkit's own options out of the command line. Needs no display.
void edit_take_toolkit_args(int *argc, char ***argv);

// Runs the editor, with the file unless it is null, until it ends: 0. The display is opened only
// now; without one it prints a line on standard error and returns 1.
int edit_start(const char *file);
}
