#include "source/entry.h"

#include "support/string-copy.h"

#include <cstring>

namespace zel {

// An entry without a language bears the empty name, but a search for null finds nothing.
lang_entry_t *find_entry(GList *entries, const char *language)
{
    for (lang_entry_t *entry : each<lang_entry_t>(entries))
        if (language != nullptr && std::strcmp(or_empty(entry->lang), language) == 0)
            return entry;
    return nullptr;
}

// The strings hold their line feeds themselves, so they are joined with nothing between.
void append_texts(std::string &out, GList *texts)
{
    for (const char *text : each<char>(texts))
        out += or_empty(text);
}

std::string text_of(const lang_entry_t *entry)
{
    std::string out;
    if (entry != nullptr)
        append_texts(out, entry->texts);
    return out;
}

// The buffer is the caller's, so that a walk over many texts does not allocate for each. The view
// ends with the next change of the buffer or of the text.
std::string_view look_at_text(GList *texts, std::string &buffer)
{
    if (texts == nullptr)
        return {};
    // A text of one string, by far the most frequent, needs no copy.
    if (texts->next == nullptr)
        return view_of(static_cast<const char *>(texts->data));
    buffer.clear();
    append_texts(buffer, texts);
    return buffer;
}

std::string_view without_end(std::string_view text)
{
    while (!text.empty() && is_space(text.back()))
        text.remove_suffix(1);
    return text;
}

std::string reference_text(const LangSource &source, const item_t *item)
{
    std::string text = text_of(find_entry(item->langs, source.default_lang));
    // A blank text tells a translator nothing; the item's name, often the text in the code, does.
    return without_end(text).empty() ? or_empty(item->name) : text;
}

void set_text(lang_entry_t *entry, std::string_view text)
{
    free_lang_entry_text(entry->texts);
    entry->texts = nullptr;
    list_tail lines(entry->texts);
    // One string per line, with its line feed: the source file then shows a change line by line.
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string line(text.substr(0, end == std::string_view::npos ? end : end + 1));
        lines.append(zel_strdup2(line.c_str()));
        text.remove_prefix(line.size());
    }
}

void put_text(GList *&entries, const char *language, std::string_view text)
{
    lang_entry_t *entry = find_entry(entries, language);
    if (entry == nullptr) {
        // Appended at the end: a save then leaves the lines of the other languages where they are.
        entry = alloc_lang_entry(language);
        entries = g_list_append(entries, entry);
    }
    set_text(entry, text);
}

std::string_view description_of(const item_t *item)
{
    // The writer puts "none" for a missing description.
    const std::string_view text = view_of(item->description);
    return text == "none" ? std::string_view() : text;
}

} // namespace zel
