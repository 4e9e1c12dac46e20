#pragma once

// Reading compiled language files into a handle. What applications call is in lang.h, the layout of
// the file in compiled-file.h.

#include <string_view>

#include "langlib/lang-rare.h"
#include "langlib/lang.h"
#include "lex/lex.h"
#include "support/list.h"

// Parses one file with a scanner for the compiled file's keywords and appends its entries
// (lang_text_t) to the list, whose head is returned; other statements change the handle. The
// handle's own memory holds the entries; the list's nodes are the caller's.
// Errors are logged; the entries before them are kept.
[[nodiscard]] zel_list *_lang_load_parse_file(lang_handle_t *handle, zel_list *list, zel_lex_t *lex,
                                              const char *path);

namespace zel {

// lang_new for a compiled file that lies in memory, of at most 4 GB; the name is for the log.
[[nodiscard]] lang_handle_t *lang_new_from(const char *name, std::string_view data);

// Releases a handle's texts, and its chain where it owns that, but no system symbols.
void lang_empty(lang_handle_t *handle);

// Ends the chain of a handle, and releases what it owns of it.
void lang_drop_chain(lang_handle_t *handle);

// Releases what reloads have put in the place of the process-wide handle, which answers again.
void lang_drop_reloads();

// Moves what a handle holds into an empty one that other threads may be asking, and releases the
// first.
void lang_move_in(lang_handle_t *to, lang_handle_t *from);

} // namespace zel
