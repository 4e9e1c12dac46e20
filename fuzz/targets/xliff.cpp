// A file of translators' tools, of both versions: its texts are taken into a source.

#include "exchange.h"
#include "support.h"

extern "C" int FUZZ_TARGET(xliff)(const std::uint8_t *data, std::size_t size)
{
    fuzz::read_and_import("xliff", fuzz::bytes_of(data, size));
    return 0;
}
