// A C++ program in its user's language, built with CMake.
//
//     shelf [FOLDER]      the folder of the compiled texts; without one, where they are installed
#include <lang-locale.h>

#include <cstdio>
#include <iostream>

/* clang-format off */
#define ZEL_LANGUAGE_APP "shelf" "1.0"
/* clang-format on */

int main(int count, char **words)
{
    const lang_locale_t *taken = lang_locale_load(count > 1 ? words[1] : SHELF_TEXTS);
    std::cout << lang_get_string("shelf", "The shelf") << " ("
              << (taken != nullptr ? taken->english : "no language") << ")" << std::endl;
    for (const int n : {1, 2, 5, 21}) {
        // Whatever a translation holds, printf gets a format for a number and a string.
        std::printf(lang_count("shelf", "%d book of %s|%d books of %s", n), n, "Ada");
        std::printf("\n");
    }
    lang_de_init();
}
