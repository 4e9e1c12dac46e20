// Sections of keys and their texts: a project comes over from it.

#include "exchange.h"
#include "support.h"

extern "C" int FUZZ_TARGET(ini)(const std::uint8_t *data, std::size_t size)
{
    fuzz::read_keys("ini", fuzz::bytes_of(data, size));
    return 0;
}
