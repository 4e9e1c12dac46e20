#include "source/lang-import.h"

#include "langlib/compiled-file.h"
#include "langlib/lang.h"
#include "source/misc.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/string.h"
#include "support/text.h"

#include <cstdlib>
#include <cstring>

namespace {

int refuse(int result, const char *message)
{
    LogPrint(1, "%s", message);
    return result;
}

int check(const LangSource *source, const lang_handle_t *handle)
{
    // Numbers and texts are an interface: callers tell the cases apart by the number.
    if (source == nullptr)
        return refuse(1, "lang_import: ERROR Group null ptr\n");
    if (handle == nullptr)
        return refuse(2, "lang_import: ERROR Lang null ptr\n");
    if (handle->lang == nullptr)
        return refuse(3, "lang_import: ERROR Lang->lang null ptr\n");
    if (handle->language == nullptr)
        return refuse(4, "lang_import: ERROR Lang->language null ptr\n");
    return 0;
}

bool defines(const LangSource *source, const char *language)
{
    for (const lang_t *lang : zel::each<lang_t>(source->langs)) {
        dbg_printf("lang_desc >%s<\n", zel::or_empty(lang->name));
        if (lang->name != nullptr && std::strcmp(lang->name, language) == 0) {
            dbg_printf("language ->%s< exist\n", language);
            return true;
        }
    }
    return false;
}

void define(LangSource *source, const char *language)
{
    zel::string_guard name(zel_strdup(language));
    zel::string_guard file(zel_strdup_printf("%s%s", language, zel::compiled_ending));
    lang_t *lang = name == nullptr || file == nullptr ? nullptr : alloc_lang();
    if (lang == nullptr)
        // Without memory the language stays undefined; its texts are imported all the same.
        return;
    lang->name = name.release();
    lang->file = file.release();
    source->langs = g_list_append(source->langs, lang);
}

// Copies first: without memory the item keeps the text that it has.
void set_text(item_t *item, const char *language, const char *text)
{
    zel::string_guard copy(zel_strdup(text));
    if (copy == nullptr)
        return;
    lang_entry_t *entry = misc_select_lang_entry(item, language);
    if (entry != nullptr) {
        dbg_printf("      found, replace\n");
        free_lang_entry_text(entry->texts);
        entry->texts = nullptr;
    } else {
        // The doubled word is deliberate: the text is an interface.
        dbg_printf("      not found found, append\n");
        entry = alloc_lang_entry(language);
        if (entry == nullptr)
            return;
        item->langs = g_list_append(item->langs, entry);
    }
    entry->texts = g_list_append(nullptr, copy.release());
}

void import_item(const edit_t *group, item_t *item, lang_handle_t *handle)
{
    if (item->name == nullptr)
        dbg_printf("  item UNKNOWN\n");
    else
        dbg_printf("  item >%s<\n", item->name);
    // Nothing without a name is ever found: the look-up would take null for the empty name.
    const bool named = group->name != nullptr && item->name != nullptr;
    std::int32_t found = 0;
    const char *text =
        named ? __lang_get_str(handle, group->name, item->name, &found, __FILE__, __LINE__)
              : nullptr;
    dbg_printf("    text >%s:%s< >%s<\n", zel::or_empty(group->name), zel::or_empty(item->name),
               zel::or_empty(text));
    // The handle is one of lang_import_new, so null means that the text is not translated.
    if (text != nullptr)
        set_text(item, handle->language, text);
}

} // namespace

int lang_import(LangSource *source, lang_handle_t *handle)
{
    if (const int refused = check(source, handle))
        return refused;
    dbg_printf("lang->languages >%s<\n", handle->language);
    if (!defines(source, handle->language))
        define(source, handle->language);
    for (const edit_t *group : zel::each<edit_t>(source->groups)) {
        if (group->name == nullptr)
            dbg_printf("group UNKNOWN\n");
        else
            dbg_printf("group >%s<\n", group->name);
        for (item_t *item : zel::each<item_t>(group->items))
            import_item(group, item, handle);
    }
    return 0;
}
