#pragma once

// The command line: lang [options] [commands].

// Runs the words of the command line; see usage. Always returns 0: what a command reports is on its
// streams, and one that has to end with another status ends the process itself.
int lang_edit(int argc, char **argv);

// The compile command; the first word of the vector is the first one after the command word.
// Returns 0, or -1 on failure; a help word before the last one ends the process with status 0.
int compile_lang_file(int argc, char **argv);

// Print the usage texts on standard output.
void usage();
void compile_usage();
