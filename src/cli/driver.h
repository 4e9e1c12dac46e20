#pragma once

// The command line: lang [options] [commands].

// Runs the words of the command line; see usage. Returns 0 in every case but a result of the
// compile command, which main does not look at.
int lang_edit(int argc, char **argv);

// The compile command; the first word of the vector is the first one after the command word.
// Returns 0, or -1 on failure.
int compile_lang_file(int argc, char **argv);

// Print the usage texts on standard output.
void usage();
void compile_usage();
