#pragma once

// XML files of translators' tools: XLIFF 1.2 and 2.1, a file for each language, both read back.
//
// A unit's id is the item's key (exchange/key.h); in 2.1, whose ids know few characters, each
// other byte of it is "_" and two hexadecimal digits. The source is the reference text, the target
// the language's, absent where there is none. A target is "final" (in 1.2 also approved) when its
// item is ready, else "translated"; one that is "new", "needs-translation" or "initial" counts as
// fuzzy. Notes are "description", "comment" for the language's comment and "default comment" for
// the default language's; others are new remarks of translators. A note "language" of the file
// holds the language's name.
//
// Reading expands no entity and follows no reference: a document type is refused.

#include "exchange/export.h"
#include "exchange/texts.h"

namespace zel::exchange {

void write_xliff(exporter &from, std::vector<outgoing_file> &to);                   // 1.2
void write_xliff2(exporter &from, std::vector<outgoing_file> &to);                  // 2.1
fault read_xliff(std::string_view bytes, encoding good, const text_listener &hear); // any of both

// Makes an id of version 2.1 from a key, and back; false for a text that is no such id.
std::string xliff_id(std::string_view key);
bool read_xliff_id(std::string_view id, std::string &key);

} // namespace zel::exchange
