// The public headers alone, as C++ of an older standard, against the static library, in a program
// with names that the library uses inside.
#include <lang-locale.h>

#include <cstdlib>
#include <cstring>

int lang = 1;
const char *log_init = "mine";

static bool checked;

int main()
{
    std::atexit([] { // a library that ends the process does not pass
        if (!checked)
            std::_Exit(1);
    });
    const char *text = lang_get("note", "g",
                                "in two "
                                "parts");
    char *owned = lang_sym(nullptr, "note", "g", "%PERCENT%");
    const char *counted = lang_count("g", "%d|%d.", 2L);
    const char *fitting = lang_format_or(lang_plural("%d|%d.", 1), "%d");
    const bool good =
        std::strcmp(counted, "%d.") == 0 && std::strcmp(lang_text("g", "%s"), "%s") == 0 &&
        std::strcmp(fitting, "%d") == 0 && std::strcmp(text, "in two parts") == 0 &&
        std::strcmp(owned, "%PERCENT%") == 0 && lang == 1 && std::strcmp(log_init, "mine") == 0;
    std::free(owned);
    lang_de_init();
    checked = true;
    return good ? 0 : 1;
}
