#pragma once

// A text request read from a token stream, as in a script: the scanner has returned the request's
// name, its arguments are next. For applications of the family, whose scripts ask for texts; this
// program does not call it.

#include "lex/lex.h"

// ("group", "item") or ("description", "group", "item"): a new string with the process-wide
// handle's text. Null, after a log line, for anything else. Both names do the same.
[[nodiscard]] char *zel_lex_lang_get_string(zel_lex_t *lex);
[[nodiscard]] char *zel_lex_lang_get(zel_lex_t *lex);
