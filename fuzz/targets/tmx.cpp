// A translation memory: its texts are taken into a source.

#include "exchange.h"
#include "support.h"

extern "C" int FUZZ_TARGET(tmx)(const std::uint8_t *data, std::size_t size)
{
    fuzz::read_and_import("tmx", fuzz::bytes_of(data, size));
    return 0;
}
