// A TS file: its texts are taken into a source, and it becomes a new one.

#include "exchange.h"
#include "support.h"

#include "exchange/new-source.h"
#include "source/lang-read.h"

extern "C" int FUZZ_TARGET(ts)(const std::uint8_t *data, std::size_t size)
{
    const std::string_view bytes = fuzz::bytes_of(data, size);
    fuzz::read_and_import("ts", bytes);
    zel::exchange::new_request request;
    request.guesses = true;
    zel::exchange::new_source made(request);
    if (!made.take_ts("app_de.ts", bytes)) {
        fuzz::written(made.source());
        fuzz::require(zel::read_source("written", {1}).source != nullptr, "what was made reads");
    }
    return 0;
}
