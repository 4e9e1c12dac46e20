// A source that reads: what is written of it reads, and is written the same again. (An item made at
// no time counts as made when it is read; here that is no time, too.)

#include "support.h"

#include "source/lang-read.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const char *path = fuzz::as_file("in", fuzz::bytes_of(data, size));
    const zel::read_answer first = zel::read_source(path, {});
    if (first.source == nullptr)
        return 0;
    const std::string once = fuzz::written(first.source.get());
    const zel::read_answer second = zel::read_source(fuzz::as_file("again", once), {});
    fuzz::require(second.source != nullptr, "what was written reads");
    fuzz::require(fuzz::written(second.source.get()) == once, "and is written the same");
    return 0;
}
