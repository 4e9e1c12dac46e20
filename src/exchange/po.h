#pragma once

// Catalogs: a file for each language. A message's context is the item's key (exchange/key.h), its
// id the reference text; a text with plural forms (exchange/plural-text.h) goes out as a plural,
// counted as the header says, and comes back as the text that shows the same; description and
// comments are its programmer's remarks, places of use its references. A text is marked fuzzy, and
// so left out by whoever compiles the catalog, where its conversions or line ends at both ends
// differ from the reference's; where wanted also while its item is not ready. "c-format" stands
// where the reference holds conversions of printf.

#include "exchange/export.h"
#include "exchange/po-message.h"
#include "exchange/po-plural.h"
#include "exchange/texts.h"

namespace zel::exchange {

void write_po(exporter &from, std::vector<outgoing_file> &to);

// A project's template, without any translation.
void write_pot(exporter &from, std::vector<outgoing_file> &to);

// A line each for two items that a catalog could not tell apart by the wanted context: their keys.
std::vector<std::string> colliding_keys(exporter &from);

// Appends the messages of some of the items, in the exporter's only language.
void append_po_items(std::string &out, exporter &from, const plural_outlet &outlet,
                     const std::function<bool(const item_t *)> &is_wanted);

// What the header, of the catalog's bytes, says of all texts.
void take_po_header(const po_message &header, std::string_view bytes, file_texts &file);

fault read_po(std::string_view bytes, encoding good, const text_listener &hear);

} // namespace zel::exchange
