#include "family/time.h"
#include "support/time.h"

#include "log-fixture.h"

#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>

namespace {

// Seconds since the epoch of a local date.
std::int64_t at(int year, int month, int day, int hour, int minute, int second)
{
    tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    parts.tm_sec = second;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

std::string formatted(const char *format, std::int64_t time)
{
    char buffer[1024];
    sprintf_date(buffer, format, time);
    return buffer;
}

using time_log = zel_test::with_log;

} // namespace

TEST(date, every_conversion)
{
    const std::int64_t may = at(2024, 5, 1, 13, 45, 9);
    EXPECT_EQ("2024-05-01-13-45-09", formatted("%Y-%m-%d-%H-%M-%S", may));
    EXPECT_EQ("Wednesday May 01 9 3", formatted("%A %B %I %s %u", may));
    EXPECT_EQ("Sunday Oktober 00 7", formatted("%A %B %I %u", at(2024, 10, 6, 0, 30, 0)));
    EXPECT_EQ("12", formatted("%I", at(2024, 10, 6, 12, 0, 0)));
    EXPECT_EQ("a||b", formatted("a|%%%x|b%", may));
}

TEST(date, knows_times_beyond_32_bits)
{
    for (const std::int64_t time :
         {at(2038, 1, 19, 12, 0, 0), at(2106, 2, 7, 12, 0, 0), at(2500, 7, 1, 12, 0, 0)})
        EXPECT_EQ(time, at(std::stoi(formatted("%Y", time)), std::stoi(formatted("%m", time)),
                           std::stoi(formatted("%d", time)), 12, 0, 0));
    EXPECT_EQ("2106-02-07", formatted("%Y-%m-%d", at(2106, 2, 7, 12, 0, 0)));
}

TEST(date, a_time_without_a_calendar_has_no_date)
{
    EXPECT_EQ("on -, ", formatted("on %Y-%m, %A%B", INT64_MAX));
    EXPECT_EQ(0, snprintf_date(nullptr, 0, "%Y", INT64_MIN));
}

TEST(date, follows_the_time_zone)
{
    const char *zone = std::getenv("TZ");
    const std::string before = zone == nullptr ? "" : zone;
    setenv("TZ", "XXX-3", 1); // three hours east
    EXPECT_EQ("03", formatted("%H", 0));
    setenv("TZ", "XXX5", 1);
    EXPECT_EQ("19", formatted("%H", 0));
    if (zone == nullptr)
        unsetenv("TZ");
    else
        setenv("TZ", before.c_str(), 1);
    tzset();
}

TEST(date, stays_within_the_size)
{
    const std::int64_t may = at(2024, 5, 1, 13, 45, 9);
    char buffer[8] = "#######";
    EXPECT_EQ(3, snprintf_date(buffer, 6, "ab%Y", may));
    EXPECT_STREQ("ab202", buffer);
    EXPECT_EQ('#', buffer[6]);
    snprintf_date(buffer, 1, "x", may);
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(6, snprintf_date(nullptr, 2, "%Y-%m", may));
}

TEST_F(time_log, date_needs_a_format)
{
    EXPECT_EQ(-1, snprintf_date(nullptr, 0, nullptr, 0));
    EXPECT_EQ("* snprintf_date: NULL ptr (nil)\n", logged());
}

TEST(stopwatch, laps_and_runtime)
{
    const zel_time_guard watch(zel_time_start());
    watch->start_ms -= 5000.0; // started five seconds ago
    watch->lap_ms -= 2000.0;
    EXPECT_NEAR(2.0, zel_time_get_runtime_lap_sec(watch.get()), 0.9);
    EXPECT_LT(zel_time_get_runtime_lap_sec(watch.get()), 0.9);
    EXPECT_NEAR(5.0, zel_time_get_runtime_sec(watch.get()), 0.9);
    EXPECT_GE(zel_time_get_runtime_msec(watch.get()), 5000.0);
    EXPECT_NEAR(5000.0, watch->last_ms - watch->start_ms, 900.0);
    zel_time_reset(watch.get());
    EXPECT_LT(zel_time_get_runtime_sec(watch.get()), 0.9);
    EXPECT_EQ(0.0, zel_time_get_runtime_sec(nullptr));
    EXPECT_EQ(0.0, zel_time_get_runtime_lap_sec(nullptr));
}
