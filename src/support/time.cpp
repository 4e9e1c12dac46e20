#include "support/time.h"

#include "support/log-print.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

namespace {

constexpr std::array<std::string_view, 7> day_names = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};

constexpr std::array<std::string_view, 12> month_names = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "Oktober", "November", "December"};

// The name at the index; the last one beyond the table.
template <std::size_t Count>
std::string name_of(const std::array<std::string_view, Count> &names, int index)
{
    const bool inside = index >= 0 && static_cast<std::size_t>(index) < Count;
    return std::string(inside ? names[static_cast<std::size_t>(index)] : names.back());
}

std::string two_digits(int number)
{
    const std::string digits = std::to_string(number);
    return digits.size() < 2 ? "0" + digits : digits;
}

std::string convert(char letter, const tm &parts)
{
    switch (letter) {
    case 'Y':
        return std::to_string(parts.tm_year + 1900L);
    case 'm':
        return two_digits(parts.tm_mon + 1);
    case 'd':
        return two_digits(parts.tm_mday);
    case 'H':
        return two_digits(parts.tm_hour);
    case 'I':
        return two_digits(parts.tm_hour > 12 ? parts.tm_hour - 12 : parts.tm_hour);
    case 'M':
        return two_digits(parts.tm_min);
    case 'S':
        return two_digits(parts.tm_sec);
    case 's':
        return std::to_string(parts.tm_sec);
    case 'A':
        return name_of(day_names, parts.tm_wday);
    case 'B':
        return name_of(month_names, parts.tm_mon);
    case 'u':
        return std::to_string(parts.tm_wday == 0 ? 7 : parts.tm_wday);
    default:
        return {};
    }
}

double milliseconds(const timeval &time)
{
    return static_cast<double>(time.tv_sec) * 1000.0 + static_cast<double>(time.tv_usec) / 1000.0;
}

double read_watch(zel_time_t &watch)
{
    gettimeofday(&watch.now_tv, nullptr);
    return milliseconds(watch.now_tv);
}

} // namespace

zel_time_t *zel_time_start()
{
    auto *watch = static_cast<zel_time_t *>(std::calloc(1, sizeof(zel_time_t)));
    zel_time_reset(watch);
    return watch;
}

void zel_time_free(zel_time_t *watch) { std::free(watch); }

void zel_time_reset(zel_time_t *watch)
{
    if (watch == nullptr)
        return;
    gettimeofday(&watch->start_tv, nullptr);
    watch->start_ms = milliseconds(watch->start_tv);
    watch->lap_ms = watch->start_ms;
}

double zel_time_get_runtime_sec(zel_time_t *watch)
{
    return zel_time_get_runtime_msec(watch) / 1000.0;
}

double zel_time_get_runtime_msec(zel_time_t *watch)
{
    if (watch == nullptr)
        return 0.0;
    watch->last_ms = read_watch(*watch);
    return watch->last_ms - watch->start_ms;
}

double zel_time_get_runtime_lap_sec(zel_time_t *watch)
{
    if (watch == nullptr)
        return 0.0;
    const double previous = watch->lap_ms;
    watch->lap_ms = read_watch(*watch);
    return (watch->lap_ms - previous) / 1000.0;
}

int snprintf_date(char *buffer, int size, const char *format, std::int64_t time)
{
    if (format == nullptr) {
        LogPrint(1, "snprintf_date: NULL ptr %p\n", static_cast<const void *>(format));
        return -1;
    }
    tm parts{};
    const std::time_t seconds = time;
    localtime_r(&seconds, &parts);

    // Without a buffer nothing is cut: the caller asks how long the parts are.
    const std::size_t limit = static_cast<std::size_t>(size < 1 ? 1024 : size) - 1;
    std::string text;
    std::size_t converted = 0;
    for (; *format != '\0' && (buffer == nullptr || text.size() < limit); ++format) {
        if (*format != '%') {
            text.push_back(*format);
            continue;
        }
        if (*++format == '\0')
            break;
        std::string part = convert(*format, parts);
        if (buffer != nullptr)
            part.resize(std::min(part.size(), limit - text.size()));
        converted += part.size();
        text += part;
    }
    if (buffer != nullptr)
        std::memcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<int>(converted);
}

int sprintf_date(char *buffer, const char *format, std::int64_t time)
{
    return snprintf_date(buffer, 0, format, time);
}
