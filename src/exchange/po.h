#pragma once

// Catalogs: a file for each language. A message's context is the item's key (exchange/key.h), its
// id the reference text; a text with plural forms (exchange/plural-text.h) goes out as a plural,
// counted as the header says, and comes back as the text that shows the same; description and
// comments are its programmer's remarks, places of use its references. A text is marked fuzzy, and
// so left out by whoever compiles the catalog, where its conversions or line ends at both ends
// differ from the reference's; where wanted also while its item is not ready. "c-format" stands
// where the reference holds conversions of printf.

#include "exchange/export.h"
#include "exchange/texts.h"

namespace zel::exchange {

void write_po(exporter &from, std::vector<outgoing_file> &to);
fault read_po(std::string_view bytes, encoding good, const text_listener &hear);

} // namespace zel::exchange
