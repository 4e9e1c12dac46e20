#pragma once

// Translation memories as TMX 1.4, a file for each language but the default one, both written and
// read.
//
// A unit has two texts, the reference first; its tuid is the item's key (exchange/key.h), the
// property "context" its group, a note the description. The header's property "x-language" is the
// language as the source names it. A plural has a unit for each form: the form
// for 1 translates the reference's, each other one the reference's last. The property "x-form"
// counts them from 0, and "x-reference" is the whole reference. Guesses are left out, and so are
// texts with characters that XML does not have: a memory keeps no bytes of ours.
//
// Reading takes any number of texts in a unit; the one in the header's source language, else the
// first, is what the others translate. Tags inside a text go, what stands in them stays. Keys count
// in files of lang-kit alone. The one document type that is passed over is that of TMX without a
// subset, which is never looked for.

#include "exchange/export.h"
#include "exchange/texts.h"

namespace zel::exchange {

void write_tmx(exporter &from, std::vector<outgoing_file> &to);
fault read_tmx(std::string_view bytes, encoding good, const text_listener &hear);

} // namespace zel::exchange
