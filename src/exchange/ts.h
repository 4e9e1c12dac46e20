#pragma once

// TS files of window toolkits, versions 1.1 to 2.1, one for each language:
//   <TS version="2.1" language="de">
//     <context><name>Window</name>
//       <message numerus="yes">
//         <location filename="src/window.cpp" line="31"/>   (or "+12" from that file's last line)
//         <source>%n files</source>
//         <comment>what tells messages of one source apart</comment>
//         <extracomment>a programmer's remark</extracomment>
//         <translatorcomment>a translator's</translatorcomment>
//         <translation type="unfinished">
//           <numerusform>%n Datei</numerusform><numerusform>%n Dateien</numerusform>
//         </translation>
//       </message></context></TS>
// Forms of a numerus stand in the order of a table of the toolkit's own. An unfinished text is a
// guess, obsolete and vanished messages are passed over, <byte value="x1b"/> is a character that
// XML cannot have.
//
// What lang-kit writes bears the language's name in <extra-language-name>, which tools keep: there
// a context is a group, and a comment the item's name where that is not the source. Of another's
// file a context is a group, too, and the source is the item's name, or the id of a text without
// a context. A comment goes to the description; where one context has the source several times,
// to the group: "Window|verb".

#include "exchange/export.h"
#include "exchange/po-message.h"
#include "exchange/texts.h"

namespace zel::exchange {

// What stands for an empty name in a comment, which some tools drop without a text: U+EF00, which
// no carried name holds.
inline constexpr std::string_view ts_empty_name = "\xEE\xBC\x80";

void write_ts(exporter &from, std::vector<outgoing_file> &to);
fault read_ts(std::string_view bytes, encoding good, const text_listener &hear);

// A whole file, its messages as those of a catalog.
struct ts_file {
    said_language language;
    bool own = false; // lang-kit has written it: a message's context is the item's key
    std::string plural_field;
    std::vector<po_message> messages; // but obsolete ones
    std::uint32_t obsolete = 0;
    std::vector<std::string> notes; // what somebody should know, a line each
    std::size_t places = 0;         // texts with %n or %1
    std::size_t places_note = 0;    // which of the notes tells them
};
fault read_ts_file(std::string_view bytes, ts_file &file);

// The note on texts with %n or %1.
std::string places_line(std::size_t texts);

// How the toolkit counts in a language, by its code, as the field of a catalog's header
// (exchange/plural-header.h); empty for none.
std::string ts_plural_field(std::string_view code);

} // namespace zel::exchange
