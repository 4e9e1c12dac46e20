#pragma once

// A whole source as JSON, for scripts: what is exported and imported again is the same source.
//
//   { "language_source": 1, "create_date": null, "whatsnew": 0, "ctime": 0, "mtime": 0,
//     "format": "utf8", "app": "notes", "default_language": "english",
//     "column_widths": { "group": 200, "item": 200, "ctrl": 300 },
//     "languages": [ { "name": "english", "file": "english.lang", "values": [200, 200],
//                      "edit": 1 } ],
//     "groups": [ { "name": "menu", "visible": 1, "screen_shot": null, "items": [
//       { "name": "_Open", "description": null, "typ": 1, "rowheight": 20, "ctime": 0,
//         "visible": 1, "ready": 0, "changed": false, "used": true,
//         "places": ["00031:src/window.c"],
//         "texts": [ { "language": "english", "lines": ["_Open"] } ],
//         "comments": [] } ] } ] }
//
// A member that is missing has its usual value; one that is not known is a fault, so that a slip
// loses nothing.

#include "exchange/export.h"
#include "source/model.h"

namespace zel::exchange {

void write_json(exporter &from, std::vector<outgoing_file> &to);

// Appends what stands for the signs of a text in UTF-8 between the quotes of a JSON string.
void append_json_signs(std::string &out, std::string_view text);

// A new source from JSON text; items without a creation time are made now. Null at a fault.
source_guard read_json(std::string_view bytes, std::int64_t now, fault &wrong);

} // namespace zel::exchange
