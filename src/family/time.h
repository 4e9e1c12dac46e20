#pragma once

// A stopwatch in milliseconds, which only other applications of the family use.

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

// Starts the watch and its lap again.
void zel_time_reset(zel_time_t *watch);

// Seconds or milliseconds since the reset; seconds since the previous lap reading. 0.0 for null.
double zel_time_get_runtime_sec(zel_time_t *watch);
double zel_time_get_runtime_msec(zel_time_t *watch);
double zel_time_get_runtime_lap_sec(zel_time_t *watch);
