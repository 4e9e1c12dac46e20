#include "editor/frame/edit-keys.h"

#include "editor/state/edit-state.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/screen.h"
#include "editor/toolkit/scrolled-box.h"
#include "editor/toolkit/ui-text.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using zel::ui_text;

constexpr int margin = 12;
constexpr int row_gap = 3;
// Nobody knows the height of the window manager's bar before the window is shown.
constexpr int title_bar = 30;

GtkWidget *keys_window;

GtkWidget *make_label(const char *text, bool is_bold)
{
    GtkWidget *label = gtk_label_new(ui_text("keys", text));
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    if (is_bold) {
        PangoAttrList *attributes = pango_attr_list_new();
        pango_attr_list_insert(attributes, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
        gtk_label_set_attributes(GTK_LABEL(label), attributes);
        pango_attr_list_unref(attributes);
    }
    return label;
}

GtkRequisition request_of(GtkWidget *widget)
{
    GtkRequisition request{};
    gtk_widget_size_request(widget, &request);
    return request;
}

GtkWidget *make_table(std::vector<GtkWidget *> &texts)
{
    GtkWidget *table = gtk_table_new(1, 2, FALSE);
    gtk_table_set_col_spacings(GTK_TABLE(table), 2 * margin);
    gtk_table_set_row_spacings(GTK_TABLE(table), row_gap);
    gtk_container_set_border_width(GTK_CONTAINER(table), margin);
    guint place = 0;
    for (const zel::key_row &row : zel::editor_keys()) {
        GtkWidget *keys = make_label(row.keys, true);
        GtkWidget *text = make_label(row.text, false);
        texts.push_back(text);
        gtk_table_attach(GTK_TABLE(table), keys, 0, 1, place, place + 1, GTK_FILL, GTK_FILL, 0, 0);
        gtk_table_attach(GTK_TABLE(table), text, 1, 2, place, place + 1, GTK_FILL, GTK_FILL, 0, 0);
        ++place;
    }
    return table;
}

// Wraps the texts where the screen is narrower than the table.
void wrap_texts(GtkWidget *table, const std::vector<GtkWidget *> &texts, int room)
{
    // The widest text makes the table too wide, and with it those that are nearly as wide.
    const int excess = request_of(table).width - room;
    int widest = 0;
    for (GtkWidget *text : texts)
        widest = std::max(widest, request_of(text).width);
    for (GtkWidget *text : texts) {
        // Only those that are wider than the room: the others stay on one line.
        if (excess <= 0 || request_of(text).width <= widest - excess)
            continue;
        gtk_label_set_line_wrap(GTK_LABEL(text), TRUE);
        gtk_widget_set_size_request(text, std::max(widest - excess, 1), -1);
    }
}

// Adds the table to a window that is no larger than the screen; there it scrolls.
void add_table(GtkDialog *dialog)
{
    std::vector<GtkWidget *> texts;
    GtkWidget *table = make_table(texts);
    GtkWidget *scrolled = zel::scrolled_box_new(table);
    gtk_widget_show_all(scrolled);
    gtk_container_add(GTK_CONTAINER(gtk_dialog_get_content_area(dialog)), scrolled);

    const GdkRectangle screen = zel::work_area(mainWin);
    const int bar =
        request_of(gtk_scrolled_window_get_vscrollbar(GTK_SCROLLED_WINDOW(scrolled))).width;
    wrap_texts(table, texts, screen.width - bar - 3 * margin);
    const int below = request_of(gtk_dialog_get_action_area(dialog)).height + 2 * margin;
    const int room = screen.height - title_bar - below;
    const GtkRequisition whole = request_of(table);
    gtk_widget_set_size_request(scrolled, whole.width + (whole.height > room ? bar + margin : 0),
                                std::min(whole.height, room));
}

// Sets what a screen reader says when the window appears: labels get no keyboard, so nobody could
// reach them.
void describe_window(GtkWidget *window)
{
    std::string all;
    for (const zel::key_row &row : zel::editor_keys())
        all += std::string(ui_text("keys", row.keys)) + ": " + ui_text("keys", row.text) + "\n";
    zel::set_accessible_name(window, ui_text("keys", "Keys"));
    zel::set_accessible_description(window, all.c_str());
}

gboolean on_keys_key(GtkAccelGroup *, GObject *, guint, GdkModifierType, gpointer)
{
    zel::show_keys();
    return TRUE;
}

} // namespace

namespace zel {

const std::vector<key_row> &editor_keys()
{
    // Must stay in step with the manual's table of keys, in its order.
    static const std::vector<key_row> rows{
        {"Ctrl+O", "Load"},
        {"Ctrl+S", "Save"},
        {"Alt+S", "Save as"},
        {"Alt+X", "Exit"},
        {"Ctrl+Z, Shift+Ctrl+Z", "undo, redo"},
        {"Ctrl+F", "search"},
        {"Return, Escape in the search field",
         "to the first item found, back to the item before the search"},
        {"F3", "how was this word translated?"},
        {"Ctrl+H", "replace words"},
        {"Tab, Shift+Tab", "next and previous field"},
        {"Alt+Home, Alt+Up", "first item, previous item"},
        {"Alt+Down, Alt+End", "next item, last item"},
        {"Alt+PgDn, Alt+PgUp",
         "next, previous item that lacks a text, has a finding or, if items are marked as ready at "
         "all, is not"},
        {"Ctrl+U", "next item without a translation, whatever is shown"},
        {"Ctrl+E", "only items with findings, or all"},
        {"Alt+Q", "only items with open questions, or all"},
        {"Alt+M", "ready or not"},
        {"Ctrl+Return", "ready, and to the next such item in the same field"},
        {"Ctrl+Space", "take the suggestion"},
        {"Ctrl+B", "copy the text of the other language"},
        {"Ctrl+1 to Ctrl+9", "insert a conversion, symbol or tag of the other text"},
        {"Ctrl+T", "add a selected term, and its selected translation, to the list of terms"},
        {"Alt+Right, Alt+Left", "select the next, previous plural form"},
        {"Ctrl+L, Shift+Ctrl+L", "the next, previous other language below the translation"},
        {"Shift+F10, Menu", "a field's menu: undo, spelling, another language below it"},
        {"F10", "the menus"},
        {"Ctrl+?", "these keys"},
    };
    return rows;
}

void keys_add_key()
{
    gtk_accel_group_connect(accel_group, GDK_KEY_question, GDK_CONTROL_MASK, GtkAccelFlags{},
                            g_cclosure_new(G_CALLBACK(on_keys_key), nullptr, nullptr));
}

void show_keys()
{
    if (keys_window != nullptr) {
        gtk_window_present(GTK_WINDOW(keys_window));
        return;
    }
    keys_window = gtk_dialog_new_with_buttons(
        ui_text("keys", "Keys"), GTK_WINDOW(mainWin),
        static_cast<GtkDialogFlags>(GTK_DIALOG_DESTROY_WITH_PARENT | GTK_DIALOG_NO_SEPARATOR),
        GTK_STOCK_CLOSE, GTK_RESPONSE_CLOSE, nullptr);
    gtk_window_set_resizable(GTK_WINDOW(keys_window), FALSE);
    gtk_dialog_set_default_response(GTK_DIALOG(keys_window), GTK_RESPONSE_CLOSE);
    describe_window(keys_window);
    add_table(GTK_DIALOG(keys_window));
    g_signal_connect(keys_window, "response", G_CALLBACK(gtk_widget_destroy), nullptr);
    g_signal_connect(keys_window, "destroy", G_CALLBACK(gtk_widget_destroyed), &keys_window);
    gtk_widget_show_all(keys_window);
}

} // namespace zel
