#include "source/model.h"

#include "support/log-print.h"
#include "support/string-copy.h"

#include <cstdlib>

namespace {

// A record that finds no memory is counted, so that a reader knows that something is missing.
template <class T>
T *alloc_zeroed()
{
    auto *record = static_cast<T *>(std::calloc(1, sizeof(T)));
    if (record == nullptr)
        zel::copy_failed();
    return record;
}

// In step with alloc_lang_entry: the entry itself is a slice, its strings are from malloc.
void free_lang_entry(void *data)
{
    auto *entry = static_cast<lang_entry_t *>(data);
    std::free(entry->lang);
    free_lang_entry_text(entry->texts);
    g_slice_free(lang_entry_t, entry);
}

void free_lang(void *data)
{
    auto *lang = static_cast<lang_t *>(data);
    std::free(lang->name);
    std::free(lang->file);
    // Still open only if nobody called close_lang_files after open_lang_files.
    if (lang->stream != nullptr)
        std::fclose(lang->stream);
    std::free(lang);
}

} // namespace

LangSource *lang_alloc_group()
{
    source_guard source(alloc_zeroed<LangSource>());
    if (!source)
        return nullptr;
    // The guard releases the half-made root if one of the two copies below finds no memory.
    source->colwidth_group = 200;
    source->colwidth_item = 200;
    source->colwidth_ctrl = 300;
    // The same words that the writer puts for a missing value. zel_strdup would print without
    // memory.
    source->app = zel_strdup2("unknown");
    source->default_lang = zel_strdup2("english");
    return source->app != nullptr && source->default_lang != nullptr ? source.release() : nullptr;
}

edit_t *lang_alloc_edit()
{
    auto *group = alloc_zeroed<edit_t>();
    if (group != nullptr)
        group->visible = 1;
    return group;
}

item_t *alloc_item()
{
    auto *item = alloc_zeroed<item_t>();
    if (item != nullptr) {
        item->rowheight = 20;
        item->visible = 1;
    }
    return item;
}

lang_t *alloc_lang()
{
    auto *lang = alloc_zeroed<lang_t>();
    if (lang != nullptr) {
        lang->value_1 = 200;
        lang->value_2 = 200;
    }
    return lang;
}

lang_entry_t *alloc_lang_entry(const char *lang)
{
    char *name = zel_strdup2(lang);
    if (name == nullptr && lang != nullptr)
        return nullptr;
    // Entries outnumber every other record and are two pointers each: a slice holds just that.
    auto *entry = g_slice_new0(lang_entry_t);
    entry->lang = name;
    return entry;
}

void free_lang_entry_text(GList *texts) { g_list_free_full(texts, std::free); }

void free_lang_entry_list(GList *entries) { g_list_free_full(entries, free_lang_entry); }

void free_lang_list(GList *langs)
{
    LogPrint(1, "free_lang_list: entry\n");
    g_list_free_full(langs, free_lang);
    LogPrint(1, "free_lang_list: exit\n");
}

void free_item(item_t *item)
{
    if (item == nullptr)
        return;
    std::free(item->name);
    std::free(item->description);
    free_lang_entry_list(item->langs);
    free_lang_entry_list(item->comments);
    g_list_free_full(item->used_in, std::free);
    std::free(item);
}

void free_item_list(GList *items)
{
    g_list_free_full(items, [](void *item) { free_item(static_cast<item_t *>(item)); });
}

void free_edit(edit_t **group)
{
    if (group == nullptr || *group == nullptr)
        return;
    free_item_list((*group)->items);
    std::free((*group)->name);
    std::free((*group)->screen_shot);
    std::free(*group);
    *group = nullptr;
}

void lang_free_group(LangSource **source)
{
    LogPrint(1, "lang_free_group: entry\n");
    if (source != nullptr && *source != nullptr) {
        LangSource *root = *source;
        *source = nullptr;
        free_lang_list(root->langs);
        for (edit_t *group : zel::each<edit_t>(root->groups))
            free_edit(&group);
        g_list_free(root->groups);
        std::free(root->app);
        std::free(root->default_lang);
        std::free(root->create_date);
        std::free(root);
    }
    LogPrint(1, "lang_free_group: exit\n");
}
