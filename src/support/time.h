#pragma once

// A date formatter with English names of its own.

#include <cstdint>
#include <string>

// Writes the local time, in the zone that TZ names at the moment, into the buffer. Conversions: %Y
// %m %d %H %I %M %S %s %A %B %u; any other letter gives nothing, and so does every one for a time
// whose year no calendar counts. A size below 1 means 1024; a null buffer only counts. Returns the
// length of the converted parts (literal characters are not counted), -1 for a null format.
int snprintf_date(char *buffer, int size, const char *format, std::int64_t time);
int sprintf_date(char *buffer, const char *format, std::int64_t time); // the size is 1024

namespace zel {

// The same as a string, of 1023 characters at most.
std::string date_text(const char *format, std::int64_t time);

} // namespace zel
