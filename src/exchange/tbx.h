#pragma once

// Glossaries as TBX, a file for each language but the default one, both written and read.
//
//   <martif type="TBX" xml:lang="en">
//     <martifHeader><fileDesc><sourceDesc><p>lang-kit
//     german</p></sourceDesc></fileDesc></martifHeader> <text><body>
//       <termEntry id="tterms:folder">
//         <descrip type="definition">what holds files</descrip>
//         <langSet xml:lang="en"><tig><term>folder</term></tig></langSet>
//         <langSet xml:lang="de"><note>a remark</note>
//           <tig><term>Ordner</term></tig><tig><term>Verzeichnis</term></tig></langSet>
//       </termEntry></body></text></martif>
//
// An entry is an item, its reference first, as many tools look at the first two languages only.
// "Ordner/Verzeichnis" are two terms; of "keep" the term is the reference's, with the note "keep".
// The id is "t" and the key, escaped as for XLIFF 2, and counts in files of lang-kit alone.
//
// Reading takes that and the newer form: <tbx>, <conceptEntry>, <langSec>, <termSec>, and elements
// in place of types, as <basic:definition>. Terms that are marked as forbidden, deprecated or the
// like are left out.

#include "exchange/export.h"
#include "exchange/new-source.h"
#include "exchange/texts.h"

namespace zel::exchange {

// The words for a term that an item's text holds, views into it: "Ordner/Verzeichnis" are two, and
// "keep" is the term itself.
std::vector<std::string_view> glossary_terms(std::string_view text, std::string_view term);

void write_tbx(exporter &from, std::vector<outgoing_file> &to);
fault read_tbx(std::string_view bytes, encoding good, const text_listener &hear);

// Takes a glossary into a new source: its items are the terms of the default language, in the group
// "terms" or the one that is asked for. What one term is called in several entries is one text.
fault take_tbx(new_source &made, const std::string &path, std::string_view bytes);

} // namespace zel::exchange
