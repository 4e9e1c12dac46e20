/* A C program in its user's language, built with make.
 *
 *     count FOLDER WORD...      the folder of the compiled texts; the words are counted */
#include <lang-locale.h>

/* clang-format off */
#define ZEL_LANGUAGE_APP "count" "1.0"
/* clang-format on */

int main(int count, char **words)
{
    const int n = count < 2 ? 0 : count - 2;

    lang_locale_load(count > 1 ? words[1] : NULL);
    printf(lang_count("count", "%d word|%d words", n), n);
    printf("\n%s\n", lang_get_string("count", "Done."));
    lang_de_init();
    return 0;
}
