#ifndef LANG_LOCALE_H
#define LANG_LOCALE_H

/*
 * The user's language, plural forms, and formats that no translation can break. Stands beside
 * lang.h, whose rules 1 to 5 hold here too.
 *
 *     lang_locale_load("/usr/share/viewer/texts");
 *     printf(lang_text("list", "Notes of %s"), name);
 *     printf(lang_count("list", "%d note|%d notes", n), n);
 *     lang_de_init();
 *
 * All texts are UTF-8. What comes back as const belongs to the library; each function says how long
 * it lives.
 *
 * Threads: once a file is loaded, any number of threads may call lang_text, lang_count,
 * lang_plural, lang_plural_of, lang_format_or and lang_locale_of at once, beside all that lang.h
 * lets them call. lang_locale_load, lang_locale_choose, lang_load_memory and lang_locale_memory are
 * safe while other threads ask for texts (the request words of lang.h, and the six above): until
 * the load is complete they get items.
 * They are refused while the process-wide handle is loaded, so nothing is ever taken from under a
 * thread; to load again, call lang_de_init first, at a time when no other thread is in the library.
 * lang_locale_watch and lang_locale_reload are as safe: what a thread has asked for stays. So is
 * lang_trace_mark.
 * lang_locale_list and lang_locale_new may be called from any thread as long as no log is being
 * opened or closed and none changes the environment; lang_locale_chain is for a time when nobody
 * asks the two handles.
 */

#include "lang.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Requests for printf ----------------------------------------------------------------------
 *
 * `lang check` finds these two in code, in exactly these letters. Group and item are string
 * literals, names that a #define of the same file gives one, or several of these side by side,
 * "Two pieces " "of one text".
 */

/* A text, for printf or to be shown as it is. A translation that printf may not have in the item's
 * place (by the rules of lang_format_or below) counts as missing. So does every translation of an
 * item that breaks these rules itself: "100 % sure", which is not for printf, is asked for with
 * lang_get_string. */
#define lang_text(group, item) _lang_text(NULL, (group), (item), __FILE__, __LINE__)

/* The form of a text that a whole number takes (by the rules of lang_plural below). The item holds
 * the forms of the language that the program is written in, "%d note|%d notes", and the same
 * arguments are for all of them. Where the translation's form fits none of the item's, the item's
 * form for the number comes back. It lives until lang_de_init; that of a handle no longer than the
 * handle's texts. */
#define lang_count(group, forms, number)                                                           \
    _lang_count(NULL, (group), (forms), (number), __FILE__, __LINE__)

/* What these words call; the texts of a handle, null stands for the process-wide one. */
LANG_FORMAT_ARG(3)
const char *_lang_text(lang_handle_t *handle, const char *group, const char *item, const char *file,
                       int line);
const char *_lang_count(lang_handle_t *handle, const char *group, const char *forms, int64_t number,
                        const char *file, int line);

/* ---- Which file ------------------------------------------------------------------------------
 *
 * A directory of compiled files is one with files NAME.lang, or with folders that hold them, as
 * `lang compile -dst-dir` makes them. A file is in the language that its LANGUAGE statement names
 * or else its own name: by a code of ISO 639 ("de", "deu"), by the language's name in English or in
 * itself ("german", "Deutsch"), with a territory, script or modifier where it matters ("de_AT",
 * "German (AT)", "Portuguese (Brazil)", "zh-Hant", "sr@latin"). The case of letters means nothing.
 * A language that is in none of these lists goes by the name that it is given. A file
 * "default.lang" is asked last, whatever the user's language.
 */

/* One compiled file of a directory. */
typedef struct lang_locale_t {
    const char *path;
    const char *name;    /* as its LANGUAGE statement says, else the file's name without ".lang" */
    const char *code;    /* "de", "de_AT", "zh_Hant", "sr@latin"; null for no known language */
    const char *english; /* the language's name in English; null when it is not known */
    const char *own;     /* and in itself; null when it is not known */
    int32_t texts;       /* in the file */
    int32_t defaults;    /* of these, texts of the default language that stand in */
    const struct lang_locale_t *next; /* the file that is asked for what this one lacks; or null */
} lang_locale_t;

/* Loads the best of the directory's files into the process-wide handle, for the languages that the
 * environment names: the list in LANGUAGE, else the first of LC_ALL, LC_MESSAGES and LANG that is
 * not empty; when these say "C" or "POSIX", or nothing, LANGUAGE does not count and there is no
 * language. The program need not call setlocale, and the locale need not be installed.
 *
 * For de_AT the files are de_AT, de, those of the other languages in LANGUAGE, and default.lang.
 * For nb and nn a file in "no" follows, behind the last Norwegian of the list. The first that is
 * there is taken and the others are its chain: a text that it lacks, or for which only the default
 * language stands in, is asked of the next; where none has it, the stand-in is shown and then the
 * item.
 *
 * What was taken; it lives until lang_de_init or the next load. Null, and the cause in the log,
 * when no file fits or can be read, when there is no memory, and when the handle is loaded already:
 * requests answer as before, with items where nothing was loaded. */
const lang_locale_t *lang_locale_load(const char *directory);

/* The same for languages of the application's choice: "de_AT", or a list as in LANGUAGE,
 * "de_AT:fr". Null stands for the environment. */
const lang_locale_t *lang_locale_choose(const char *directory, const char *languages);

/* The same for texts in the program: data is one compiled file, or all languages in one block, as
 * lang_add_texts(... EMBED) of CMake and "lang-build embed" make it; it is only read, during the
 * call. The first takes the best for the user's language. With the second, files of a directory
 * (which may be null or not there) win: in each language, what the directory has comes before what
 * the program has. The record's path is a name in the block. */
const lang_locale_t *lang_load_memory(const void *data, size_t size);
const lang_locale_t *lang_locale_memory(const char *directory, const char *languages,
                                        const void *data, size_t size);

/* What lang_locale_choose takes as a new handle, released with lang_free(handle, 1), which releases
 * its chain. Null when there is nothing to load. */
lang_handle_t *lang_locale_new(const char *directory, const char *languages);

/* What one of these took for the handle (null: the process-wide one); null when it was loaded
 * otherwise. It lives as long as the handle's texts. */
const lang_locale_t *lang_locale_of(const lang_handle_t *handle);

/* Calls the function with each compiled file of the directory, in the order of their paths, and the
 * user value. The record lives for the length of the call, its next is null. Files that cannot be
 * read are passed over. The number of calls; -1 when the directory cannot be read or there is no
 * memory. */
int lang_locale_list(const char *directory, void (*function)(const lang_locale_t *file, void *user),
                     void *user);

/* From now on a text that the first handle (null: the process-wide one) lacks, or for which only
 * the default language stands in, is asked of the second, and of what that is chained to. A null
 * second ends the chain. The chain that the first had is released where it came with the first, so
 * that its records end, too; the first's next is the second's record, or null where that has none.
 * The second stays the caller's and must live until the first is loaded again, released, or chained
 * otherwise; when it is loaded again itself, chain it again before you look at next. 0; 1 when the
 * first is not loaded or one is in import mode; 2, and nothing is changed, when the chain would
 * lead back to its beginning. */
int lang_locale_chain(lang_handle_t *first, lang_handle_t *second);

/* ---- New texts while the application runs ----------------------------------------------------
 *
 *     int news = lang_locale_watch(NULL);                  behind lang_locale_load
 *     poll for POLLIN; when there is some:
 *         if (lang_locale_reload() == 1)
 *             ask for all texts again, and show them
 */

/* Watches the directory (null: the one that the process-wide handle was loaded from) and the
 * folders in it for compiled files that are new, or written again, as a whole. A descriptor that
 * can be read (poll, select, a toolkit's loop) from when there is one until the next
 * lang_locale_reload, which reads it; it stays the library's until lang_de_init or the next watch,
 * of which a process has one. -1, and the cause in the log, when there is nothing to watch. The
 * system tells of local files only. */
int lang_locale_watch(const char *directory);

/* Reads the directory again that lang_locale_load or lang_locale_choose has read, for the same
 * languages, or for the first time where nothing was there yet. 1: from now on every request gets
 * the new texts, in all threads. 0: the watch has no news, and nothing was read; without a watch it
 * is always read. -1, and the cause in the log: the texts are as before, since no file fits or can
 * be read, there is no memory, or they did not come from a directory.
 * Every text and record that was handed out lives on until lang_de_init, so each reload takes the
 * memory of the files again. What lang_locale_chain has chained to the process-wide handle stays
 * chained. */
int lang_locale_reload(void);

/* ---- Which texts were asked for --------------------------------------------------------------
 *
 * With LANG_TRACE=FILE in the environment the library appends a line to FILE at an item's first
 * request, and at its first one after each mark, from the first load on:
 *
 *     1795673131.004200<TAB>main<TAB>Disk full      a request: group and item
 *     1795673131.124200<TAB>open-dialog             a mark: its name
 *
 * The time is in seconds since the epoch. In the names a tab, a line end, a carriage return and a
 * backslash are "\t", "\n", "\r" and "\\". Each line is written at once and in one piece, so
 * several processes may share a file, and nothing is lost when one ends. Requests of handles count,
 * those of import mode do not. Without the variable, or with one of no length, nothing is traced;
 * and never in a program that has other rights than its caller's, as with set-user-ID. When the
 * file cannot be opened or written, the log says so and the trace ends; the application notices
 * nothing. */

/* A mark of that name (null: an empty one). The signal SIGUSR1 does the same with the names
 * "usr1-1", "usr1-2" and so on, where the application had no use for it when the trace began.
 * Without a trace it does nothing. From any thread. */
void lang_trace_mark(const char *name);

/* ---- Plural forms ----------------------------------------------------------------------------
 *
 * A text with a number holds its forms in the order zero, one, two, few, many, other, as many of
 * them as whole numbers have in its language by the Unicode consortium's rules, separated by "|":
 *
 *     "%d note|%d notes"                        English: one, other
 *     "%d заметка|%d заметки|%d заметок"        Russian: one, few, many
 *     "ノート%d件"                              Japanese: other
 *
 * The rules are those of the consortium's version 48. In some languages a form begins at a million
 * (French: one, many, other); their texts may leave it out. Where an older version had another
 * number of forms (Hebrew and Maltese had four), texts with so many are read by its rule.
 */

/* The form for the number, for a text that the process-wide handle or its chain gave: in the
 * language of the file that it came from, each file by its own. A text of two forms that no file
 * gave, as the item, or of the default language, as it stands in, is read as in English; with
 * another count, by the rule of the handle. Where the count is not the rule's, too, two forms are
 * read as in English, and else the last form is taken. For numbers below zero the sign does not
 * count. The form lives until lang_de_init; the last form, and a text without "|", is the end of
 * the text itself. A null text gives an empty one; without memory the last form comes back. Pass
 * texts that stay, not ever new ones: each form is kept. */
const char *lang_plural(const char *text, int64_t number);

/* The same for the texts of a handle; null stands for the process-wide one. */
const char *lang_plural_of(lang_handle_t *handle, const char *text, int64_t number);

/* ---- Formats ---------------------------------------------------------------------------------
 *
 * lang_get_fmt (lang.h) knows %d and %s alone: "%n added" passes it for "%d" and ends the
 * application. This one lets nothing pass that it does not know.
 */

/* The text, when printf may be called with it in place of the item: both hold nothing but
 * conversions of standard C, each of the item's arguments is used, with the same kind (d i, o u x
 * X, the ones for floating point, c, s, p), length (hh h l ll j z t L) and count, and no width or
 * precision has more than three digits. The text may take the arguments in another order with
 * positions ("%2$s"), and may choose flags, width and precision; but of a string it reads no more
 * than the item does: for "%.4s" it needs a precision of 4 at most, since the argument may have no
 * end. How long the result is, is the text's affair: print into a buffer with snprintf. With "%n",
 * "*" or anything unknown it does not fit, not even where the item has the same. Else the item: an
 * item that breaks these rules is always given back itself. A null text gives the item, a null item
 * an empty text. Nothing is copied: the result is one of the two pointers. */
LANG_FORMAT_ARG(2)
const char *lang_format_or(const char *text, const char *item);

#ifdef __cplusplus
}
#endif

#endif
