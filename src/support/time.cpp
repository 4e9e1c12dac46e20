#include "support/time.h"

#include "support/local-time.h"
#include "support/log-print.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

// strftime would name days and months in the user's language.
constexpr std::array<std::string_view, 7> day_names = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};

// "Oktober" is deliberate: scripts compare dates as texts.
constexpr std::array<std::string_view, 12> month_names = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "Oktober", "November", "December"};

// Returns the name at the index, or the last one for an index outside the table.
template <std::size_t Count>
std::string_view name_of(const std::array<std::string_view, Count> &names, int index)
{
    const bool inside = index >= 0 && static_cast<std::size_t>(index) < Count;
    return inside ? names[static_cast<std::size_t>(index)] : names.back();
}

// Makes the text of one conversion; a number's text is valid until the next conversion.
class conversion {
public:
    std::string_view operator()(char letter, const tm &parts)
    {
        switch (letter) {
        case 'Y':
            return number(parts.tm_year + 1900L, 1);
        case 'm':
            return number(parts.tm_mon + 1, 2);
        case 'd':
            return number(parts.tm_mday, 2);
        case 'H':
            return number(parts.tm_hour, 2);
        case 'I':
            // Midnight is 00, unlike in strftime.
            return number(parts.tm_hour > 12 ? parts.tm_hour - 12 : parts.tm_hour, 2);
        case 'M':
            return number(parts.tm_min, 2);
        case 'S':
            return number(parts.tm_sec, 2);
        case 's':
            return number(parts.tm_sec, 1);
        case 'A':
            return name_of(day_names, parts.tm_wday);
        case 'B':
            return name_of(month_names, parts.tm_mon);
        case 'u':
            return number(parts.tm_wday == 0 ? 7 : parts.tm_wday, 1);
        default:
            return {};
        }
    }

private:
    std::string_view number(long value, int digits)
    {
        const int length = std::snprintf(text_, sizeof text_, "%0*ld", digits, value);
        return {text_, static_cast<std::size_t>(length)};
    }

    char text_[24];
};

// Text that fills a buffer up to a limit. Without a buffer it is only counted, to its end.
struct limited_text {
    char *buffer;
    std::size_t limit;
    std::size_t length = 0;

    bool full() const { return buffer != nullptr && length >= limit; }

    // Returns how many bytes had room.
    std::size_t add(std::string_view part)
    {
        if (buffer != nullptr) {
            part = part.substr(0, limit - length);
            part.copy(buffer + length, part.size());
        }
        length += part.size();
        return part.size();
    }
};

} // namespace

int snprintf_date(char *buffer, int size, const char *format, std::int64_t time)
{
    if (format == nullptr) {
        LogPrint(1, "snprintf_date: NULL ptr %p\n", static_cast<const void *>(format));
        return -1;
    }
    tm parts{};
    const bool known = zel::local_time(time, parts);
    limited_text text{buffer, static_cast<std::size_t>(size < 1 ? 1024 : size) - 1};
    conversion convert;
    std::size_t converted = 0;
    for (; *format != '\0' && !text.full(); ++format) {
        if (*format != '%') {
            text.add({format, 1});
            continue;
        }
        if (*++format == '\0')
            break;
        // Only what is converted counts for the result; the text between is the caller's own.
        if (known)
            converted += text.add(convert(*format, parts));
    }
    if (buffer != nullptr)
        buffer[text.length] = '\0';
    return static_cast<int>(converted);
}

int sprintf_date(char *buffer, const char *format, std::int64_t time)
{
    return snprintf_date(buffer, 0, format, time);
}

namespace zel {

std::string date_text(const char *format, std::int64_t time)
{
    std::array<char, 1024> text{};
    sprintf_date(text.data(), format, time);
    return text.data();
}

} // namespace zel
