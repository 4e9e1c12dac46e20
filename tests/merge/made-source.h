#pragma once

// Made-up sources and random changes of them. The same seed gives the same source; every text that
// a change brings is one that nothing else holds.

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "merge/records.h"
#include "source/model.h"
#include "support/string-copy.h"

namespace zel_test {

class source_maker {
public:
    enum class names { any, once }; // whether a list may have a name twice

    // Texts begin with the mark, so that two makers never make the same one.
    source_maker(unsigned seed, char mark, names how) : rnd_(seed), mark_(mark), how_(how) {}

    source_guard make();
    void change(LangSource &source, int times);

    // All texts that were given so far.
    const std::vector<std::string> &texts() const { return texts_; }

private:
    int below(int count) { return std::uniform_int_distribution<>(0, count - 1)(rnd_); }
    bool chance(int percent) { return below(100) < percent; }
    template <class T>
    T *any(GList *list)
    {
        const auto count = static_cast<int>(g_list_length(list));
        return count == 0
                   ? nullptr
                   : static_cast<T *>(g_list_nth_data(list, static_cast<guint>(below(count))));
    }
    void put_anywhere(GList *&list, void *record)
    {
        list = g_list_insert(list, record, below(static_cast<int>(g_list_length(list)) + 1));
    }
    void move_one(GList *&list)
    {
        if (void *record = any<void>(list)) {
            list = g_list_remove(list, record);
            put_anywhere(list, record);
        }
    }

    // Few names, so that they meet; one is empty, which a reader makes null. The list is where the
    // record that gets the name stands.
    template <class T>
    char *name(const char *of, GList *list)
    {
        for (;;) {
            const int n = below(how_ == names::once ? 40 : 9);
            zel::string_guard made(n == 0 ? nullptr : zel_strdup((of + std::to_string(n)).c_str()));
            bool there = false;
            for (GList *node = list; node != nullptr && how_ == names::once; node = node->next)
                there = there || zel::name_at<T>(node) == zel::view_of(made.get());
            if (!there)
                return made.release();
        }
    }
    std::string text();
    void set_texts(lang_entry_t &entry);
    void add_entry(GList *&entries);
    void set_use(item_t &item);
    item_t *new_item(GList *items);
    edit_t *new_group(GList *groups);
    lang_t *new_language(GList *langs);

    void change_entries(GList *&entries);
    void change_item(item_t &item);
    void change_group(edit_t &group);
    void change_languages(LangSource &source);
    void change_root(LangSource &source);

    std::mt19937 rnd_;
    char mark_;
    names how_;
    std::vector<std::string> texts_;
};

// Sets what a reader counts.
inline void count_as_read(LangSource &source)
{
    source.lang_count = g_list_length(source.langs);
    source.edit_lang_count = 0;
    source.item_count = 0;
    for (const lang_t *lang : zel::each<lang_t>(source.langs))
        source.edit_lang_count += lang->edit != 0 ? 1U : 0U;
    for (edit_t *group : zel::each<edit_t>(source.groups)) {
        group->used = 0;
        for (item_t *item : zel::each<item_t>(group->items)) {
            item->source = &source;
            ++source.item_count;
            group->used += item->used;
        }
    }
}

inline std::string source_maker::text()
{
    texts_.push_back(mark_ + std::to_string(texts_.size()) + ";");
    return texts_.back();
}

inline void source_maker::set_texts(lang_entry_t &entry)
{
    free_lang_entry_text(entry.texts);
    entry.texts = nullptr;
    for (int count = below(4); count > 0; --count)
        entry.texts = g_list_append(
            entry.texts,
            zel_strdup2((chance(15) ? "" : text() + (chance(10) ? "\n" : "")).c_str()));
}

inline void source_maker::add_entry(GList *&entries)
{
    char *lang = name<lang_entry_t>("lang", entries);
    lang_entry_t *entry = alloc_lang_entry(lang);
    std::free(lang);
    set_texts(*entry);
    put_anywhere(entries, entry);
}

inline void source_maker::set_use(item_t &item)
{
    g_list_free_full(item.used_in, std::free);
    item.used_in = nullptr;
    item.used = chance(70) ? 1 : 0;
    for (int count = item.used != 0 ? below(4) : 0; count > 0; --count)
        item.used_in = g_list_append(item.used_in,
                                     zel_strdup(("00100:file" + std::to_string(below(9))).c_str()));
}

inline item_t *source_maker::new_item(GList *items)
{
    item_t *item = alloc_item();
    item->name = name<item_t>("item", items);
    item->description = zel_strdup(chance(50) ? "none" : text().c_str());
    item->typ = below(3);
    item->ready = below(2);
    item->ctime = 1700000000 + below(3);
    set_use(*item);
    for (int count = below(4); count > 0; --count)
        add_entry(item->langs);
    for (int count = below(2); count > 0; --count)
        add_entry(item->comments);
    return item;
}

inline edit_t *source_maker::new_group(GList *groups)
{
    edit_t *group = lang_alloc_edit();
    group->name = name<edit_t>("group", groups);
    for (int count = below(6); count > 0; --count)
        put_anywhere(group->items, new_item(group->items));
    return group;
}

inline lang_t *source_maker::new_language(GList *langs)
{
    lang_t *lang = alloc_lang();
    lang->name = name<lang_t>("lang", langs);
    lang->file = zel_strdup(text().c_str());
    lang->edit = below(2);
    return lang;
}

inline source_guard source_maker::make()
{
    source_guard source(lang_alloc_group());
    source->format = LANG_SOURCE_UTF8;
    source->ctime = source->mtime = source->whatsnew = 1700000000;
    for (int count = below(4); count > 0; --count)
        put_anywhere(source->langs, new_language(source->langs));
    for (int count = below(6); count > 0; --count)
        put_anywhere(source->groups, new_group(source->groups));
    count_as_read(*source);
    return source;
}

inline void source_maker::change_entries(GList *&entries)
{
    auto *entry = any<lang_entry_t>(entries);
    const int what = below(10);
    if (entry == nullptr || what < 2) {
        add_entry(entries);
    } else if (what < 3) {
        entries = g_list_remove(entries, entry);
        free_lang_entry_list(g_list_prepend(nullptr, entry));
    } else if (what < 4) {
        zel::replace_string(entry->lang, name<lang_entry_t>("lang", entries));
    } else if (what < 5) {
        move_one(entries);
    } else if (what < 6) { // cut into other strings
        entry->texts = g_list_insert(entry->texts, zel_strdup2(""), below(2));
    } else {
        set_texts(*entry);
    }
}

inline void source_maker::change_item(item_t &item)
{
    switch (below(12)) {
    case 0:
        zel::replace_string(item.description, zel_strdup(text().c_str()));
        break;
    case 1:
        item.typ = below(3);
        break;
    case 2:
        item.rowheight = 20 + below(3);
        break;
    case 3:
        item.visible = below(2);
        break;
    case 4:
        item.ready = below(3);
        break;
    case 5:
        item.changed = 1;
        break;
    case 6:
        set_use(item);
        break;
    case 7:
        item.ctime += below(100);
        break;
    case 8:
        change_entries(item.comments);
        break;
    default:
        change_entries(item.langs);
    }
}

inline void source_maker::change_group(edit_t &group)
{
    auto *item = any<item_t>(group.items);
    const int what = below(12);
    if (item == nullptr || what < 2) {
        put_anywhere(group.items, new_item(group.items));
    } else if (what < 3) {
        group.items = g_list_remove(group.items, item);
        free_item(item);
    } else if (what < 4) {
        zel::replace_string(item->name, name<item_t>("item", group.items));
    } else if (what < 5) {
        move_one(group.items);
    } else if (what < 6) {
        zel::replace_string(group.screen_shot, zel_strdup(text().c_str()));
    } else {
        change_item(*item);
    }
}

inline void source_maker::change_languages(LangSource &source)
{
    auto *lang = any<lang_t>(source.langs);
    const int what = below(6);
    if (lang == nullptr || what < 2) {
        put_anywhere(source.langs, new_language(source.langs));
    } else if (what < 3) {
        source.langs = g_list_remove(source.langs, lang);
        free_lang_list(g_list_prepend(nullptr, lang));
    } else if (what < 4) { // renamed everywhere
        char *old_name = std::exchange(lang->name, name<lang_t>("lang", source.langs));
        for (edit_t *group : zel::each<edit_t>(source.groups))
            for (item_t *item : zel::each<item_t>(group->items))
                for (lang_entry_t *entry : zel::each<lang_entry_t>(item->langs))
                    if (how_ == names::any && g_strcmp0(entry->lang, old_name) == 0)
                        zel::replace_string(entry->lang, zel_strdup(lang->name));
        std::free(old_name);
    } else if (what < 5) {
        move_one(source.langs);
    } else {
        lang->value_1 = below(3);
        lang->edit = below(2);
    }
}

inline void source_maker::change_root(LangSource &source)
{
    switch (below(5)) {
    case 0:
        zel::replace_string(source.app, zel_strdup(text().c_str()));
        break;
    case 1:
        source.colwidth_item = 200 + below(3);
        break;
    case 2:
        source.ctime += below(1000);
        zel::replace_string(source.create_date, zel_strdup(std::to_string(source.ctime).c_str()));
        break;
    case 3:
        source.mtime += below(1000);
        break;
    default:
        change_languages(source);
    }
}

inline void source_maker::change(LangSource &source, int times)
{
    for (; times > 0; --times) {
        auto *group = any<edit_t>(source.groups);
        const int what = below(20);
        if (group == nullptr || what < 2) {
            put_anywhere(source.groups, new_group(source.groups));
        } else if (what < 3) {
            source.groups = g_list_remove(source.groups, group);
            free_edit(&group);
        } else if (what < 4) {
            move_one(source.groups);
        } else if (what < 5) {
            zel::replace_string(group->name, name<edit_t>("group", source.groups));
        } else if (what < 8) {
            change_root(source);
        } else {
            change_group(*group);
        }
    }
    count_as_read(source);
}

} // namespace zel_test
