#include "source/misc.h"

#include "source/entry.h"
#include "support/log-print.h"
#include "support/text.h"

#include <array>
#include <cstring>
#include <unistd.h>

namespace {

constexpr std::size_t searched_bytes = 4191; // of a line; the rest of a longer one is not searched

bool is_blank_line(const char *line)
{
    for (; line != nullptr && *line != '\0'; ++line)
        if (!zel::is_space(*line))
            return false;
    return true;
}

} // namespace

lang_entry_t *misc_select_lang_entry(item_t *item, const char *lang)
{
    return item == nullptr ? nullptr : zel::find_entry(item->langs, lang);
}

int misc_select_edit_lang(LangSource *source, const char **first, const char **second)
{
    if (source == nullptr || first == nullptr || second == nullptr)
        return 1;
    *first = nullptr;
    *second = nullptr;
    const char **out = first;
    for (const lang_t *lang : zel::each<lang_t>(source->langs)) {
        if (lang->edit == 0)
            continue;
        *out = lang->name;
        if (out == second)
            break;
        out = second;
    }
    return 0;
}

void misc_remove_empty_lines(lang_entry_t *entry)
{
    if (entry == nullptr)
        return;
    // Lines are emptied, not removed, from the end up to the last line with text. That one loses
    // the blanks at its end.
    for (GList *node = g_list_last(entry->texts); node != nullptr; node = node->prev) {
        char *line = static_cast<char *>(node->data);
        if (line == nullptr)
            continue;
        std::size_t length = std::strlen(line);
        while (length > 0 && zel::is_space(line[length - 1]))
            --length;
        line[length] = '\0';
        if (length > 0)
            return;
    }
}

int misc_search_in_lang_entry(lang_entry_t *entry, const char *needle)
{
    if (entry == nullptr || needle == nullptr)
        return 0;
    // Each line is searched by itself, so a word that runs into the next line is not found. Only
    // the lines are put into lower case: the caller has done that with the needle.
    std::array<char, searched_bytes + 1> lower;
    for (const char *line : zel::each<char>(entry->texts)) {
        if (line == nullptr)
            continue;
        const std::size_t length = strnlen(line, searched_bytes);
        for (std::size_t i = 0; i < length; ++i)
            lower[i] = static_cast<char>(zel::lower(line[i]));
        lower[length] = '\0';
        if (g_strstr_len(lower.data(), static_cast<gssize>(length), needle) != nullptr)
            return 1;
    }
    return 0;
}

int misc_search_empty_in_lang_entry(lang_entry_t *entry)
{
    if (entry == nullptr)
        return 1;
    for (const char *line : zel::each<char>(entry->texts))
        if (!is_blank_line(line))
            return 0;
    return 1;
}

void lang_check_utf8(const char *file, int position, const char *label, const char *text)
{
    if (text == nullptr || g_utf8_validate(text, -1, nullptr))
        return;
    const char *where = file == nullptr ? " " : file;
    const char *what = label == nullptr ? " " : label;
    LogPrint(1, "INFO: %s: pos=%d invalid utf8 %s >%s<\n", where, position, what, text);
    std::printf("INFO: %s: pos=%d invalid utf8 %s >%s<\n", where, position, what, text);
    std::fflush(stdout);
}

int LangIsUserAdmin() { return getuid() == 0 ? 1 : 0; }
