#pragma once

// A stopwatch in milliseconds, for applications of the family and not called here, and a date
// formatter with English names of its own.

#include <cstdint>
#include <memory>
#include <sys/time.h>

#include "support/guard.h"

struct zel_time_t {
    timeval start_tv; // time of the last reset
    timeval now_tv;   // time of the last reading
    double start_ms;  // the reset, the last lap reading and the last reading in milliseconds
    double lap_ms;
    double last_ms;
};

// A new stopwatch, reset; null without memory. Released with zel_time_free.
[[nodiscard]] zel_time_t *zel_time_start();
void zel_time_free(zel_time_t *watch);
using zel_time_guard = std::unique_ptr<zel_time_t, zel::release<zel_time_free>>;

// Starts the watch, and its lap, anew.
void zel_time_reset(zel_time_t *watch);

// Seconds or milliseconds since the reset; seconds since the previous lap reading. 0.0 for null.
double zel_time_get_runtime_sec(zel_time_t *watch);
double zel_time_get_runtime_msec(zel_time_t *watch);
double zel_time_get_runtime_lap_sec(zel_time_t *watch);

// Writes the local time, in the zone that TZ names at the moment, into the buffer. Conversions: %Y
// %m %d %H %I %M %S %s %A %B %u; any other letter gives nothing, and so does every one for a time
// whose year no calendar counts. A size below 1 means 1024; a null buffer only counts. Returns the
// length of the converted parts (literal characters are not counted), -1 for a null format.
int snprintf_date(char *buffer, int size, const char *format, std::int64_t time);
int sprintf_date(char *buffer, const char *format, std::int64_t time); // the size is 1024
