#pragma once

// A small scanner for short texts: messages "id=value;id;id=value" split into lists of elements,
// and cursor helpers that read words, numbers and lines one at a time. The functions have C linkage
// because applications call them; langlib/lang.h declares them again for C and tells their use.

#include <cstdint>
#include <cstdio>
#include <memory>

#include "lex/lex-misc.h"
#include "support/guard.h"
#include "support/list.h"

struct min_lex_elem_t {
    char *id;  // never null
    char *val; // null when the element had no assignment character
};

// Types of the outputs of min_lex_split_msg_get_ext.
#define MIN_LEX_TYPE_INT 1
#define MIN_LEX_TYPE_STR 2

// Outcomes of the cursor helpers.
#define MIN_LEX_READ 4
#define MIN_LEX_AT_END 2
#define MIN_LEX_NO_TEXT 1
#define MIN_LEX_FOUND 256
#define MIN_LEX_NOTHING (-1)
#define MIN_LEX_TOO_LONG (-2)
#define MIN_LEX_NULL (-3)
#define MIN_LEX_NOT_FOUND (-4)

// Room that the operations without a size take for a word.
inline constexpr int MIN_LEX_WORD = 8192;

extern "C" {

// Splitting. Elements are appended to the list, whose head is returned.
[[nodiscard]] zel_list *min_lex_split_msg(zel_list *list, const char *text, char separator,
                                          char assignment);
void min_lex_split_msg_free(zel_list *list);
void min_lex_split_msg_print(std::FILE *stream, zel_list *list);
const char *min_lex_split_msg_id(const min_lex_elem_t *element);
const char *min_lex_split_msg_val(const min_lex_elem_t *element);

// Accessors by id (the first that matches). Those with "free" remove the element and return the
// list's head; the strings they store are new and the caller's, what *out held is released.
std::int32_t min_lex_split_msg_get_id(zel_list *list, const char *id);
std::int32_t min_lex_split_msg_get_int(zel_list *list, const char *id, std::int32_t *out,
                                       std::int32_t fallback);
std::int32_t min_lex_split_msg_get_str(zel_list *list, const char *id, const char **out,
                                       const char *fallback);
[[nodiscard]] zel_list *min_lex_split_msg_get_int_free(zel_list *list, const char *id,
                                                       std::int32_t *out, std::int32_t fallback);
[[nodiscard]] zel_list *min_lex_split_msg_get_str_free(zel_list *list, const char *id, char **out,
                                                       const char *fallback);
[[nodiscard]] zel_list *min_lex_split_msg_get_int_free2(zel_list *list, const char *id,
                                                        std::int32_t *out);
[[nodiscard]] zel_list *min_lex_split_msg_get_str_free2(zel_list *list, const char *id, char **out);

// Groups of type, out, fallback, next id follow the first id; a null id ends them.
std::int32_t min_lex_split_msg_get_ext(const char *text, char separator, char assignment,
                                       const char *id, ...);

// The pieces between separators, as strings that the list owns.
[[nodiscard]] zel_list *min_lex_split_str_by_sep(zel_list *list, const char *text, char separator);
void min_lex_split_str_by_sep_free(zel_list *list);

void min_lex_convert_percent_to_chars(char *text);

// Cursor helpers: each reads at *cursor and moves it past what it took.
int zel_min_lex_get_strn(const char **cursor, char *buffer, int size);
int zel_min_lex_get_str(const char **cursor, char *buffer);
int zel_min_lex_get_str2(const char **cursor, char *buffer);
int zel_min_lex_get_id(const char **cursor, const trans_id_t *table);
int zel_min_lex_get_id_delimiter(const char **cursor, const trans_id_t *table, char delimiter);
int zel_min_lex_get_str_until(const char **cursor, char *buffer, char delimiter);
int zel_min_lex_get_str_until2(const char **cursor, char *buffer, char delimiter);
int zel_min_lex_get_str_until3(const char **cursor, char *buffer, char delimiter);
int zel_min_lex_get_int(const char **cursor, std::int32_t *out);
int zel_min_lex_find_char(const char **cursor, char character);
int zel_min_lex_match_char(const char **cursor, char character);
int zel_min_lex_match_str(const char **cursor, const char *text);
int zel_min_lex_if_char(const char **cursor, char character);
int zel_min_lex_get_line(std::FILE *stream, char *buffer, int size);

} // extern "C"

// Where a reader up to a delimiter stops.
enum class min_lex_until {
    delimiter,       // there; the end of the text is a failure
    delimiter_space, // behind the delimiter, or at white space or the end
};

// What the readers up to a delimiter share. The size bounds the word; their callers' buffers hold
// whatever the text has.
int _min_lex_get_str_until_common(const char **cursor, char *buffer, std::size_t size,
                                  char delimiter, min_lex_until until);

namespace zel {

// As min_lex_split_msg. False without memory: the list then lacks elements.
[[nodiscard]] bool split_msg(zel_list *&list, const char *text, char separator, char assignment);

} // namespace zel

using min_lex_msg_guard = std::unique_ptr<zel_list, zel::release<min_lex_split_msg_free>>;
