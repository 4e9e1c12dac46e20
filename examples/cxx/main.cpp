// A C++ program in its user's language, built with CMake.
//
//     shelf [FOLDER]      the folder of the compiled texts; without one, where they are installed.
//                         What is not there comes from the program itself.
#include <lang.hpp>

#include <iostream>

#include "shelf-texts.h" // made by the build

/* clang-format off */
#define ZEL_LANGUAGE_APP "shelf" "1.0"
/* clang-format on */

int main(int count, char **words)
{
    const lang::session texts(count > 1 ? words[1] : SHELF_TEXTS, shelf_texts, shelf_texts_size);
    std::cout << lang_get_string("shelf", "The shelf") << " ("
              << (texts ? texts.locale()->english : "no language") << ")\n";
    for (const int n : {1, 2, 5, 21})
        std::cout << lang::format(lang_count("shelf", "%d book of %s|%d books of %s", n), n, "Ada")
                  << "\n";
}
