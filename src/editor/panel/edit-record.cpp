#include "editor/panel/edit-record.h"

#include "app/global.h"
#include "editor/toolkit/text-places.h"

#include <algorithm>

namespace {

using zel::edit_history;
using zel::entry_text;
using zel::fields;
using zel::keystroke;

// One field of a panel.
struct watched {
    Zeltext *text;
    int number;
};

// The field whose step is open; its panel is null once that has been destroyed.
watched typed_in;

// Number of the user's action that is going on; 0 between two.
std::uint64_t action;
std::uint64_t last_action;

GtkTextBuffer *watched_buffer(const watched &field)
{
    return gtk_text_view_get_buffer(GTK_TEXT_VIEW(field.text->*fields[field.number].view));
}

zel::text_place place_of(const watched &field)
{
    const lang_entry_t *entry = field.text->*fields[field.number].entry;
    return {field.text->item, fields[field.number].entries, entry->lang};
}

// The field's text before a change. While nothing was typed it is read from the item, since the
// view may show other bytes.
entry_text text_before(const watched &field)
{
    const int *dirty = field.text->dirty;
    const bool is_typed = dirty[field.number] != 0;
    entry_text text = is_typed ? entry_text{true, true, 0, zel::buffer_lines(watched_buffer(field))}
                               : zel::read_text(place_of(field));
    // An entry that was made to show the item does not count as there: undo removes it again.
    text.there = is_typed || field.text->made[field.number] == 0;
    const bool touched = std::any_of(dirty, dirty + TEXT_FIELDS, [](int is) { return is != 0; });
    text.changed = touched ? 1 : field.text->item->changed;
    return text;
}

void finish_typing()
{
    edit_history &history = zel::source_history();
    if (!history.is_open())
        return;
    // Without the panel only the item can tell the text.
    if (typed_in.text != nullptr)
        history.finish({true, true, 1, zel::buffer_lines(watched_buffer(typed_in))});
    else
        history.finish(zel::read_text(history.open_place()));
}

void set_typed_in(const watched &field)
{
    // The panel may be destroyed with a step open; the pointer becomes null then.
    auto *pointer = reinterpret_cast<gpointer *>(&typed_in.text);
    if (typed_in.text != nullptr)
        g_object_remove_weak_pointer(G_OBJECT(typed_in.text), pointer);
    typed_in = field;
    g_object_add_weak_pointer(G_OBJECT(typed_in.text), pointer);
}

// Call before the field's text changes: by typing, or because the panel shows something else.
void before_change(const watched &field, keystroke key)
{
    edit_history &history = zel::source_history();
    const bool is_open_here =
        typed_in.text == field.text && typed_in.number == field.number && history.is_open();
    if (lang_global.text_lock != 0 || zel::record_pause::depth != 0) {
        // The field is about to show another text: this is the last moment to read what was typed.
        if (is_open_here)
            finish_typing();
        return;
    }
    if (field.text->item == nullptr || field.text->*fields[field.number].entry == nullptr)
        return;
    key.action = action;
    if (is_open_here && history.joins(place_of(field), key)) {
        history.join(key);
        return;
    }
    zel::record_begin();
    history.begin(place_of(field), text_before(field), key);
    set_typed_in(field);
}

void on_insert(GtkTextBuffer *, GtkTextIter *at, gchar *letters, gint bytes, gpointer data)
{
    keystroke key;
    key.at = gtk_text_iter_get_offset(at);
    key.inserted = static_cast<int>(g_utf8_strlen(letters, bytes));
    key.blank = key.inserted == 1 && g_unichar_isspace(g_utf8_get_char(letters));
    if (key.inserted != 0)
        before_change(*static_cast<watched *>(data), key);
}

void on_delete(GtkTextBuffer *, GtkTextIter *start, GtkTextIter *end, gpointer data)
{
    keystroke key;
    key.at = gtk_text_iter_get_offset(start);
    key.removed = gtk_text_iter_get_offset(end) - key.at;
    key.blank = key.removed == 1 && g_unichar_isspace(gtk_text_iter_get_char(start));
    if (key.removed != 0)
        before_change(*static_cast<watched *>(data), key);
}

void on_action(GtkTextBuffer *, gpointer) { action = ++last_action; }
void on_action_end(GtkTextBuffer *, gpointer) { action = 0; }

} // namespace

namespace zel {

int record_pause::depth;

void record_typing(Zeltext *text)
{
    for (int number = 0; number < TEXT_FIELDS; ++number) {
        auto *field = new watched{text, number};
        GtkTextBuffer *buffer = watched_buffer(*field);
        // The closure owns the record, which lives as long as the buffer. It serves the second
        // handler, too.
        g_signal_connect_data(
            buffer, "insert-text", G_CALLBACK(on_insert), field,
            [](gpointer data, GClosure *) { delete static_cast<watched *>(data); },
            GConnectFlags{});
        g_signal_connect(buffer, "delete-range", G_CALLBACK(on_delete), field);
        g_signal_connect(buffer, "begin-user-action", G_CALLBACK(on_action), nullptr);
        g_signal_connect(buffer, "end-user-action", G_CALLBACK(on_action_end), nullptr);
    }
}

void record_begin()
{
    finish_typing();
    // What has changed the source without a step, as a recovered file does, is not undone by any:
    // no undo may call the source saved.
    if (lang_global.modified != 0 && !source_history().modified())
        source_history().lose_saved();
}

void record_ready(item_t *item, std::int32_t ready, bool counts)
{
    if (record_pause::depth != 0 || item->ready == ready)
        return;
    record_begin();
    source_history().add({ready_change{item, item->ready, ready}}, counts);
}

void record_definitions(LangSource *source, const definitions &before)
{
    if (source == nullptr) // released while the dialog was open
        return;
    finish_typing();
    // The dialog may have been closed without a change: that is no step.
    definitions after = read_definitions(source);
    if (!(after == before))
        source_history().add({definitions_change{source, before, std::move(after)}});
}

} // namespace zel
