#pragma once

// Finds the text requests in C sources and in the scripts and configuration files that use the same
// call forms. Each request marks its item as used, inserts it when the source does not know it, and
// is recorded with its place, "00042:src/main.c". Requests inside string literals count, those in
// comments and between the STOP and START markers do not; words in any case.
//
//   lang_get_string("group", item)       a text            item: a string or a #define name
//   lang_tooltip("group", item)          a tooltip
//   lang_get_str(handle, "group", item)  a text
//   lang_get("description", "group", item item ...)        lang_get_fmt, lang_dummy: the same
//   lang_sym(symbol, "description", "group", item item ...)
//   lang_text("group", item), lang_count("group", item, number): in code only, see wrapper.h
//   #define NAME "value"
//   #define ZEL_LANGUAGE_APP "name" version                version: a string or a #define name
//   ZEL_LANGUAGE_CHECK_STOP ... ZEL_LANGUAGE_CHECK_START
//
// All messages go to standard output, but where another place for them is given.

#include <cstdio>

#include "checker/request-form.h"
#include "checker/scan-listener.h"
#include "checker/symtab.h"
#include "checker/wrapper.h"
#include "lex/lex.h"
#include "source/model.h"

namespace zel {
class item_index;
} // namespace zel

// Scans a file; items that are inserted are made at lang_global's start time. Ends the process when
// the file cannot be opened. Returns 0.
int check_c_file(LangSource *root, const char *path);

// Scans a token stream (a scanner of zel::new_check_scanner with its buffer) to its end; path is
// where the text comes from. Returns 0; -1 without memory, after a message: nothing more should be
// done with the source.
int check_parse(LangSource *root, symtab_t *symbols, zel_lex_t *lex, const char *path);

// Read what follows the opening parenthesis of a request: group and item, or with a description and
// perhaps a symbol before them. Return 0; 1 when the request was given up, after a message.
int parse_lang_entry(LangSource *root, symtab_t *symbols, zel_lex_t *lex, const char *path,
                     int type);
int parse_lang_entry2(LangSource *root, symtab_t *symbols, zel_lex_t *lex, const char *path,
                      int with_symbol);

// Reads what follows "#define ZEL_LANGUAGE_APP" and replaces *app by "name:version". Returns 0; 1
// when there is something else, after a message.
int parse_lang_app(char **app, symtab_t *symbols, zel_lex_t *lex, const char *path);

// Reads one token, a string or a #define name, into the buffer of 1024 bytes, which stays as it is
// after a message. Returns 0.
int get_id_or_string(LangSource *root, symtab_t *symbols, zel_lex_t *lex, char *buffer,
                     const char *path);

namespace zel {

struct scan_how {
    std::int64_t now = 0;                    // the creation time of inserted items
    std::FILE *messages = nullptr;           // null: nothing is printed
    const scan_listener *to = nullptr;       // null: nobody listens
    const wrapper_words *wrappers = nullptr; // the application's own words, if it has any
};

// check_c_file for a run over many files. Returns 0; -1 when the file cannot be opened or read
// through, after a message: the run must end and the source stay as it was.
int check_file(item_index &index, const char *path, const scan_how &how);

// What check_file does with the tokens of a file.
int scan_tokens(item_index &index, symtab_t *symbols, const char *path, const scan_how &how,
                zel_lex_t *lex);

// A scanner with the words of requests; null without memory.
[[nodiscard]] zel_lex_t *new_check_scanner();

} // namespace zel
