#pragma once

// The calendar of the user's time zone.

#include <ctime>

namespace zel {

// Breaks a time down as local time, in the zone that TZ names now. False for a time whose year no
// calendar counts; the parts are then of no use.
inline bool local_time(std::time_t seconds, std::tm &parts)
{
    tzset(); // which localtime_r does only once
    return localtime_r(&seconds, &parts) != nullptr;
}

} // namespace zel
