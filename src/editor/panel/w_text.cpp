#include "editor/panel/w_text.h"

#include "app/global.h"
#include "editor/panel/w_text_below.h"
#include "editor/panel/w_text_build.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/operation.h"
#include "editor/toolkit/text-places.h"
#include "editor/toolkit/theme.h"
#include "editor/toolkit/ui-text.h"
#include "source/entry.h"
#include "source/misc.h"
#include "support/log-print.h"
#include "support/string-copy.h"

#include <cstring>
#include <string>

namespace {

using zel::buffer_of;
using zel::field_order;
using zel::field_t;
using zel::fields;

void append_text(GtkWidget *view, const char *text)
{
    GtkTextBuffer *buffer = buffer_of(view);
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer, &end);
    // A source may hold any bytes, and the toolkit takes UTF-8 only. A text that nobody types in is
    // never stored from here, so its bytes are safe.
    gtk_text_buffer_insert(buffer, &end, zel::utf8_shown(text).c_str(), -1);
}

bool shows_nothing(GtkTextBuffer *buffer)
{
    GtkTextIter at;
    gtk_text_buffer_get_start_iter(buffer, &at);
    while (!gtk_text_iter_is_end(&at) && g_unichar_isspace(gtk_text_iter_get_char(&at)))
        gtk_text_iter_forward_char(&at);
    return gtk_text_iter_is_end(&at);
}

void zel_text_changed(GtkTextBuffer *, gpointer dirty)
{
    // The panel itself fills the field: that is no edit.
    if (lang_global.text_lock != 0)
        return;
    *static_cast<int *>(dirty) = 1;
    zel::edit_set_modified(true);
}

void instance_init(GTypeInstance *instance, gpointer)
{
    Zeltext *text = ZEL_TEXT(instance);
    zel::build_text_panel(text);
    for (int number = 0; number < TEXT_FIELDS; ++number)
        g_signal_connect(buffer_of(text->*fields[number].view), "changed",
                         G_CALLBACK(zel_text_changed), &text->dirty[number]);
}

gpointer parent_class;

void finalize(GObject *object)
{
    Zeltext *text = ZEL_TEXT(object);
    zel::replace_string(text->group_name, nullptr);
    zel::replace_string(text->item_name, nullptr);
    G_OBJECT_CLASS(parent_class)->finalize(object);
}

void class_init(gpointer klass, gpointer)
{
    parent_class = g_type_class_peek_parent(klass);
    G_OBJECT_CLASS(klass)->finalize = finalize;
}

// Empties the panel. text_lock stays set as long as it is empty: what happens to the hidden views
// is no edit.
void show_nothing(Zeltext *text)
{
    text->lang_source = nullptr;
    text->item = nullptr;
    if (text->used_in_view != nullptr) {
        gtk_widget_hide(text->used_in_view);
        clear_text_view_buffer(text->used_in_view);
    }
    for (const field_t &field : fields) {
        gtk_widget_hide(text->*field.view);
        clear_text_view_buffer(text->*field.view);
    }
    zel::text_below_show(text);
    gtk_label_set_text(GTK_LABEL(text->description_label), "");
    gtk_entry_set_text(GTK_ENTRY(text->name_entry), "");
    if (text->name_edit_entry != nullptr)
        gtk_entry_set_text(GTK_ENTRY(text->name_edit_entry), "");
}

void show_used_in(Zeltext *text)
{
    if (text->used_in_view == nullptr)
        return;
    gtk_widget_show(text->used_in_view);
    clear_text_view_buffer(text->used_in_view);
    for (const char *place : zel::each<char>(text->item->used_in)) {
        lang_check_utf8(nullptr, text->pos, "used_in", place);
        append_text(text->used_in_view, place);
        append_text(text->used_in_view, "\n");
    }
}

// Binds the field to the item's entry of the language, which is made when there is none.
void bind_entry(Zeltext *text, int number, const char *lang)
{
    GList *&entries = text->item->*fields[number].entries;
    lang_entry_t *entry = zel_get_lang_entry(entries, lang);
    // Such an entry must not get into a file: see drop_made_entry.
    text->made[number] = entry == nullptr;
    if (entry == nullptr) {
        entry = alloc_lang_entry(lang);
        if (entry != nullptr)
            entries = g_list_append(entries, entry);
    }
    text->*fields[number].entry = entry;
}

// Removes the field's entry from the item again, when it was made only to show the item and is
// still empty.
void drop_made_entry(Zeltext *text, int number)
{
    const lang_entry_t *entry = text->*fields[number].entry;
    if (text->made[number] == 0 || entry == nullptr || entry->texts != nullptr)
        return;
    GList *&entries = text->item->*fields[number].entries;
    GList *link = g_list_find(entries, entry);
    entries = g_list_remove_link(entries, link);
    // Where both edited languages have one name, the other field shows the same entry.
    for (const field_t &field : fields)
        if (text->*field.entry == entry)
            text->*field.entry = nullptr;
    free_lang_entry_list(link);
}

// Setting a label's text lays out the window, also when it is the same.
void set_label(GtkWidget *label, const char *shown)
{
    if (std::strcmp(gtk_label_get_text(GTK_LABEL(label)), shown) != 0)
        gtk_label_set_text(GTK_LABEL(label), shown);
}

void show_field(Zeltext *text, int number, const char *lang)
{
    const field_t &field = fields[number];
    GtkWidget *view = text->*field.view;
    std::string caption = zel::ui_text("text", field.caption);
    caption += " \"" + zel::utf8_shown(lang) + "\"";
    set_label(text->*field.label, caption.c_str());
    zel::set_accessible_name(view, caption.c_str());

    zel_insert_lang(view, lang, text->item->*field.entries);
    bind_entry(text, number, lang);
    gtk_widget_show(view);
}

void show_language(Zeltext *text, GtkWidget *frame, int comment, int trans, const char *lang)
{
    if (lang == nullptr) {
        gtk_widget_hide(frame);
        for (const int number : {comment, trans}) {
            gtk_label_set_text(GTK_LABEL(text->*fields[number].label), "");
            gtk_widget_hide(text->*fields[number].view);
        }
        return;
    }
    show_field(text, comment, lang);
    show_field(text, trans, lang);
    gtk_widget_show(frame);
}

void show_identity(Zeltext *text)
{
    const std::string description = zel::utf8_shown(text->item->description);
    set_label(text->description_label, description.c_str());
    zel::show_faint(text->description_label, description == "none");
    gtk_widget_set_tooltip_text(text->description_label,
                                description.empty() ? nullptr : description.c_str());

    zel::replace_string(text->item_name, zel_strdup(text->item->name));
    const std::string name = zel::utf8_shown(text->item_name);
    std::string identity;
    if (text->item_name != nullptr && text->group_name != nullptr)
        identity = "(" + std::to_string(text->pos) + ")  " + zel::utf8_shown(text->group_name) +
                   ":" + name;
    else if (text->item_name != nullptr)
        identity = "unknown group:" + name;
    gtk_entry_set_text(GTK_ENTRY(text->name_entry), identity.c_str());
    if (text->name_edit_entry != nullptr)
        gtk_entry_set_text(GTK_ENTRY(text->name_edit_entry), name.c_str());
}

void show_item(Zeltext *text)
{
    const char *lang1 = nullptr;
    const char *lang2 = nullptr;
    misc_select_edit_lang(text->lang_source, &lang1, &lang2);
    show_used_in(text);
    // Cleared first: a field of a language that is not shown any more keeps no text of the item
    // before.
    for (const field_t &field : fields)
        clear_text_view_buffer(text->*field.view);
    show_language(text, text->lang1_frame, TEXT_COMMENT1, TEXT_TRANS1, lang1);
    show_language(text, text->lang2_frame, TEXT_COMMENT2, TEXT_TRANS2, lang2);
    zel::text_below_show(text);
    show_identity(text);
}

// Drops blank lines at the end of the text, and then the line end of its last line.
GList *trim_lines(GList *lines)
{
    for (GList *last = g_list_last(lines); last != nullptr; last = g_list_last(lines)) {
        char *line = static_cast<char *>(last->data);
        if (line[std::strspn(line, " \t\n\v\f\r")] != '\0') {
            line[std::strcspn(line, "\n\r")] = '\0';
            break;
        }
        zel::free_string(line);
        lines = g_list_delete_link(lines, last);
    }
    return lines;
}

void store(Zeltext *text)
{
    bool written = false;
    for (const int number : field_order) {
        const field_t &field = fields[number];
        // A field that nobody typed in is not stored: the view may show other bytes than the source
        // has.
        if (text->*field.entry == nullptr || text->dirty[number] == 0)
            continue;
        LogPrint(1, "%s", field.log);
        zel_get_text(text->*field.view, text->*field.entry);
        written = true;
    }
    if (written && text->item != nullptr)
        text->item->changed = 1;
}

void leave_item(Zeltext *text, int update)
{
    LogPrint(1, "zel_text_set: entry\n");
    lang_global.text_lock = 1;
    // Before the fields are bound to the new item: what was typed belongs to the entries of the old
    // one.
    if (update != 0)
        store(text);
    for (int number = 0; number < TEXT_FIELDS; ++number) {
        drop_made_entry(text, number);
        text->*fields[number].entry = nullptr;
    }
}

void show(Zeltext *text, LangSource *source, item_t *item, int update)
{
    leave_item(text, update);
    if (source == nullptr || item == nullptr) {
        show_nothing(text);
        return;
    }
    text->lang_source = source;
    text->item = item;
    show_item(text);
    // Cleared only now: storing the item before has asked for them.
    for (int &dirty : text->dirty)
        dirty = 0;
    LogPrint(1, "zel_text_set: exit\n");
    lang_global.text_lock = 0;
}

template <class Operation>
int on_panel(GtkWidget *widget, const char *name, Operation operation)
{
    return zel::operate<Zeltext>(widget, ZEL_TYPE_TEXT, "ZEL_IS_TEXT(widget)", name, operation);
}

} // namespace

GType zel_text_get_type()
{
    static GType type = 0;
    if (type != 0)
        return type;
    GTypeInfo info{};
    info.class_size = sizeof(ZeltextClass);
    info.class_init = class_init;
    info.instance_size = sizeof(Zeltext);
    info.instance_init = instance_init;
    type = g_type_register_static(GTK_TYPE_FRAME, "Zeltext", &info, GTypeFlags{});
    return type;
}

GtkWidget *zel_text_new() { return GTK_WIDGET(g_object_new(ZEL_TYPE_TEXT, nullptr)); }

int zel_text_set_pos(GtkWidget *widget, int pos)
{
    return on_panel(widget, __func__, [pos](Zeltext *text) { text->pos = pos; });
}

int zel_text_set_group_name(GtkWidget *widget, const char *name)
{
    return on_panel(widget, __func__, [name](Zeltext *text) {
        zel::replace_string(text->group_name, zel_strdup2(name));
    });
}

int zel_text_set(GtkWidget *widget, LangSource *source, item_t *item, int update)
{
    return on_panel(widget, __func__, [=](Zeltext *text) { show(text, source, item, update); });
}

int zel_text_update(GtkWidget *widget) { return on_panel(widget, __func__, store); }

lang_entry_t *zel_insert_lang(GtkWidget *view, const char *lang, GList *entries)
{
    lang_entry_t *entry = zel_get_lang_entry(entries, lang);
    if (entry == nullptr)
        return nullptr;
    for (const char *line : zel::each<char>(entry->texts)) {
        if (line == nullptr || *line == '\0')
            continue;
        LogPrint(1, "zel_insert_text: ->%s<-\n", line);
        lang_check_utf8(nullptr, 0, lang, line);
        append_text(view, line);
    }
    return entry;
}

void zel_get_text(GtkWidget *view, lang_entry_t *entry)
{
    free_lang_entry_text(entry->texts);
    entry->texts = nullptr;
    zel::list_tail tail(entry->texts);
    for (const std::string &line : zel::buffer_lines(buffer_of(view)))
        tail.append(zel_strdup2(line.c_str()));
    entry->texts = trim_lines(entry->texts);
}

void clear_text_view_buffer(GtkWidget *view)
{
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(buffer_of(view), &start, &end);
    gtk_text_buffer_delete(buffer_of(view), &start, &end);
}

lang_entry_t *zel_get_lang_entry(GList *entries, const char *lang)
{
    return zel::find_entry(entries, lang);
}

GList *zel_get_lang_list(GList *entries, const char *lang)
{
    const lang_entry_t *entry = zel_get_lang_entry(entries, lang);
    return entry == nullptr ? nullptr : entry->texts;
}

const char *zel_get_first_lang_entry(GList *entries, const char *lang)
{
    const GList *texts = zel_get_lang_list(entries, lang);
    return texts == nullptr ? nullptr : static_cast<const char *>(texts->data);
}

namespace zel {

void text_leave_item(Zeltext *text, int update) { leave_item(text, update); }

void text_drop_focus(Zeltext *text)
{
    GtkWidget *window = gtk_widget_get_toplevel(GTK_WIDGET(text));
    GtkWidget *focused = GTK_IS_WINDOW(window) ? gtk_window_get_focus(GTK_WINDOW(window)) : nullptr;
    if (focused != nullptr && GTK_IS_TEXT_VIEW(focused) &&
        gtk_widget_is_ancestor(focused, GTK_WIDGET(text)))
        gtk_window_set_focus(GTK_WINDOW(window), nullptr);
}

int text_focused_field(Zeltext *text)
{
    for (int number = 0; number < TEXT_FIELDS; ++number) {
        if (gtk_widget_is_focus(text->*fields[number].view))
            return number;
    }
    return -1;
}

bool text_is_made(const Zeltext *text, const lang_entry_t *entry)
{
    for (int number = 0; number < TEXT_FIELDS; ++number)
        if (text->*fields[number].entry == entry)
            return text->made[number] != 0 && entry->texts == nullptr;
    return false;
}

void text_put_away(Zeltext *text)
{
    for (int number = 0; number < TEXT_FIELDS; ++number) {
        drop_made_entry(text, number);
        // Saving brings the others to the file: they are no longer ours to remove.
        if (text->*fields[number].entry != nullptr)
            text->made[number] = 0;
    }
}

void text_bring_back(Zeltext *text)
{
    const char *lang1 = nullptr;
    const char *lang2 = nullptr;
    if (text->item == nullptr)
        return;
    misc_select_edit_lang(text->lang_source, &lang1, &lang2);
    for (const int number : field_order) {
        const char *lang = number == TEXT_COMMENT1 || number == TEXT_TRANS1 ? lang1 : lang2;
        // Entries of the file stay bound all the time: only those that were put away are made
        // again.
        if (lang != nullptr && text->*fields[number].entry == nullptr)
            bind_entry(text, number, lang);
    }
}

const char *text_missing_language(Zeltext *text)
{
    for (const int number : {TEXT_TRANS1, TEXT_TRANS2}) {
        const lang_entry_t *entry = text->*fields[number].entry;
        if (entry != nullptr && shows_nothing(buffer_of(text->*fields[number].view)))
            return entry->lang;
    }
    return nullptr;
}

bool text_focus_field(Zeltext *text, int field)
{
    if (field < 0 || field >= TEXT_FIELDS || text->*fields[field].entry == nullptr)
        return false;
    GtkWidget *view = text->*fields[field].view;
    // The end is where the work goes on; a caret at the start would put the first letter before the
    // text.
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer_of(view), &end);
    gtk_text_buffer_place_cursor(buffer_of(view), &end);
    gtk_widget_grab_focus(view);
    return true;
}

void text_focus_translation(Zeltext *text, LangSource *source)
{
    if (source == nullptr)
        return;
    const char *lang1 = nullptr;
    const char *lang2 = nullptr;
    misc_select_edit_lang(source, &lang1, &lang2);
    const bool first_is_own = g_strcmp0(lang1, source->default_lang) == 0;
    // One of the languages may be missing.
    if (!text_focus_field(text, first_is_own ? TEXT_TRANS2 : TEXT_TRANS1))
        text_focus_field(text, first_is_own ? TEXT_TRANS1 : TEXT_TRANS2);
}

} // namespace zel
