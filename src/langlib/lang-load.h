#pragma once

// Reading compiled language files into a handle. What applications call is in lang.h, the layout of
// the file in compiled-file.h.

#include "langlib/lang.h"
#include "lex/lex.h"
#include "support/list.h"

// The process-wide handle: all zero until lang_load_file fills it.
extern lang_handle_t lang;

// Parses one file with a scanner for the compiled file's keywords and appends its entries
// (lang_text_t) to the list, whose head is returned; other statements change the handle. The
// handle's own memory holds the entries; the list's nodes are the caller's.
// Errors are logged; the entries before them are kept.
[[nodiscard]] zel_list *_lang_load_parse_file(lang_handle_t *handle, zel_list *list, zel_lex_t *lex,
                                              const char *path);
