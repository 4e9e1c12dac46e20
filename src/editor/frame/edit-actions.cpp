#include "editor/frame/edit-actions.h"

#include "app/global.h"
#include "editor/frame/define.h"
#include "editor/frame/edit-ask.h"
#include "editor/panel/edit-record.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/lang-box.h"
#include "editor/toolkit/ui-text.h"
#include "support/gen_path.h"
#include "support/guard.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/string.h"

#include <array>
#include <gdk/gdkkeysyms.h>
#include <memory>
#include <unistd.h>

namespace {

using table_operation = int (*)(GtkWidget *);

void move(const char *handler, table_operation operation)
{
    LogPrint(1, "%s: entry\n", handler);
    if (def_group != nullptr && editWin != nullptr && operation != nullptr)
        operation(editWin);
}

void set_filter_controls(gboolean on)
{
    gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(empty_menu), on);
    gtk_toggle_tool_button_set_active(GTK_TOGGLE_TOOL_BUTTON(empty_tool), on);
}

// Call when one of the two controls has changed its state: makes the other follow.
void filter(gboolean on)
{
    // Setting the other control sends its signal, which leads here again.
    if (empty_lock != 0)
        return;
    const zel::flag_guard locked(empty_lock);
    if (def_group == nullptr) {
        zel::edit_status(zel::ui_text("common", "Nothing to do"));
        lang_global.only_untranslated = 0; // left on by a source that has been closed
        set_filter_controls(FALSE);
        return;
    }
    lang_global.only_untranslated = on ? 1 : 0;
    set_filter_controls(on);
    if (editWin != nullptr && edit_ctrl.empty != nullptr)
        edit_ctrl.empty(editWin);
}

// Shows the manual in the desktop's viewer, or tells where the file is.
void show_manual(GtkWidget *widget, const char *path)
{
    using glib_string = std::unique_ptr<gchar, zel::release<g_free>>;
    const glib_string absolute(g_path_is_absolute(path) ? g_strdup(path)
                                                        : g_build_filename(".", path, nullptr));
    const glib_string uri(g_filename_to_uri(absolute.get(), nullptr, nullptr));
    if (uri && gtk_show_uri(gtk_widget_get_screen(widget), uri.get(), GDK_CURRENT_TIME, nullptr))
        return;
    const zel::string_guard text(
        zel_strdup_printf("%s\n%s", zel::ui_text("common", "The manual is here:"), path));
    lang_msg_box(widget, text.get());
}

// Takes the key if it is one of the editor's own, whether or not it acts: while nothing can be
// marked, Alt+M must not fall through to the menu of that letter.
bool take_key(GtkWidget *window, guint keyval, GdkModifierType modifiers)
{
    if (gtk_accel_groups_activate(G_OBJECT(window), keyval, modifiers))
        return true;
    guint count = 0;
    gtk_accel_group_query(accel_group, keyval, modifiers, &count);
    return count != 0 || (keyval == GDK_KEY_m && modifiers == GDK_MOD1_MASK);
}

// The field of the edit page that the user types in, if any, with its caret and what is selected in
// it: an entry that gets the keyboard selects all of its text, and the next letter would replace
// it.
class typed_field {
public:
    typed_field() : field_(gtk_window_get_focus(GTK_WINDOW(mainWin)))
    {
        const bool is_here = field_ != nullptr && gtk_widget_is_ancestor(field_, editBox);
        const bool is_entry =
            is_here && GTK_IS_EDITABLE(field_) && gtk_editable_get_editable(GTK_EDITABLE(field_));
        if (is_entry)
            gtk_editable_get_selection_bounds(GTK_EDITABLE(field_), &start_, &end_);
        else if (!is_here || !GTK_IS_TEXT_VIEW(field_))
            field_ = nullptr;
    }
    void go_back() const
    {
        if (field_ == nullptr || !gtk_widget_get_can_focus(field_))
            return;
        gtk_widget_grab_focus(field_);
        if (GTK_IS_EDITABLE(field_))
            gtk_editable_select_region(GTK_EDITABLE(field_), start_, end_);
    }

private:
    GtkWidget *field_;
    gint start_ = 0;
    gint end_ = 0;
};

} // namespace

void cb_first(GtkWidget *, gpointer) { move("cb_first", edit_ctrl.first); }
void cb_previous(GtkWidget *, gpointer) { move("cb_previous", edit_ctrl.prev); }
void cb_next(GtkWidget *, gpointer) { move("cb_next", edit_ctrl.next); }
void cb_last(GtkWidget *, gpointer) { move("cb_last", edit_ctrl.last); }

void cb_empty_menu(GtkWidget *widget, gpointer)
{
    filter(gtk_check_menu_item_get_active(GTK_CHECK_MENU_ITEM(widget)));
}

void cb_empty_toolbar(GtkWidget *widget, gpointer)
{
    filter(gtk_toggle_tool_button_get_active(GTK_TOGGLE_TOOL_BUTTON(widget)));
}

void cb_posnr(GtkWidget *widget, gpointer)
{
    lang_global.posnr = gtk_toggle_tool_button_get_active(GTK_TOGGLE_TOOL_BUTTON(widget)) ? 1 : 0;
}

void cb_settings(GtkWidget *widget, gpointer)
{
    zel::edit_status(nullptr);
    if (def_group == nullptr) {
        zel::nothing_to_do(widget);
        return;
    }
    // The typing so far is a step of its own, before that of the dialog.
    zel::record_begin();
    const zel::definitions before = zel::read_definitions(def_group);
    define_open(mainWin, def_group);
    zel::record_definitions(def_group, before);
    // The dialog may have chosen other languages to edit, or renamed them.
    zel::edit_select_output_langs(def_group);
}

void cb_help(GtkWidget *widget, gpointer)
{
    std::array<char, 4096> path{};
    LogPrint(1, "cb_help: doc-dir ->%s<-\n",
             lang_global.doc_dir == nullptr ? "" : lang_global.doc_dir);
    gen_path_ext(path.data(), 0, path.size(), lang_global.doc_dir, "lang.pdf", nullptr);
    zel_path_to_os(path.data());
    LogPrint(1, "cb_help: manual  ->%s<-\n", path.data());
    if (access(path.data(), R_OK) != 0)
        zel::message(widget, "common", "Error: Manual not found.");
    else
        show_manual(widget, path.data());
}

gboolean lang_key_press_event(GtkWidget *, GdkEventKey *event, gpointer)
{
    constexpr guint bit_arabic = 1;
    constexpr guint bit_extended = 2;
    if (event->keyval < GDK_KEY_0 || event->keyval > GDK_KEY_9)
        return FALSE;
    const guint digit = event->keyval - GDK_KEY_0;
    if ((lang_global.digit_keys & bit_arabic) != 0)
        // Only the event is changed: the handlers behind this one see the other digit. The two sets
        // of Arabic digits begin at U+0660 and at U+06F0.
        event->keyval = gdk_unicode_to_keyval(0x0660 + digit);
    else if ((lang_global.digit_keys & bit_extended) != 0)
        event->keyval = gdk_unicode_to_keyval(0x06f0 + digit);
    return FALSE;
}

gboolean accel_first_event(GtkWidget *widget, GdkEventKey *event, gpointer)
{
    const auto modifiers =
        static_cast<GdkModifierType>(event->state & gtk_accelerator_get_default_mod_mask());
    if ((modifiers & GDK_MOD1_MASK) == 0)
        return FALSE;
    if (take_key(widget, gdk_keyval_to_lower(event->keyval), modifiers))
        return TRUE;
    // The key's letter in the first layout, for users who type in another script.
    guint keyval = 0;
    return gdk_keymap_translate_keyboard_state(
               gdk_keymap_get_for_display(gtk_widget_get_display(widget)), event->hardware_keycode,
               GdkModifierType{}, 0, &keyval, nullptr, nullptr, nullptr) != 0 &&
           take_key(widget, keyval, modifiers);
}

gboolean list_expose_event(GtkWidget *, GdkEventExpose *, gpointer)
{
    if (editWin == nullptr || edit_ctrl.list_focus == nullptr)
        return FALSE;
    const typed_field field;
    edit_ctrl.list_focus(editWin);
    field.go_back();
    return FALSE;
}
