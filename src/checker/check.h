#pragma once

// The check command: brings a language source up to date with an application's sources. Every usage
// mark is forgotten, the files and directory trees are scanned for text requests
// (checker/c-scan.h), and the source is written back.

#include <cstdint>

#include "source/model.h"

namespace zel {

enum class check_result {
    done,
    failed, // the source is there and cannot be read, there is no memory, or other programs change
            // it all the time; it stays as it was
    ended   // the usage was shown, the source is malformed inside a group, or a file cannot be
            // opened: the command ends the process, and the source stays as it was
};

// Runs the command. The first word is the command's own name; then at most one option, the language
// source, and the files and directories to scan. A path that is a regular file is scanned whatever
// its name. Where there is no source, or a malformed one, a new one is begun; in the second case
// standard error names the backup. If another program changes the source meanwhile, standard error
// says so, and the run begins again. Items without a creation time, and those that are inserted,
// get the given time as theirs.
check_result run_check(int count, char **words, std::int64_t now);

// Dates the source as a run does and forgets where its items are used: what a scan begins with.
void forget_uses(LangSource *source);

} // namespace zel

// run_check at lang_global's start time: 0 when done, 1 when failed; otherwise it ends the process.
int check(int count, char **words);

// Scans a directory tree: C sources and headers, scripts and configuration files, by their names.
// Links are followed, but not to a directory that is being searched already. Ends the process when
// a file cannot be opened. Returns 0.
int _check_rec(LangSource *root, const char *directory);

void check_usage();
