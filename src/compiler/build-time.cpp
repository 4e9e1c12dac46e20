#include "compiler/build-time.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace zel {

std::int64_t build_time()
{
    const char *value = std::getenv("SOURCE_DATE_EPOCH");
    if (value == nullptr || *value == '\0')
        return std::time(nullptr);
    std::uint32_t seconds = 0;
    const char *end = value + std::strlen(value);
    const auto [behind, error] = std::from_chars(value, end, seconds);
    if (error == std::errc() && behind == end)
        return seconds;
    std::fputs("lang: SOURCE_DATE_EPOCH is no number of seconds that fits, the current time is "
               "written instead\n",
               stderr);
    return std::time(nullptr);
}

} // namespace zel
