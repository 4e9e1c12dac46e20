// A handle's texts as XML, for looking at them with other tools. Everything goes straight to the
// stream, so that it needs no memory.

#include "langlib/lang.h"

#include "langlib/lang-rare.h"

#include <glib.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace {

struct entity {
    char character;
    std::string_view text;
};
constexpr std::array entities = {
    entity{'&', "&amp;"},   entity{'<', "&lt;"},   entity{'>', "&gt;"},
    entity{'\'', "&apos;"}, entity{'"', "&quot;"},
};

// Whether GLib's markup formatter writes the character by its number: all control characters but
// the tab, the line ends and the next-line character.
bool is_control(gunichar c)
{
    return (c < 0x20 && c != '\t' && c != '\n' && c != '\r') ||
           (c >= 0x7F && c <= 0x9F && c != 0x85);
}

void print(FILE *stream, std::string_view text) { fwrite(text.data(), 1, text.size(), stream); }

// Returns what stands for a character; empty where it stands for itself. The area holds the text of
// a number.
std::string_view entity_of(gunichar c, char (&area)[16])
{
    for (const entity &one : entities)
        if (c == static_cast<gunichar>(one.character))
            return one.text;
    if (!is_control(c))
        return {};
    return {area, static_cast<std::size_t>(std::snprintf(area, sizeof area, "&#x%x;", c))};
}

// Prints the text as XML character data, in runs that stand for themselves. Each byte that is not
// UTF-8 becomes U+FFFD.
void print_escaped(FILE *stream, const char *text)
{
    constexpr auto incomplete = static_cast<gunichar>(-2);
    char area[16];
    const char *run = text;
    while (*text != '\0') {
        const gunichar c = g_utf8_get_char_validated(text, -1);
        const bool good = c < incomplete;
        const char *next = good ? g_utf8_next_char(text) : text + 1;
        const std::string_view instead = good ? entity_of(c, area) : "\xEF\xBF\xBD";
        if (!instead.empty()) {
            print(stream, {run, static_cast<std::size_t>(text - run)});
            print(stream, instead);
            run = next;
        }
        text = next;
    }
    print(stream, run);
}

// One line: the text between two tags.
void print_element(FILE *stream, std::string_view before, const char *text, std::string_view after)
{
    print(stream, before);
    print_escaped(stream, text);
    print(stream, after);
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
        print(stream, "    <translation_entry>\n");
        print_element(stream, "      <key>", text.key, "</key>\n");
        print_element(stream, "      <value>", text.value, "</value>\n");
        print(stream, "    </translation_entry>\n");
    }
}

} // namespace

void lang_debug_print(FILE *stream, lang_handle_t *handle)
{
    handle = zel::newest_handle(handle);
    print(stream, "<translation>\n");
    if (handle->language != nullptr)
        print_element(stream, "  <language>", handle->language, "</language>\n");
    std::fprintf(stream, "  <ctime>%ld</ctime>\n", static_cast<long>(handle->ctime));
    print(stream, "  <translation_list>\n");
    print_entries(stream, handle);
    print(stream, "  </translation_list>\n</translation>\n");
}
