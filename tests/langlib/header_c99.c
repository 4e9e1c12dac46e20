/* A C program that includes the public headers alone and uses each of its kinds of things, against
 * the shared library. Ends with the line of the first thing that is wrong. */
#define _POSIX_C_SOURCE 200809L
#include <lang-locale.h>

#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>

#define CHECK(condition)                                                                           \
    do {                                                                                           \
        if (!(condition))                                                                          \
            return __LINE__ > 255 ? 255 : __LINE__;                                                \
    } while (0)

#define NAME "item"

static const char *const marked[] = {lang_dummy("note", "g", "marked"), lang_dummy("note", "g",
                                                                                   "in two "
                                                                                   "parts")};

static void count(void *data, void *user)
{
    if (data != NULL)
        ++*(int *)user;
}

static int check_requests(lang_handle_t *handle)
{
    struct zel_info_t *record = NULL;
    struct zel_list *symbols = lang_sym_set(NULL, "WHO", "Ada", LANG_SYM_APP);
    char *owned;

    CHECK(strcmp(lang_get_string("g", NAME), NAME) == 0);
    CHECK(strcmp(lang_tooltip("g", "in two "
                                   "parts"),
                 marked[1]) == 0);
    CHECK(strcmp(lang_get_str(handle, "g", "text"), "Text") == 0);
    CHECK(strcmp(lang_get("note", "g", NAME), NAME) == 0);
    CHECK(strcmp(lang_get_fmt("formater=%25d", "g", "%d"), "%d") == 0);
    owned = lang_sym(symbols, "note", "g", "%WHO%");
    CHECK(owned != NULL && strcmp(owned, "Ada") == 0);
    free(owned);
    lang_sym_free(symbols);
    record = lang_get_info(handle, &record, 1, 2, "g", "text", NAME);
    CHECK(record != NULL);
    zel_info_free(record);
    return 0;
}

static int check_splitter(void)
{
    static const struct trans_id_t table[] = {{"on", 1}, {"off", 2}, {NULL, 0}};
    struct zel_list *list = min_lex_split_msg(NULL, "a=1;b=two", ';', '=');
    const char *cursor = " off";
    int32_t a = 0;
    char *b = NULL;
    int elements = 0;

    zel_list_foreach(list, count, &elements);
    CHECK(elements == 2 && zel_list_count(list) == 2);
    list = min_lex_split_msg_get_int_free(list, "a", &a, 0);
    CHECK(a == 1);
    min_lex_split_msg_free(list);
    CHECK(min_lex_split_msg_get_ext("b=two", ';', '=', "a", MIN_LEX_TYPE_INT, &a, 7, "b",
                                    MIN_LEX_TYPE_STR, &b, "none", (const char *)NULL) == 0);
    CHECK(a == 7 && b != NULL && strcmp(b, "two") == 0);
    free(b);
    CHECK(zel_min_lex_get_id(&cursor, table) == 2);
    return 0;
}

#define NOTES "%d note|%d notes"

static void take_code(const lang_locale_t *file, void *user)
{
    if (file->code != NULL)
        strcpy((char *)user, file->code);
}

/* The directory holds one file, in German. */
static int check_locale(const char *directory)
{
    char code[8] = "";
    char text[32];

    CHECK(lang_locale_list(directory, take_code, code) == 1 && strcmp(code, "de") == 0);
    CHECK(lang_locale_choose(directory, "de_AT")->next == NULL);
    CHECK(strcmp(lang_locale_of(NULL)->english, "German") == 0);
    CHECK(lang_locale_load(directory) == NULL); /* it is loaded */
    sprintf(text, lang_format_or(lang_plural(lang_get_string("g", NOTES), 1), "%d note"), 1);
    CHECK(strcmp(text, "1 Notiz") == 0);
    sprintf(text, lang_count("g", NOTES, (size_t)2), 2);
    CHECK(strcmp(text, "2 Notizen") == 0);
    sprintf(text, lang_text("g", "%s" NAME), "an ");
    CHECK(strcmp(text, "an item") == 0);
    CHECK(lang_locale_chain(NULL, NULL) == 0);
    lang_de_init();
    return 0;
}

static int checked;

/* A library that ends the process does not pass. */
static void at_end(void)
{
    if (!checked)
        _Exit(1);
}

/* The debug print goes to standard output, and only while it is switched on. */
static int check_debug_print(const char *path)
{
    CHECK(freopen(path, "w", stdout) != NULL);
    lang_load_file(NULL);
    CHECK(ftell(stdout) == 0);
    __dbg_printf_on__ = 1;
    lang_load_file(NULL);
    __dbg_printf_on__ = 0;
    CHECK(ftell(stdout) > 0);
    return 0;
}

/* What the trace holds from the mark on, without its times. */
static int check_trace(const char *path)
{
    static const char expected[] = "a\\tb\ng\tnew\\n\\\\\nusr1-1\ng\tnew\\n\\\\\ng\titem\n";
    char line[100], traced[200] = "";
    struct rlimit room, full = {1, 0};
    long begin;
    FILE *file = fopen(path, "r");

    CHECK(file != NULL && fseek(file, 0, SEEK_END) == 0 && (begin = ftell(file)) > 0);
    lang_trace_mark("a\tb");
    lang_get_string("g", "new\n\\");
    lang_get_string("g", "new\n\\");
    raise(SIGUSR1);
    lang_get_string("g", "new\n\\");
    lang_text("g", NAME);
    /* A line that has no room ends the trace, and not the application. */
    getrlimit(RLIMIT_FSIZE, &room);
    full.rlim_max = room.rlim_max;
    setrlimit(RLIMIT_FSIZE, &full);
    lang_trace_mark("full");
    setrlimit(RLIMIT_FSIZE, &room);
    lang_trace_mark("ended");
    fseek(file, begin, SEEK_SET);
    while (fgets(line, sizeof line, file) != NULL) {
        CHECK(strspn(line, "0123456789.") == 17 && line[10] == '.' && line[17] == '\t');
        strcat(traced, line + 18);
    }
    fclose(file);
    remove(path);
    CHECK(strcmp(traced, expected) == 0);
    return 0;
}

int main(int words, char **word)
{
    lang_handle_t *handle;
    FILE *file;
    int result;

    CHECK(words == 2 && atexit(at_end) == 0);
    file = fopen(word[1], "w");
    CHECK(file != NULL);
    fputs("LANGUAGE \"test\" GROUP g text { \"Text\" }", file);
    fclose(file);
    setenv("LANG_TRACE", "langlib_c99.trace", 1);
    handle = lang_new(word[1]);
    CHECK(handle != NULL && handle->loaded == 1 && strcmp(handle->lang[1].value, "Text") == 0);
    lang_debug_print(stdout, handle);
    result = check_requests(handle);
    lang_free(handle, 1);
    result = result != 0 ? result : check_splitter();
    result = result != 0 ? result : check_debug_print(word[1]);
    remove(word[1]);
    mkdir("langlib_c99", 0777);
    file = fopen("langlib_c99/german.lang", "w");
    CHECK(file != NULL);
    fputs("GROUP g \"" NOTES "\" { \"%d Notiz|%d Notizen\" }", file);
    fclose(file);
    result = result != 0 ? result : check_locale("langlib_c99");
    remove("langlib_c99/german.lang");
    remove("langlib_c99");
    result = result != 0 ? result : check_trace("langlib_c99.trace");
    checked = 1;
    return result;
}
