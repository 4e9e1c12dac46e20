#include "kit/languages.h"

#include "merge/fields.h"
#include "support/string-copy.h"
#include "support/text.h"

namespace zel::kit {

bool is_language_name(const std::string &name)
{
    return !name.empty() && name.find('/') == std::string::npos &&
           g_utf8_validate(name.data(), static_cast<gssize>(name.size()), nullptr) == TRUE;
}

bool is_same_language(const char *a, const char *b)
{
    return compare_nocase(or_empty(a), or_empty(b)) == 0;
}

lang_t *find_definition(const LangSource *source, const char *name)
{
    for (lang_t *lang : each<lang_t>(source->langs))
        if (is_same_language(lang->name, name))
            return lang;
    return nullptr;
}

lang_t *add_definition(LangSource *source, const std::string &name)
{
    lang_t *lang = alloc_lang();
    lang->name = zel_strdup(name.c_str());
    lang->file = zel_strdup((name + ".lang").c_str());
    ++source->lang_count;
    source->langs = g_list_append(source->langs, lang);
    return lang;
}

lang_entry_t *find_text(GList *entries, const char *language)
{
    for (lang_entry_t *entry : each<lang_entry_t>(entries))
        if (is_same_language(entry->lang, language))
            return entry;
    return nullptr;
}

void set_text(item_t *item, const char *language, std::string_view text)
{
    lang_entry_t *entry = find_text(item->langs, language);
    if (entry == nullptr) {
        entry = alloc_lang_entry(language);
        item->langs = g_list_append(item->langs, entry);
    }
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

std::string reference_text(const item_t *item, const char *default_language)
{
    const lang_entry_t *entry = find_text(item->langs, default_language);
    if (entry == nullptr)
        return or_empty(item->name);
    std::string text;
    append_texts(text, entry->texts);
    return text;
}

} // namespace zel::kit
