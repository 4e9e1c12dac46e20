#include "exchange/entries.h"

#include "support/string-copy.h"

#include <cstring>

namespace zel::exchange {

std::string_view description_of(const item_t *item)
{
    const std::string_view text = or_empty(item->description);
    return text == "none" ? std::string_view() : text;
}

void append_lines(std::string &out, GList *lines)
{
    for (const char *line : each<char>(lines))
        if (line != nullptr)
            out += line;
}

lang_entry_t *find_entry(GList *entries, const char *language)
{
    for (lang_entry_t *entry : each<lang_entry_t>(entries))
        if (entry->lang != nullptr && language != nullptr &&
            std::strcmp(entry->lang, language) == 0)
            return entry;
    return nullptr;
}

std::string reference_text(const LangSource &source, const item_t *item)
{
    std::string text;
    if (const lang_entry_t *entry = find_entry(item->langs, source.default_lang))
        append_lines(text, entry->texts);
    if (text.empty())
        text = or_empty(item->name);
    return text;
}

void put_text(GList *&entries, const char *language, std::string_view text)
{
    lang_entry_t *entry = find_entry(entries, language);
    if (entry == nullptr) {
        entry = alloc_lang_entry(language);
        entries = g_list_append(entries, entry);
    }
    set_text(entry, text);
}

void set_text(lang_entry_t *entry, std::string_view text)
{
    free_lang_entry_text(entry->texts);
    entry->texts = nullptr;
    list_tail lines(entry->texts);
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string line(text.substr(0, end == std::string_view::npos ? end : end + 1));
        lines.append(zel_strdup2(line.c_str()));
        text.remove_prefix(line.size());
    }
}

} // namespace zel::exchange
