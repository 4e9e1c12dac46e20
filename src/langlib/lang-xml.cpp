// A handle's texts as XML, for looking at them with other tools.

#include "langlib/lang.h"

#include "langlib/lang-load.h"

#include <glib.h>
#include <memory>
#include <string>

namespace {

struct g_free_string {
    void operator()(char *text) const { g_free(text); }
};
using g_string = std::unique_ptr<char, g_free_string>;

// Characters that no XML document may hold, not even as entities.
bool is_forbidden(gunichar c)
{
    return (c < 0x20 && c != '\t' && c != '\n' && c != '\r') || c == 0xFFFE || c == 0xFFFF;
}

// A copy in which every byte that is no UTF-8, and every forbidden character, has become U+FFFD.
std::string clean_text(const char *text)
{
    constexpr char replacement[] = "\xEF\xBF\xBD";
    constexpr auto incomplete = static_cast<gunichar>(-2);
    std::string clean;
    while (*text != '\0') {
        const gunichar c = g_utf8_get_char_validated(text, -1);
        const bool bad_byte = c >= incomplete;
        const char *next = bad_byte ? text + 1 : g_utf8_next_char(text);
        if (bad_byte || is_forbidden(c))
            clean += replacement;
        else
            clean.append(text, next);
        text = next;
    }
    return clean;
}

// One line; the format holds the text's place.
void print_element(FILE *stream, const char *format, const char *text)
    __attribute__((format(printf, 2, 0)));
void print_element(FILE *stream, const char *format, const char *text)
{
    const g_string line(g_markup_printf_escaped(format, clean_text(text).c_str()));
    std::fputs(line.get(), stream);
}

bool is_empty(const char *text) { return text == nullptr || *text == '\0'; }

void print_entries(FILE *stream, const lang_handle_t *handle)
{
    if (handle->loaded == 0 || handle->lang == nullptr)
        return;
    for (std::int32_t slot = 1; slot < handle->count; ++slot) {
        const lang_text_t &text = handle->lang[slot];
        if (is_empty(text.key) || is_empty(text.value))
            continue;
        std::fputs("    <translation_entry>\n", stream);
        print_element(stream, "      <key>%s</key>\n", text.key);
        print_element(stream, "      <value>%s</value>\n", text.value);
        std::fputs("    </translation_entry>\n", stream);
    }
}

} // namespace

void lang_debug_print(FILE *stream, lang_handle_t *handle)
{
    if (handle == nullptr)
        handle = &lang;
    std::fputs("<translation>\n", stream);
    if (handle->language != nullptr)
        print_element(stream, "  <language>%s</language>\n", handle->language);
    std::fprintf(stream, "  <ctime>%ld</ctime>\n", static_cast<long>(handle->ctime));
    std::fputs("  <translation_list>\n", stream);
    print_entries(stream, handle);
    std::fputs("  </translation_list>\n</translation>\n", stream);
}
