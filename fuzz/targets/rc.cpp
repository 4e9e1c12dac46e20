// A script of resources: a project comes over from its tables of strings.

#include "exchange.h"
#include "support.h"

extern "C" int FUZZ_TARGET(rc)(const std::uint8_t *data, std::size_t size)
{
    fuzz::read_keys("rc", fuzz::bytes_of(data, size));
    return 0;
}
