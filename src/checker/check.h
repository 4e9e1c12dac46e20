#pragma once

// The check command: brings a language source up to date with an application's sources. Every usage
// mark is forgotten, the files and directory trees are scanned for text requests
// (checker/c-scan.h), and the source is written back.

#include "source/model.h"

// Runs the command. The first word is the command's own name; then at most one option, the language
// source, and the files and directories to scan. A path that is a regular file is scanned whatever
// its name. Returns 0 after a run, 1 when there is no source and none can be made. "--help" or a
// missing word ends the process with the usage, and a file that cannot be opened ends it before
// anything is written; where lang_exit returns, the result is 1 then.
int check(int count, char **words);

// Scans a directory tree: C sources and headers, scripts and configuration files, by their names.
// Links are followed, but not to a directory that is being searched already. Returns 0; -1 when the
// run is to end.
int _check_rec(LangSource *root, const char *directory);

void check_usage();
