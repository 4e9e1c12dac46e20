#pragma once

// The program log, as in support/log.h: what only other applications of the family call, among it
// small logs of a single file each.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "support/guard.h"
#include "support/log.h"

// Kinds of speed records.
enum {
    SPEED_ENTRY = 0,
    SPEED_EXIT = 1,
    SPEED_CYCLE_START = 2,
    SPEED_CYCLE_END = 3,
    SPEED_URL = 4,
    SPEED_ERROR = 5
};

// One line: the kind's word ("NONE" for others), 0 and the quoted text (a blank for null).
void LogSpeed(int kind, const char *text);

// Raw bytes to every open output: no stamp, no lock. Returns 1.
int LogWrite(const void *data, std::size_t size, std::size_t count);

// Hex dump, 16 bytes per log line. Returns 0.
int LogPrintData(int level, const unsigned char *data, int length);

// 1 when the file looks like a log that did not end cleanly; 0 when it did, when it is missing, too
// short for one or cannot be read (the debug print says which).
int LogCheckCrash(const char *file);

// A word of flags that the log keeps for its callers. Set and clear return the new value.
std::uint32_t LogSetFlags(int bits);
std::uint32_t LogClrFlags(int bits);
std::uint32_t LogGetFlags();

// The path given to LogOpen; null while there is none.
const char *LogGetFile();

// What a log of its own writes besides the text.
enum {
    ZEL_LOG_TIME = 1,   // time and a blank before each message
    ZEL_LOG_THREAD = 2, // thread stamp before each message and text
    ZEL_LOG_HEADER = 4  // the head at open
};

struct zel_log_t {
    std::uint32_t flags;
    char *path;        // owned
    std::FILE *stream; // owned
};

// Moves a file of that name to its name with ".old" appended and starts a new one, as LogOpen does.
// Null for a null path or when the file cannot be created. Nothing of this takes a lock.
[[nodiscard]] zel_log_t *zel_log_open(const char *path, const char *version, unsigned flags);

// A message, flushed; a text as it is (never with the time), flushed. Null logs are ignored.
void zel_log_print(zel_log_t *log, const char *format, ...) __attribute__((format(printf, 2, 3)));
void zel_log_puts(zel_log_t *log, const char *text);

// Closes and releases; writes no end lines.
void zel_log_close(zel_log_t *log);
using zel_log_guard = std::unique_ptr<zel_log_t, zel::release<zel_log_close>>;

// The log's path; null for a null log.
const char *zel_log_get_file(const zel_log_t *log);
