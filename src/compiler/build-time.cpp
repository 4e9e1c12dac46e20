#include "compiler/build-time.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace zel {

std::int64_t build_time()
{
    // Reproducible builds set this variable, so that the same source gives the same bytes.
    const char *value = std::getenv("SOURCE_DATE_EPOCH");
    if (value == nullptr || *value == '\0')
        return std::time(nullptr);
    // The compiled file holds its time in 32 bits without a sign: a larger number does not fit.
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
