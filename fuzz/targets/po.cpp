// A catalog: its texts are taken in, a source is made from it, and its messages are written again.

#include "exchange.h"
#include "support.h"

#include "exchange/new-source.h"
#include "exchange/po-read.h"
#include "source/lang-read.h"

namespace {

using namespace zel::exchange;

void make_source(std::string_view bytes)
{
    new_source made(new_request{});
    if (made.take("de.po", bytes))
        return;
    fuzz::written(made.source());
    fuzz::require(zel::read_source("written", {1}).source != nullptr, "a source made of it reads");
}

// The messages as they are written; false where the catalog is broken.
bool write_again(std::string_view bytes, std::string &out)
{
    po_reader from(bytes);
    po_message message;
    while (from.next(message)) {
        append_po_message(out, message);
        out += '\n';
    }
    return !from.wrong();
}

// Whoever quotes the line of a header in a text of a catalog without one has it read as said there.
bool names_another_encoding(const std::string &text)
{
    const std::size_t at = text.find("charset=");
    return at != text.npos && text.compare(at, 13, "charset=UTF-8") != 0;
}

} // namespace

extern "C" int FUZZ_TARGET(po)(const std::uint8_t *data, std::size_t size)
{
    const std::string_view bytes = fuzz::bytes_of(data, size);
    fuzz::read_and_import("po", bytes);
    make_source(bytes);
    std::string once;
    std::string twice;
    if (write_again(bytes, once) && !names_another_encoding(once)) {
        fuzz::require(write_again(once, twice), "what was written reads");
        fuzz::require(once == twice, "and is written the same");
    }
    return 0;
}
