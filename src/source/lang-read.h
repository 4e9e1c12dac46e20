#pragma once

// Reading a language source file (*.lang-src).
//
//   VERSION [n]  WHATSNEW n  CTIME n  MTIME n  CREATE_DATE "date"  APP "name"
//   DEFAULT LANG "language"  COLWIDTH GROUP|ITEM|CTRL n
//   DEFINE { FILE "file" LANG "language" [n [n [n]]] | FORMAT ASCII|UTF8 } ...
//   GROUP "name" { USED YES|NO  VISIBLE n  SCREEN_SHOT "name"
//     ITEM "name" {
//       VISIBLE n  USED YES|NO [{ "place" ... }]  CHANGED  SIZE n [n]  ROWHEIGHT n  TYP n
//       READY n  CATEGORY|DESCRIPTION "text"  CTIME n
//       LANG "language" { "line" ... }  COMMENT "language" { "line" ... }
//     }
//   }
//
// Keywords in any case; /* */ and // comments.

#include "lex/lex.h"
#include "source/model.h"

// Reads a file into a new source, owned by the caller. Null when it cannot be read or is
// malformed, after one of the reader's numbered messages on standard output. Some errors inside a
// group end the process through lang_exit (app/global.h); where that returns, the result is null.
[[nodiscard]] LangSource *lang_read_file(const char *path);

// Reads one entry after LANG or COMMENT and appends it to the list: 0, or -1 after a message.
int parse_lang_text(zel_lex_t *lex, GList **entries);
