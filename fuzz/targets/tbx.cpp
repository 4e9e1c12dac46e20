// A glossary: its terms are taken into a source, and become a new one.

#include "exchange/tbx.h"
#include "exchange.h"
#include "source/lang-read.h"
#include "support.h"

extern "C" int FUZZ_TARGET(tbx)(const std::uint8_t *data, std::size_t size)
{
    const std::string_view bytes = fuzz::bytes_of(data, size);
    fuzz::read_and_import("tbx", bytes);
    zel::exchange::new_source made(zel::exchange::new_request{});
    if (zel::exchange::take_tbx(made, "x.tbx", bytes))
        return 0;
    fuzz::written(made.source());
    fuzz::require(zel::read_source("written", {1}).source != nullptr, "what was made reads");
    return 0;
}
