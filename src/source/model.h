#pragma once

// The language source in memory: a root that owns language definitions and groups; groups own
// items; items own their texts, comments and the places that use them. All lists are GLib lists in
// file order; every record owns its strings and lists, except an item's back pointer. A null
// string counts as empty. Strings are bytes in the file's own encoding.

#include <cstdint>
#include <cstdio>
#include <memory>

#include <glib.h>

#include "support/guard.h"

struct LangSource;

// A language: DEFINE FILE "file" LANG "name" value_1 value_2 edit.
struct lang_t {
    std::int32_t edit;    // not 0: one of the languages being edited
    std::int32_t value_1; // carried through unchanged, 200
    std::int32_t value_2;
    char *name;        // "english"; may be null
    char *file;        // name of the compiled file; may be null
    std::FILE *stream; // open only while the compiler writes this language
};

// One language's text of an item. A text of several lines is several strings.
struct lang_entry_t {
    char *lang;   // language name or null
    GList *texts; // of char *
};

// One translatable text.
struct item_t {
    char *name;             // the key by which applications ask for it
    char *description;      // or null
    std::int32_t rowheight; // in the editor, 20
    std::uint32_t used;     // 1: the application uses it
    std::uint32_t changed;  // 1: marked CHANGED
    std::int32_t ready;     // translation finished
    std::int32_t typ;       // kind of the last request found: 1 text, 2 tooltip
    std::int32_t visible;   // 1
    std::int32_t posnr;     // position number, counted by the editor
    LangSource *source;     // the root that holds it, not owned
    std::int64_t ctime;     // creation, seconds since the epoch
    GList *langs;           // of lang_entry_t: translations
    GList *comments;        // of lang_entry_t
    GList *used_in;         // of char * (a null for an empty string): where it is used
};

// A group of items.
struct edit_t {
    char *name;
    char *screen_shot;    // or null
    std::uint32_t used;   // USED YES 1, plus one per used item while reading; never written
    std::int32_t visible; // 1
    GList *items;         // of item_t
};

// Values of LangSource::format.
enum { LANG_SOURCE_NONE = 0, LANG_SOURCE_ASCII = 1, LANG_SOURCE_UTF8 = 2 };

struct LangSource {
    std::int32_t version;
    std::uint32_t lang_count;      // definitions counted while reading
    std::uint32_t edit_lang_count; // counted definitions being edited
    std::uint32_t item_count;      // items read
    std::uint32_t format;
    std::int32_t colwidth_group; // editor column widths: 200, 200, 300
    std::int32_t colwidth_item;
    std::int32_t colwidth_ctrl;
    std::uint32_t only_used; // set by a caller: the writer leaves out items that are not used
    std::int64_t whatsnew;   // seconds since the epoch, read and written as unsigned 32-bit
    std::int64_t ctime;
    std::int64_t mtime;
    char *app;          // "unknown"
    char *default_lang; // "english"
    GList *langs;       // of lang_t
    GList *groups;      // of edit_t
    char *create_date;  // or null
};

// New records with their defaults; null without memory, nothing is printed.
[[nodiscard]] LangSource *lang_alloc_group();
[[nodiscard]] edit_t *lang_alloc_edit();
[[nodiscard]] item_t *alloc_item();
[[nodiscard]] lang_t *alloc_lang();
[[nodiscard]] lang_entry_t *alloc_lang_entry(const char *lang); // null stays null

// Free a list or record; null is ignored. Those that take an address set the pointer to null.
void free_lang_entry_text(GList *texts);
void free_lang_entry_list(GList *entries);
void free_lang_list(GList *langs); // closes open streams; logs
void free_item(item_t *item);
void free_item_list(GList *items);
void free_edit(edit_t **group);
void lang_free_group(LangSource **source); // logs, also for a null root

using source_guard = std::unique_ptr<LangSource, zel::release_at<lang_free_group>>;
using item_guard = std::unique_ptr<item_t, zel::release<free_item>>;

namespace zel {

// A range over a list's data: for (item_t *item : each<item_t>(group->items)).
template <class T>
struct each {
    explicit each(GList *list) : head(list) {}
    struct iterator {
        GList *node;
        T *operator*() const { return static_cast<T *>(node->data); }
        iterator &operator++()
        {
            node = node->next;
            return *this;
        }
        bool operator!=(const iterator &other) const { return node != other.node; }
    };
    iterator begin() const { return {head}; }
    iterator end() const { return {nullptr}; }

private:
    GList *head;
};

// Appends to a GList in constant time by remembering its last node.
struct list_tail {
    explicit list_tail(GList *&list) : head(&list), last(g_list_last(list)) {}
    void append(void *data)
    {
        GList *added = g_list_alloc();
        added->data = data;
        added->prev = last;
        (last == nullptr ? *head : last->next) = added;
        last = added;
    }

private:
    GList **head;
    GList *last;
};

} // namespace zel
