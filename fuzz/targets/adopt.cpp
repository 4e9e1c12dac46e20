// Code whose calls become requests: every byte that is no part of a call stays, and what was turned
// is turned no more.

#include "support.h"

#include "kit/support/adopter.h"
#include "kit/support/json-text.h"
#include "kit/support/unified-diff.h"

namespace {

using namespace zel;

void check_tokens(std::string_view bytes)
{
    std::size_t done = 0;
    for (const code_token &token : code_tokens(bytes)) {
        fuzz::require(token.begin >= done && token.end > token.begin && token.end <= bytes.size(),
                      "tokens stand one behind the other");
        done = token.end;
    }
}

void adopt(std::string_view bytes, call_dialect from)
{
    const source_guard source(lang_alloc_group());
    kit::adopt_how how;
    how.from = from;
    how.group = "a";
    kit::adopter by(source.get(), how);
    const kit::adopted_code once = by.take("src/a.c", bytes);
    check_tokens(bytes);
    kit::unified_diff("src/a.c", bytes, once.text, once.added_line);
    if (once.turned == 0)
        fuzz::require(once.text == bytes, "without a call the bytes stay");
    fuzz::require(by.take("src/a.c", once.text).turned == 0, "a request is no call");
}

} // namespace

extern "C" int FUZZ_TARGET(adopt)(const std::uint8_t *data, std::size_t size)
{
    const std::string_view bytes = fuzz::bytes_of(data, size);
    adopt(bytes, call_dialect::gettext);
    adopt(bytes, call_dialect::qt);
    kit::read_json_text(bytes);
    return 0;
}
