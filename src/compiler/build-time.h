#pragma once

// The time that compiled files bear.

#include <cstdint>

namespace zel {

// Seconds since the epoch: what SOURCE_DATE_EPOCH says when it is set and not empty, so that the
// same source gives the same bytes, else the current time. A value that is no decimal number of 32
// bits is told on standard error, and the current time is taken.
std::int64_t build_time();

} // namespace zel
