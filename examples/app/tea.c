/*
 * A small application in its user's language: which teas are on the shelf and how long they steep.
 *
 *     tea TEXTS.lang [name]     the shelf, with a greeting
 *     tea --xml TEXTS.lang      every text of the file as XML
 *
 * It shows each way of asking for a text. Without the file, or with a text missing in it, it speaks
 * English: the items of the requests are its English texts.
 */
#include <lang.h>

#include <stdlib.h>
#include <string.h>

/* clang-format off */
#define ZEL_LANGUAGE_APP "tea" "1.0"
/* clang-format on */

/* A text that has no place of its own in a request: the checker knows it by this name. */
#define NOTHING_LEFT "Nothing is left on the shelf."

struct tea {
    const char *name;
    int minutes;
};

/* A table cannot ask for texts; it marks them for the translator and the loop below asks. */
static const struct tea shelf[] = {
    {lang_dummy("a tea", "teas", "Green tea"), 2},
    {lang_dummy("a tea", "teas", "Black tea"), 4},
    {lang_dummy("a tea", "teas", "Peppermint"), 8},
};

static void print_shelf(void)
{
    size_t i;

    printf("%s\n", lang_get("heading of the list", "shelf",
                            "On the shelf, "
                            "with the minutes that each needs"));
    for (i = 0; i < sizeof shelf / sizeof shelf[0]; ++i) {
        /* The name is not a literal here, so this is not one of the words the checker looks for. */
        const char *name = _lang_get_string("teas", shelf[i].name, __FILE__, __LINE__);

        printf(lang_get_fmt("formater=%25s,%25d", "shelf", "  %s: %d min"), name, shelf[i].minutes);
        printf("\n");
    }
    printf("(%s)\n", lang_tooltip("shelf", "Hot water first, then patience."));
}

/* Texts may name symbols; who greets sets them. */
static void print_greeting(const char *user)
{
    struct zel_list *symbols = lang_sym_set(NULL, "USER", user, 0);
    char *greeting;

    lang_sym_system_set("APP", "Tea 1.0");
    greeting = lang_sym(symbols, "first line", "main", "%APP% greets %USER%, 100%PERCENT% fresh.");
    printf("%s\n", greeting);
    free(greeting);
    lang_sym_free(symbols);
}

/* What went wrong, in the user's language and in the application's own. */
static void print_trouble(void)
{
    struct zel_info_t *record = NULL;

    (void)lang_dummy("an activity", "errors", "Look at the shelf");
    record = lang_get_info(NULL, &record, 1, 7, "errors", "Look at the shelf", NOTHING_LEFT);
    zel_info_fprint(stdout, record);
    zel_info_free(record);
}

/* A second handle beside the process-wide one. */
static void print_farewell(const char *path)
{
    lang_handle_t *texts = lang_new(path);

    printf("%s\n", lang_get_str(texts, "main", "Until the next cup!"));
    printf("%s\n", lang_get_str(texts, "errors", NOTHING_LEFT));
    lang_free(texts, 1);
}

int main(int count, char **words)
{
    const int xml = count > 1 && strcmp(words[1], "--xml") == 0;
    const char *path = count > 1 + xml ? words[1 + xml] : NULL;

    lang_load_file(path);
    if (xml) {
        lang_debug_print(stdout, NULL);
    } else {
        printf("%s\n", lang_get_string("main", "Tea"));
        print_greeting(count > 2 ? words[2] : "you");
        print_shelf();
        print_trouble();
        print_farewell(path);
    }
    lang_de_init();
    return 0;
}
