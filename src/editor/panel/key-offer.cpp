#include "editor/panel/key-offer.h"

#include "editor/toolkit/text-places.h"
#include "editor/toolkit/ui-text.h"
#include "lint/free-key.h"
#include "lint/mnemonics.h"
#include "source/entry.h"

#include <string>

namespace zel {

namespace {

constexpr const char *text_key = "zel-text-with-key";

const edit_t *group_of(const LangSource *source, const item_t *wanted)
{
    for (const edit_t *group : each<edit_t>(source->groups))
        for (const item_t *item : each<item_t>(group->items))
            if (item == wanted)
                return group;
    return nullptr;
}

// What the field's text is translated from, as it stands in the panel.
std::string reference_of(Zeltext *text)
{
    for (const int number : {TEXT_TRANS1, TEXT_TRANS2}) {
        const lang_entry_t *entry = text->*fields[number].entry;
        std::string shown = buffer_text(buffer_of(text->*fields[number].view));
        if (entry != nullptr && !shown.empty() &&
            g_strcmp0(entry->lang, text->lang_source->default_lang) == 0)
            return shown;
    }
    return reference_text(*text->lang_source, text->item);
}

// The field's text with another key; empty where it has a good one or needs none.
std::string with_free_key(Zeltext *text, int field)
{
    const lang_entry_t *entry = text->*fields[field].entry;
    const LangSource *source = text->lang_source;
    if (text->item == nullptr || entry == nullptr || !lint::may_use_mnemonics(source))
        return {};
    const std::string own = buffer_text(buffer_of(text->*fields[field].view));
    const std::string reference = reference_of(text);
    const edit_t *group = group_of(source, text->item);
    if (group == nullptr)
        return {};
    lint::group_keys keys(lint::may_be_window(source, group));
    for (const item_t *item : each<item_t>(group->items))
        if (item != text->item && item->used != 0)
            keys.take(text_of(find_entry(item->langs, entry->lang)), reference_text(*source, item));
    return keys.wants_key(own, reference) ? keys.with_key(own, reference) : "";
}

// Puts the text in as if it was typed, so that it is one step to undo.
void take_text_with_key(GtkWidget *item, gpointer view)
{
    GtkTextBuffer *buffer = buffer_of(GTK_WIDGET(view));
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_begin_user_action(buffer);
    gtk_text_buffer_get_bounds(buffer, &start, &end);
    gtk_text_buffer_delete_interactive(buffer, &start, &end, TRUE);
    gtk_text_buffer_insert_interactive_at_cursor(
        buffer, static_cast<const char *>(g_object_get_data(G_OBJECT(item), text_key)), -1, TRUE);
    gtk_text_buffer_end_user_action(buffer);
}

void offer_key(Zeltext *text, GtkMenu *menu, int field)
{
    const std::string made = with_free_key(text, field);
    if (made.empty())
        return;
    const std::string label = std::string(ui_text("text", "With a key")) + ": " + made;
    GtkWidget *item = gtk_menu_item_new_with_label(label.c_str()); // which shows the underscore
    g_object_set_data_full(G_OBJECT(item), text_key, g_strdup(made.c_str()), g_free);
    g_signal_connect(item, "activate", G_CALLBACK(take_text_with_key), text->*fields[field].view);
    GtkWidget *line = gtk_separator_menu_item_new();
    for (GtkWidget *one : {line, item}) {
        gtk_menu_shell_append(GTK_MENU_SHELL(menu), one);
        gtk_widget_show(one);
    }
}

} // namespace

void offer_keys(Zeltext *text)
{
    g_signal_connect_swapped(text->trans1_view, "populate-popup",
                             G_CALLBACK(+[](Zeltext *of, GtkMenu *menu, GtkTextView *) {
                                 offer_key(of, menu, TEXT_TRANS1);
                             }),
                             text);
    g_signal_connect_swapped(text->trans2_view, "populate-popup",
                             G_CALLBACK(+[](Zeltext *of, GtkMenu *menu, GtkTextView *) {
                                 offer_key(of, menu, TEXT_TRANS2);
                             }),
                             text);
}

} // namespace zel
