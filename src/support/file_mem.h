#pragma once

// Whole files in memory. Failures are logged.

#include <array>
#include <cstdint>

// Reads a file into a new buffer, two bytes larger than the file and ended with a NUL, owned by the
// caller (free). Returns the byte count, -1 on failure (data is then null).
std::int64_t zel_read_file_to_mem(const char *path, char **data);

namespace zel {

// How reading or writing a file ended; failed is a read or a write that went wrong.
enum file_outcome { GOOD, NO_STATUS, NOT_OPENED, NO_MEMORY, FAILED, OUTCOME_COUNT };

// Log lines per outcome, with the path; null where an operation says nothing.
using file_messages = std::array<const char *, OUTCOME_COUNT>;

// Logs a failure; the path may be null.
file_outcome logged(file_outcome result, const file_messages &messages, const char *path);

// Fills data (new) and count unless the outcome is a failure.
file_outcome read_whole(const char *path, char *&data, std::int64_t &count);

} // namespace zel
