#pragma once

// Writing into the program log while it is open, and the debug print. Opening, closing and the
// rest of the log are in support/log.h; this file stands on nothing, so that everything may log.

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <pthread.h>

// The program log's state: one per process, filled by LogOpen and emptied by LogClose.
extern int log_init;             // 1 while the log is open; every write is a no-op while it is 0
extern pthread_mutex_t logMutex; // serialises messages; initialised at each open
extern pthread_mutexattr_t logMutexAttr;
extern std::FILE *logFd;        // the log file; null when there is none or it cannot be opened
extern int logStdout;           // 1: copy everything to standard output
extern int logStderr;           // 1: copy everything to standard error
extern std::uint32_t log_flags; // kept for callers (LogSetFlags); the log never reads it
extern char *logFile;           // path of the log file as given to LogOpen, owned

// Writes a message to every open output and flushes it. Level 0 continues the line; any other
// level starts one with the time and thread stamps (nothing is filtered). Returns 0.
int LogPrint(int level, const char *format, ...) __attribute__((format(printf, 2, 3)));
int vfLogPrint(int level, const char *format, std::va_list args)
    __attribute__((format(printf, 2, 0)));

// The debug print: standard output, flushed, and only while switched on (it starts off).
// Returns the printed count, 0 while off.
extern "C" int __dbg_printf_on__;
int dbg_printf(const char *format, ...) __attribute__((format(printf, 1, 2)));
void dbg_printf_on(int on);

// The stamps of the log: local time "HH:MM:SS:microseconds", local date "YYYY-MM-DD". Both return
// the printed count; a null stream prints nothing and gives 0.
int fprint_time(std::FILE *stream);
int fprint_date(std::FILE *stream);

namespace zel {

// One text in two places: on standard output as it is, and in the log (see LogPrint for the level).
void print_and_log(int level, const char *format, ...) __attribute__((format(printf, 2, 3)));

// Stamp of the calling thread, "-%08x ".
void fprint_thread(std::FILE *stream);

// Holds logMutex: tries to lock it and sleeps 1000 microseconds while that fails.
struct log_lock {
    log_lock();
    ~log_lock();
    log_lock(const log_lock &) = delete;
    log_lock &operator=(const log_lock &) = delete;
};

} // namespace zel
