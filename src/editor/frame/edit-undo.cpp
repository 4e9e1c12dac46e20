#include "editor/frame/edit-undo.h"

#include "app/global.h"
#include "editor/panel/edit-record.h"
#include "editor/panel/w_text.h"
#include "editor/panel/w_text_below.h"
#include "editor/state/edit-state.h"
#include "editor/table/w_tab_edit.h"
#include "editor/table/w_tab_list.h"
#include "editor/table/w_tab_model.h"
#include "editor/table/w_tab_work.h"
#include "editor/toolkit/ui-text.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <string>

namespace {

using namespace zel;

ZelTabEdit *table() { return ZEL_TAB_EDIT(editWin); }
Zeltext *panel() { return ZEL_TEXT(table()->text_widget); }

item_t *item_of(const edit_change &change)
{
    if (const auto *text = std::get_if<text_change>(&change))
        return text->place.item;
    if (const auto *ready = std::get_if<ready_change>(&change))
        return ready->item;
    return nullptr;
}

// The first item that the step changes; null when there is none.
item_t *item_of(const edit_step &step)
{
    for (const edit_change &change : step.changes) {
        if (item_t *item = item_of(change))
            return item;
    }
    return nullptr;
}

// The item's row number, which its position number tells; -1 for an item that is not used.
int row_of(const item_t *item)
{
    const auto &rows = (*table()->rows)->rows;
    const std::int32_t row = item->posnr - 1;
    // An item that is not used has a number from an earlier list, or none.
    const bool is_there = row >= 0 && static_cast<std::size_t>(row) < rows.size() &&
                          rows[static_cast<std::size_t>(row)].item == item;
    return is_there ? row : -1;
}

int place_of(int row) { return zel_tab_model_place_of(ZEL_TAB_MODEL(table()->sort_model), row); }

// Selects the item's row; what hides it, a search or a filter, is switched off first.
void go_to(const item_t *item)
{
    const int row = item == nullptr ? -1 : row_of(item);
    if (row < 0)
        return;
    if (GtkWidget *notebook = gtk_widget_get_ancestor(editWin, GTK_TYPE_NOTEBOOK))
        gtk_notebook_set_current_page(GTK_NOTEBOOK(notebook),
                                      gtk_notebook_page_num(GTK_NOTEBOOK(notebook), editBox));
    table()->work->uncover(row);
    // Selecting the row again would store the fields and fill them again.
    if (panel()->item != item)
        tab_list_go_to(GTK_TREE_VIEW(table()->view), place_of(row));
}

std::string shown(const entry_text &text)
{
    std::string all;
    for (const std::string &line : text.lines)
        all += utf8_shown(line.c_str());
    return all;
}

// Returns where the changed part of the text ends, in characters: the caret is put there.
int caret_in(const std::string &text, const std::string &other)
{
    const std::size_t common = std::min(text.size(), other.size());
    const auto start =
        std::mismatch(text.begin(), text.begin() + static_cast<long>(common), other.begin()).first;
    const long head = start - text.begin();
    long tail = 0;
    // The two parts must not overlap: "aa" to "aaa" has one letter of difference, at the end.
    while (tail < static_cast<long>(common) - head &&
           *(text.rbegin() + tail) == *(other.rbegin() + tail))
        ++tail;
    std::size_t end = text.size() - static_cast<std::size_t>(tail);
    // The end may lie within a letter of several bytes.
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        ++end;
    return static_cast<int>(g_utf8_strlen(text.c_str(), static_cast<gssize>(end)));
}

// Returns the number of the field that shows the text, -1 for none.
int field_of(const text_place &place)
{
    for (int number = 0; number < TEXT_FIELDS; ++number) {
        const lang_entry_t *entry = panel()->*fields[number].entry;
        if (panel()->item == place.item && fields[number].entries == place.entries &&
            entry != nullptr && entry == find_entry(place))
            return number;
    }
    return -1;
}

// Gives the field the state of the step: the text as the item holds it, or as typed and still to be
// stored.
void change_field(int number, const entry_text &text, const entry_text &other)
{
    Zeltext *of = panel();
    GtkWidget *view = of->*fields[number].view;
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
    const std::string letters = shown(text);
    {
        // Filling the field is no typing, and must not be recorded as such.
        const flag_guard filling(lang_global.text_lock);
        clear_text_view_buffer(view);
        gtk_text_buffer_insert_at_cursor(buffer, letters.c_str(), -1);
    }
    set_lines(of->*fields[number].entry, text);
    of->item->changed = text.changed;
    of->dirty[number] = text.typed ? 1 : 0;
    // An entry that was not there before the change counts as made for showing the item.
    of->made[number] = text.there ? 0 : 1;

    GtkTextIter caret;
    gtk_text_buffer_get_iter_at_offset(buffer, &caret, caret_in(letters, shown(other)));
    gtk_text_buffer_place_cursor(buffer, &caret);
    gtk_widget_grab_focus(view);
    gtk_text_view_scroll_mark_onscreen(GTK_TEXT_VIEW(view), gtk_text_buffer_get_insert(buffer));
}

void change_ready(const ready_change &change, bool before)
{
    if (panel()->item == change.item)
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(table()->ready_button),
                                     (before ? change.before : change.after) != 0);
    apply_change(change, before); // the button knows only yes and no, the item may hold any number
}

// Changes one text or mark, which most steps consist of.
void change_here(const edit_change &change, bool before)
{
    if (const auto *ready = std::get_if<ready_change>(&change)) {
        change_ready(*ready, before);
    } else if (const auto *text = std::get_if<text_change>(&change)) {
        const int number = field_of(text->place);
        if (number < 0)
            apply_change(change, before);
        else
            change_field(number, before ? text->before : text->after,
                         before ? text->after : text->before);
    }
    if (const item_t *item = item_of(change))
        zel_tab_model_row_changed(ZEL_TAB_MODEL(table()->sort_model), row_of(item));
    text_below_show(panel());
    if (panel()->item != nullptr)
        table()->work->item_shown(row_of(panel()->item)); // its texts are judged again
}

// Changes many texts, or the languages. The panel shows no item meanwhile.
void change_source(const edit_step &step, bool before)
{
    zel_text_set(table()->text_widget, nullptr, nullptr, 1);
    if (before) {
        // Backwards: of two changes of one text, the earlier one has the text to go back to.
        for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change)
            apply_change(*change, true);
    } else {
        for (const edit_change &change : step.changes)
            apply_change(change, false);
    }
    edit_select_output_langs(def_group);
    edit_reload();
}

void take(bool back)
{
    if (def_group == nullptr || editWin == nullptr)
        return;
    // What is being typed is the first thing to undo.
    record_begin();
    const edit_step *step = back ? source_history().undo() : source_history().redo();
    if (step == nullptr) {
        edit_status(back ? ui_text("text", "Nothing to undo") : ui_text("text", "Nothing to redo"));
        return;
    }
    // What is changed below is no new step.
    const record_pause pause;
    edit_status(nullptr);
    go_to(item_of(*step));
    if (step->changes.size() == 1 && item_of(*step) != nullptr)
        change_here(step->changes[0], back);
    else
        change_source(*step, back);
    // The last saved state may lie in either direction.
    edit_set_modified(source_history().modified());
}

struct command {
    const char *text;
    const char *stock;
    GdkModifierType modifiers; // of the letter Z
    void (*act)();
    bool (edit_history::*possible)() const;
};
constexpr command commands[] = {
    {"Undo", GTK_STOCK_UNDO, GDK_CONTROL_MASK, edit_undo, &edit_history::can_undo},
    {"Redo", GTK_STOCK_REDO, static_cast<GdkModifierType>(GDK_CONTROL_MASK | GDK_SHIFT_MASK),
     edit_redo, &edit_history::can_redo},
};

gboolean on_undo_key(GtkAccelGroup *, GObject *, guint, GdkModifierType, gpointer data)
{
    static_cast<const command *>(data)->act();
    return TRUE;
}

void on_entry(GtkMenuItem *, gpointer data) { static_cast<const command *>(data)->act(); }

void fill_menu(GtkTextView *, GtkMenu *menu, gpointer)
{
    int place = 0;
    for (const command &row : commands) {
        GtkWidget *item = gtk_image_menu_item_new_with_label(ui_text("text", row.text));
        gtk_image_menu_item_set_image(GTK_IMAGE_MENU_ITEM(item),
                                      gtk_image_new_from_stock(row.stock, GTK_ICON_SIZE_MENU));
        gtk_widget_set_sensitive(item, (source_history().*row.possible)());
        g_signal_connect(item, "activate", G_CALLBACK(on_entry), const_cast<command *>(&row));
        gtk_menu_shell_insert(GTK_MENU_SHELL(menu), item, place++);
        gtk_widget_show(item);
    }
    GtkWidget *line = gtk_separator_menu_item_new();
    gtk_menu_shell_insert(GTK_MENU_SHELL(menu), line, place);
    gtk_widget_show(line);
}

} // namespace

namespace zel {

void edit_undo() { take(true); }
void edit_redo() { take(false); }

void undo_add_keys()
{
    for (const command &row : commands)
        gtk_accel_group_connect(
            accel_group, GDK_KEY_z, row.modifiers, GtkAccelFlags{},
            g_cclosure_new(G_CALLBACK(on_undo_key), const_cast<command *>(&row), nullptr));
}

void undo_watch(GtkWidget *widget)
{
    Zeltext *text = ZEL_TEXT(ZEL_TAB_EDIT(widget)->text_widget);
    source_history().clear();
    record_typing(text);
    for (const field_t &field : fields)
        g_signal_connect(text->*field.view, "populate-popup", G_CALLBACK(fill_menu), nullptr);
}

} // namespace zel
