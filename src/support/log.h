#pragma once

// The program log from its opening to its end. What writes messages is in support/log-print.h.
//
// Layout of a log file:
//   Start logging Version <version>  YYYY-MM-DD HH:MM:SS:uuuuuu
//   (an empty line, the system's description, an empty line)
//   HH:MM:SS:uuuuuu-<thread> message        a line; level 0 continues it without stamps
//   End logging YYYY-MM-DD HH:MM:SS:uuuuuu
//   ________EOF________                     19 characters, no line end: the run ended cleanly

#include <cstdio>
#include <string_view>

#include "support/log-print.h"

// How LogOpen opens; with both APPEND and NEW the old file is moved away and the new one appended
// to, with neither no file is written.
enum {
    LOG_OPEN_APPEND = 1,
    LOG_OPEN_NEW = 2,    // the file before, or a link, moves to its name with ".old" appended
    LOG_OPEN_STDOUT = 4, // copy everything to standard output
    LOG_OPEN_STDERR = 8  // copy everything to standard error
};

// Opens the program log and writes its head. A second open only logs that the log is open already.
// The log counts as open even when its file cannot be. A link, a pipe, a folder, or a path over
// somebody else's link is not opened. Returns 0.
extern "C" int LogOpen(const char *file, unsigned flags, const char *version);

// Writes the end lines, closes, and releases the path. Returns 0.
extern "C" int LogClose();

// The stream of the log's file; null while there is none.
std::FILE *LogGetFd();

namespace zel {

inline constexpr std::string_view log_end_marker = "________EOF________";
static_assert(log_end_marker.size() == 19, "the crash check looks at the last 19 bytes");

// Starts a new file and moves the one before, or a link of that name, to its name with ".old"
// appended; what had that name goes, also where there is no file before. A file that its folder
// does not give up is emptied. Null when there is no file to write.
std::FILE *open_new_log(const char *file);

void print_log_head(std::FILE *stream, const char *version);

// Calls the function with every output of the program log that is open.
template <class Function>
void each_log_output(Function &&function)
{
    if (logFd != nullptr)
        function(logFd);
    if (logStdout != 0)
        function(stdout);
    if (logStderr != 0)
        function(stderr);
}

} // namespace zel
