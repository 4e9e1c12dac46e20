#ifndef LANG_H
#define LANG_H

/*
 * The texts of an application in its user's language.
 *
 * Load a compiled file (*.lang), or a directory of them, once at the start; ask for every text by
 * its group and its item, where the item is the text in the language the program is written in.
 *
 *     lang_load_file("/usr/share/viewer/deutsch.lang");
 *     puts(lang_get_string("main", "Open"));
 *     lang_de_init();
 *
 * Five rules hold for all of it:
 *
 * 1. A request always gives a text. Without a translation, without a loaded file, with a damaged
 *    one, without memory, the answer is the item itself (the very pointer). Only handles in import
 *    mode answer null; a new string is null for an empty text and without memory.
 * 2. A text that comes back as const char * belongs to the library. It lives until its handle is
 *    loaded again or released; the item given back lives as long as the caller's own string.
 *    What comes back as char *, or is stored through a char **, is new: release it with free().
 * 3. A null handle means the process-wide one, which lang_load_file fills and lang_de_init empties.
 * 4. Texts are bytes: they come back as they stand in the file, whatever its encoding.
 * 5. The library never ends the process and throws nothing. What it has to say goes to the log,
 *    which is closed until LogOpen: missing texts (with the file and line of the request), damaged
 *    files (with the line and what stands there). It prints only a line on standard error where
 *    something is left out for want of memory, and the debug print while that is switched on.
 *
 * Threads: once a file is loaded, any number of threads may ask at once (all the request words, and
 * __lang_get_str, lang_check_string, lang_get_ctime, lang_sym_get), each with its own symbol lists,
 * info records and messages. An item that is asked for with lang_get_fmt must then always be asked
 * for with it, and with one description. Everything else is for a time when no other thread is in
 * the library: loading, releasing, system symbols, opening and closing the log.
 */

#include <stdint.h>
#include <stdio.h>

/* The compiler compares printf's arguments with the item, which is that argument of a request. A
 * text that holds several forms is no format, and has no such mark. */
#ifdef __GNUC__
#define LANG_FORMAT_ARG(argument) __attribute__((__format_arg__(argument)))
#else
#define LANG_FORMAT_ARG(argument)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Requests ---------------------------------------------------------------------------------
 *
 * The words that `lang check` looks for in an application's sources, with their arguments in the
 * order in which it reads them. For printf, and for texts with a number, take lang_text and
 * lang_count of lang-locale.h. Group and description are string literals; the item is a string
 * literal, or a name that a #define of the same file gives one. Only lang_get, lang_get_fmt,
 * lang_sym and lang_dummy may have an item of adjacent literals, "Two pieces " "of one text": of
 * any other request's, lang check reads the first one alone, and the text is never translated. The
 * description tells the translator what the text is for.
 */

/* A text. */
#define lang_get_string(group, item) _lang_get_string((group), (item), __FILE__, __LINE__)

/* A text that is shown as a tooltip. */
#define lang_tooltip(group, item) _lang_tooltip((group), (item), __FILE__, __LINE__)

/* A text from a handle of the caller's. */
#define lang_get_str(handle, group, item)                                                          \
    _lang_get_str((handle), (group), (item), __FILE__, __LINE__)

/* A text with a note for the translator. */
#define lang_get(description, group, item) _lang_get_string((group), (item), __FILE__, __LINE__)

/* A format for printf and its kin. The description names the conversions that the arguments need,
 * as "formater=%25s,%25d" for a string and a number; a translation that asks for others loses
 * them. */
#define lang_get_fmt(description, group, item)                                                     \
    _lang_get_string_fmt((description), (group), (item), __FILE__, __LINE__)

/* A text in which %NAME% stands for a symbol's value; a new string (null for an empty text). With
 * null for the symbols the text is only copied. */
#define lang_sym(symbols, description, group, item)                                                \
    _lang_sym_get_str((symbols), (group), (item), __FILE__, __LINE__)

/* One entry of an info record, its activity and message translated; the record comes back and the
 * variable is null: record = lang_get_info(NULL, &record, 2, 17, "main", "Open", "Not found"). */
#define lang_get_info(handle, record, level, code, group, activity, message)                       \
    _lang_get_info((handle), (record), (level), (code), (group), (activity), (message), __FILE__,  \
                   __LINE__)

/* Marks a text for the translator where it cannot be asked for, as in a table; it is the item. */
#define lang_dummy(description, group, item) (item)

/* ---- Records ------------------------------------------------------------------------------- */

struct zel_list;   /* a list, handed around as its first node; null is the empty list */
struct zel_info_t; /* messages of an activity */
struct lang_index;

/* One text of a compiled file. */
typedef struct lang_text_t {
    int32_t is_default; /* 1: the default language stands in for a missing translation */
    char *key;          /* group, a colon, item */
    char *value;        /* null when the file gives none */
} lang_text_t;

/* Values of format. Texts are stored byte for byte whatever it says. */
#define LANG_FORMAT_ASCII 1
#define LANG_FORMAT_UTF8 2

/* One loaded language. The library fills it; applications may read it. */
typedef struct lang_handle_t {
    char *language;           /* name of the last LANGUAGE statement, or null */
    struct zel_list *entries; /* of lang_text_t in reading order; the records are the index's */
    lang_text_t *lang;        /* the table: slots 1 to count - 2 ascending by key */
    int32_t count;            /* slots with the sentinels at both ends; 0 before the first load */
    int32_t loaded;           /* 1: the table answers */
    int32_t format;           /* 0 when the file gives none */
    int32_t ref_count;        /* for the caller; nothing acts on it */
    int32_t import_mode;      /* 1: made by lang_import_new */
    int32_t posnr;            /* 1: position numbers are dropped while reading */
    uint64_t ctime;           /* of the file, seconds since the epoch */
    struct lang_index *index; /* the library's own */
} lang_handle_t;

/* One symbol. */
typedef struct lang_sym_t {
    int32_t type; /* LANG_SYM_SYSTEM or LANG_SYM_APP */
    char *name;
    char *value;
} lang_sym_t;

#define LANG_SYM_SYSTEM 1
#define LANG_SYM_APP 2

/* ---- Loading --------------------------------------------------------------------------------
 *
 * The path names a compiled file, or a directory, of which every *.lang is read into one table (but
 * no pipes and devices, which might never end).
 */

/* Into the process-wide handle. 0; 1 without a path; -1 when nothing could be read: the handle then
 * answers with items. */
int lang_load_file(const char *path);

/* Empties the process-wide handle. */
void lang_de_init(void);

/* A handle of the caller's, released with lang_free(handle, 1). Null without a path or memory; one
 * whose file could not be read answers with items. In import mode a pair that the file does not
 * hold, or marks as default, answers null. */
lang_handle_t *lang_new(const char *path);
lang_handle_t *lang_import_new(const char *path);
lang_handle_t *_lang_new(const char *path, int32_t import_mode);

/* Loads into a handle, in place of what it holds; the result is that of lang_load_file. */
int _lang_load(lang_handle_t *handle, const char *path);

/* Releases the handle's texts and, with free_handle not 0, the handle (which may be null); then
 * drops all system symbols. */
void lang_free(lang_handle_t *handle, int free_handle);

void lang_ref_inc(lang_handle_t *handle);
void lang_ref_dec(lang_handle_t *handle);

/* ---- What the request words call ------------------------------------------------------------
 *
 * file and line say where the request stands; they show in the log when the text is missing.
 */

/* found is set to 1 or 0; it is left alone by a handle that is not loaded, and by a null answer in
 * import mode. A pair without a group or without an item (null) is never found: the answer is the
 * item, or an empty text where that is missing. */
const char *__lang_get_str(lang_handle_t *handle, const char *group, const char *item,
                           int32_t *found, const char *file, int line);

LANG_FORMAT_ARG(3)
const char *_lang_get_str(lang_handle_t *handle, const char *group, const char *item,
                          const char *file, int line);
LANG_FORMAT_ARG(2)
const char *_lang_get_string(const char *group, const char *item, const char *file, int line);
LANG_FORMAT_ARG(2)
const char *_lang_tooltip(const char *group, const char *item, const char *file, int line);
const char *_lang_str(const char *group, const char *item, const char *file, int line);
const char *_lang_get_string_fmt(const char *description, const char *group, const char *item,
                                 const char *file, int line);
char *_lang_sym_get_str(struct zel_list *symbols, const char *group, const char *item,
                        const char *file, int line);
struct zel_info_t *_lang_get_info(lang_handle_t *handle, struct zel_info_t **record, int32_t level,
                                  int32_t code, const char *group, const char *activity,
                                  const char *message, const char *file, int line);

/* 1 when the process-wide handle translates the pair, else 0. */
int32_t lang_check_string(const char *group, const char *item);

/* Time stamp of the file in the process-wide handle. */
uint64_t lang_get_ctime(void);

/* Writes the handle's language, time stamp and texts as XML, with the entities of GLib's markup
 * formatter; each byte that is no UTF-8 becomes U+FFFD. Control characters in a text become
 * entities that XML 1.0 does not allow. */
void lang_debug_print(FILE *stream, lang_handle_t *handle);

/* ---- Symbols --------------------------------------------------------------------------------
 *
 * A symbol list belongs to the caller: start with null, keep the result of lang_sym_set, release
 * with lang_sym_free. System symbols answer where the list does not; PERCENT is always there.
 */

/* Adds a symbol or replaces its value; returns the list's head. Type 0 means LANG_SYM_APP. Without
 * memory the list is as it was. */
struct zel_list *lang_sym_set(struct zel_list *symbols, const char *name, const char *value,
                              int32_t type);

/* The value, from the list or the system's; the library keeps it. Null when there is none. */
const char *lang_sym_get(struct zel_list *symbols, const char *name);

void lang_sym_free(struct zel_list *symbols);

/* Sets a symbol for all lists. It lasts until the next lang_free or lang_de_init. */
struct zel_list *lang_sym_system_set(const char *name, const char *value);

/* A new string with every %NAME% replaced: NAME is 1 to 33 letters, digits or "_". A name that is
 * not known stays as it is. Null for a null or an empty text. */
char *_lang_rep_sym(struct zel_list *symbols, const char *text);

/* ---- Message splitter -----------------------------------------------------------------------
 *
 * Texts of elements "id=value;id;id=value" with separator and assignment character of the caller's
 * choice. In values "%" and two hexadecimal digits stand for a byte. A split text is a list of
 * elements.
 */

typedef struct min_lex_elem_t min_lex_elem_t;

/* Appends the text's elements to the list (null for a new one) and returns its head. */
struct zel_list *min_lex_split_msg(struct zel_list *list, const char *text, char separator,
                                   char assignment);
void min_lex_split_msg_free(struct zel_list *list);
void min_lex_split_msg_print(FILE *stream, struct zel_list *list);

/* Of an element: the value is null when the text gave none. They belong to the list. */
const char *min_lex_split_msg_id(const min_lex_elem_t *element);
const char *min_lex_split_msg_val(const min_lex_elem_t *element);

/* The first element of that id: 1 when there is one, else 0. out gets the value, or the fallback
 * where there is no element or no value; a text stays the list's. */
int32_t min_lex_split_msg_get_id(struct zel_list *list, const char *id);
int32_t min_lex_split_msg_get_int(struct zel_list *list, const char *id, int32_t *out,
                                  int32_t fallback);
int32_t min_lex_split_msg_get_str(struct zel_list *list, const char *id, const char **out,
                                  const char *fallback);

/* The same, and the element leaves the list, whose head they return. A text is the caller's (what
 * *out held is released). Those that end in 2 leave *out alone where there is no value. */
struct zel_list *min_lex_split_msg_get_int_free(struct zel_list *list, const char *id, int32_t *out,
                                                int32_t fallback);
struct zel_list *min_lex_split_msg_get_str_free(struct zel_list *list, const char *id, char **out,
                                                const char *fallback);
struct zel_list *min_lex_split_msg_get_int_free2(struct zel_list *list, const char *id,
                                                 int32_t *out);
struct zel_list *min_lex_split_msg_get_str_free2(struct zel_list *list, const char *id, char **out);

#define MIN_LEX_TYPE_INT 1 /* int32_t *out, int fallback */
#define MIN_LEX_TYPE_STR 2 /* char **out, const char *fallback; a new string, null when empty */

/* Splits and fills several outputs: id, then int type, out, fallback, next id, ... up to a null id.
 *
 *     min_lex_split_msg_get_ext(text, ';', '=', "width", MIN_LEX_TYPE_INT, &width, 640,
 *                               "title", MIN_LEX_TYPE_STR, &title, "none", NULL);
 *
 * 0; 1 when there is no id or nothing to split; 3 times the group's number for a wrong type, and
 * one more for a null out. Outputs that are not reached have their fallback. */
int32_t min_lex_split_msg_get_ext(const char *text, char separator, char assignment, const char *id,
                                  ...);

/* Appends the pieces between separators, empty ones too, as strings that the list owns. */
struct zel_list *min_lex_split_str_by_sep(struct zel_list *list, const char *text, char separator);
void min_lex_split_str_by_sep_free(struct zel_list *list);

/* "%" and two hexadecimal digits become a byte, in place. */
void min_lex_convert_percent_to_chars(char *text);

/* ---- Cursor helpers -------------------------------------------------------------------------
 *
 * Each reads from the text at *cursor and moves the cursor past what it took.
 */

#define MIN_LEX_READ 4    /* a word or a quoted string was read */
#define MIN_LEX_AT_END 2  /* the text was at its end: get_strn, find_char */
#define MIN_LEX_NO_TEXT 1 /* the same, for the readers up to a delimiter */
#define MIN_LEX_FOUND 256
#define MIN_LEX_NOTHING (-1)   /* only white space, an empty word, or no delimiter */
#define MIN_LEX_TOO_LONG (-2)  /* the word or line does not fit */
#define MIN_LEX_NULL (-3)      /* a null argument */
#define MIN_LEX_NOT_FOUND (-4) /* not in the rest of the text; no such word in the table */

#ifndef ZEL_TRANS_ID_T
#define ZEL_TRANS_ID_T
/* A row of a word table, which a row with a null word ends. */
struct trans_id_t {
    const char *word;
    int64_t id;
};
#endif

/* A word, or a string in double quotes (a backslash makes the next character literal). A word of
 * size - 2 characters fits always. Without a size the buffer holds 8192 bytes. */
int zel_min_lex_get_strn(const char **cursor, char *buffer, int size);
int zel_min_lex_get_str(const char **cursor, char *buffer);
int zel_min_lex_get_str2(const char **cursor, char *buffer);

/* A word's id in the table; MIN_LEX_NOT_FOUND, or 0 when there is no word. */
int zel_min_lex_get_id(const char **cursor, const struct trans_id_t *table);
int zel_min_lex_get_id_delimiter(const char **cursor, const struct trans_id_t *table,
                                 char delimiter);

/* A word up to the delimiter, which must come and is not taken; up to the delimiter (taken), white
 * space or the end. The buffer must hold the rest of the text. */
int zel_min_lex_get_str_until(const char **cursor, char *buffer, char delimiter);
int zel_min_lex_get_str_until2(const char **cursor, char *buffer, char delimiter);
int zel_min_lex_get_str_until3(const char **cursor, char *buffer, char delimiter);

/* Up to 31 decimal digits, without a sign: 1, or 0 when there are none. */
int zel_min_lex_get_int(const char **cursor, int32_t *out);

/* MIN_LEX_FOUND with the cursor behind the character or string. Missing: find_char stands at the
 * end with MIN_LEX_AT_END, the match operations do not move and give MIN_LEX_NOT_FOUND. */
int zel_min_lex_find_char(const char **cursor, char character);
int zel_min_lex_match_char(const char **cursor, char character);
int zel_min_lex_match_str(const char **cursor, const char *text);

/* 1 with the cursor behind the character; 0 (1 for the character 0) with it at the end. */
int zel_min_lex_if_char(const char **cursor, char character);

/* One line of a stream without its end and without carriage returns: the number of characters;
 * -1 at the end; MIN_LEX_TOO_LONG with the first size - 1 characters. Below 1 the size is 8192. */
int zel_min_lex_get_line(FILE *stream, char *buffer, int size);

/* ---- Lists, info records, the log and the debug print ---------------------------------------- */

/* Calls the function with each element of a list: elements of a split text (min_lex_elem_t),
 * pieces (char), symbols (lang_sym_t), entries (lang_text_t). */
void zel_list_foreach(struct zel_list *list, void (*function)(void *data, void *user), void *user);
int zel_list_count(const struct zel_list *list);

/* Writes an info record's entries; releases it (it is logged first). */
void zel_info_fprint(FILE *stream, const struct zel_info_t *record);
void zel_info_free(struct zel_info_t *record);

/* Not 0: what the library notes for its own developers is printed on standard output. */
extern int __dbg_printf_on__;

/* Opens the log; the version is a text for its first line. Flags, added up: 1 appends to the file,
 * 2 starts it anew and keeps the old one as file.old, 4 copies to standard output, 8 to standard
 * error. The file may be null. Both return 0. */
int LogOpen(const char *file, unsigned flags, const char *version);
int LogClose(void);

#ifdef __cplusplus
}
#endif

#endif
