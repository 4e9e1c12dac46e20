#include "editor/toolkit/ui-text.h"

#include "langlib/lang.h"

#include <glib.h>

#include <cstring>

namespace zel {

const char *ui_text(const char *group, const char *item, const char *file, int line)
{
    const char *text = _lang_get_string(group, item, file, line);
    // A translation file is the user's as well, and may be broken: the toolkit would warn and show
    // nothing.
    return g_utf8_validate(text, -1, nullptr) ? text : item;
}

std::string utf8_shown(const char *text)
{
    if (text == nullptr)
        return {};
    if (g_utf8_validate(text, -1, nullptr))
        return text;
    gchar *valid = g_utf8_make_valid(text, -1);
    std::string shown = valid;
    g_free(valid);
    return shown;
}

} // namespace zel
