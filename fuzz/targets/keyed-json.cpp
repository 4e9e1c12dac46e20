// JSON with a text for each key: a project comes over from it.

#include "exchange.h"
#include "support.h"

extern "C" int FUZZ_TARGET(keyed_json)(const std::uint8_t *data, std::size_t size)
{
    fuzz::read_keys("json", fuzz::bytes_of(data, size));
    return 0;
}
