#include "kit/support/languages.h"

#include "lint/item-case.h"
#include "support/string-copy.h"

namespace zel::kit {

bool is_language_name(const std::string &name)
{
    // A slash would lead the language's file into another folder.
    return !name.empty() && name.find('/') == std::string::npos &&
           g_utf8_validate(name.data(), static_cast<gssize>(name.size()), nullptr) == TRUE;
}

lang_t *find_definition(const LangSource *source, const char *name)
{
    for (lang_t *lang : each<lang_t>(source->langs))
        if (lint::same_language(lang->name, name))
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

} // namespace zel::kit
