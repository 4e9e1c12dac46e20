#include "editor/frame/path-field.h"

#include "editor/toolkit/kept.h"

#include <string>
#include <vector>

namespace {

constexpr const char *field_key = "zel-path-field"; // where a chooser keeps its path_field

// What is known of a chooser's field.
struct path_field {
    std::string now;    // the text
    std::string before; // the text before the last change
    std::string preset; // the file's name that stands in it at first
    GtkWidget *refusal; // a label, hidden while nothing was refused
};

path_field *state_of_field(gpointer chooser)
{
    return static_cast<path_field *>(g_object_get_data(G_OBJECT(chooser), field_key));
}

// Returns the first widget inside, or the widget itself, for which the test holds.
GtkWidget *find_inside(GtkWidget *widget, bool (*test)(GtkWidget *))
{
    struct search {
        bool (*test)(GtkWidget *);
        GtkWidget *found;
    } state{test, test(widget) ? widget : nullptr};
    if (state.found == nullptr && GTK_IS_CONTAINER(widget)) {
        gtk_container_forall(
            GTK_CONTAINER(widget),
            [](GtkWidget *child, gpointer data) {
                auto *inner = static_cast<search *>(data);
                if (inner->found == nullptr)
                    inner->found = find_inside(child, inner->test);
            },
            &state);
    }
    return state.found;
}

bool is_field(GtkWidget *widget)
{
    return g_strcmp0(G_OBJECT_TYPE_NAME(widget), "GtkFileChooserEntry") == 0;
}

// Whether this is a list of files in which several are selected.
bool has_several(GtkWidget *widget)
{
    return GTK_IS_TREE_VIEW(widget) && gtk_tree_selection_count_selected_rows(
                                           gtk_tree_view_get_selection(GTK_TREE_VIEW(widget))) > 1;
}

// The field while it has the keyboard, else null.
GtkEntry *typed_in(gpointer chooser)
{
    GtkWidget *focus = gtk_window_get_focus(GTK_WINDOW(chooser));
    return focus != nullptr && is_field(focus) ? GTK_ENTRY(focus) : nullptr;
}

void put(GtkEntry *entry, const char *text)
{
    gtk_entry_set_text(entry, text);
    gtk_editable_set_position(GTK_EDITABLE(entry), -1);
}

// Shows the field. In a chooser to open, the toolkit does so only by a signal that its own keys
// send.
void pop_up_field(GtkWidget *chooser, const char *text)
{
    if (GtkWidget *taker = zel::inner_chooser(chooser))
        g_signal_emit_by_name(taker, "location-popup", text);
}

// A letter that is typed outside of a field begins a path, as the toolkit has it for "/" and "~".
gboolean begin_path(GtkWidget *chooser, GdkEventKey *event, gpointer)
{
    const gunichar letter = gdk_keyval_to_unicode(event->keyval);
    // Shift only makes a capital; with other keys the letter is a command.
    const guint modifiers =
        gtk_accelerator_get_default_mod_mask() & ~static_cast<guint>(GDK_SHIFT_MASK);
    const bool with_modifier = (event->state & modifiers) != 0;
    if (with_modifier || g_unichar_isalnum(letter) == 0 ||
        GTK_IS_ENTRY(gtk_window_get_focus(GTK_WINDOW(chooser))))
        return FALSE;
    char text[7] = {};
    g_unichar_to_utf8(letter, text);
    pop_up_field(chooser, text);
    if (GtkEntry *entry = typed_in(chooser)) // where the letter is selected by getting the keyboard
        gtk_editable_set_position(GTK_EDITABLE(entry), -1);
    return TRUE;
}

void text_changed(GtkEntry *entry, gpointer chooser)
{
    path_field *field = state_of_field(chooser);
    field->before = std::move(field->now);
    field->now = gtk_entry_get_text(entry);
    gtk_widget_hide(field->refusal);
}

// Handler of "set-focus": the toolkit makes the field and destroys it as it likes, so each one that
// gets the keyboard is watched.
void focus_moved(GtkWidget *chooser, GtkWidget *focus, gpointer)
{
    constexpr const char *watched = "zel-watched";
    if (focus == nullptr || !is_field(focus) ||
        g_object_get_data(G_OBJECT(focus), watched) != nullptr)
        return;
    g_object_set_data(G_OBJECT(focus), watched, focus);
    // The preset's name is not put over a text that somebody has typed already.
    if (gtk_entry_get_text_length(GTK_ENTRY(focus)) == 0)
        gtk_entry_set_text(GTK_ENTRY(focus), state_of_field(chooser)->preset.c_str());
    state_of_field(chooser)->now = gtk_entry_get_text(GTK_ENTRY(focus));
    g_signal_connect_object(focus, "changed", G_CALLBACK(text_changed), chooser, GConnectFlags{});
}

std::string name_at_cursor(GtkFileChooser *chooser)
{
    gchar *file = gtk_file_chooser_get_preview_filename(chooser);
    gchar *name = file == nullptr ? nullptr : g_filename_display_basename(file);
    std::string shown = name == nullptr ? "" : name;
    g_free(name);
    g_free(file);
    return shown;
}

// The list has been read: the toolkit has selected a file in it, and has put its name into the
// field in place of what was typed there meanwhile.
void selection_changed(GtkFileChooser *chooser, gpointer)
{
    GtkEntry *entry = typed_in(chooser);
    if (entry == nullptr)
        return;
    // The field has no room for several files, and with the keyboard there the toolkit takes none.
    if (GtkWidget *list = find_inside(GTK_WIDGET(chooser), has_several)) {
        gtk_widget_grab_focus(list);
        return;
    }
    const path_field *field = state_of_field(chooser);
    const std::string text = gtk_entry_get_text(entry);
    // A copy: taking the selection away changes the field, and so what is remembered of it.
    const std::string typed = field->before;
    if (text != field->preset && text == name_at_cursor(chooser)) {
        gtk_file_chooser_unselect_all(chooser);
        put(entry, typed.c_str());
    }
    if (field->preset == gtk_entry_get_text(entry))
        gtk_editable_select_region(GTK_EDITABLE(entry), 0, -1);
}

// What is typed before the chooser is seen waits for it: the toolkit would complain of keys without
// a window, and an Escape would destroy the chooser.
struct early_keys {
    explicit early_keys(GtkWidget *to)
        : chooser(GTK_WIDGET(g_object_ref(to))), snooper(gtk_key_snooper_install(hold, this))
    {
        gtk_grab_add(chooser);
    }
    early_keys(const early_keys &) = delete;
    early_keys &operator=(const early_keys &) = delete;
    ~early_keys()
    {
        gtk_grab_remove(chooser);
        gtk_key_snooper_remove(snooper);
        for (GdkEvent *event : held) {
            gdk_event_put(event);
            gdk_event_free(event);
        }
        g_object_unref(chooser);
    }

private:
    static gint hold(GtkWidget *, GdkEventKey *event, gpointer data)
    {
        auto *keys = static_cast<early_keys *>(data);
        if (gtk_grab_get_current() != keys->chooser)
            return FALSE;
        keys->held.push_back(gdk_event_copy(reinterpret_cast<GdkEvent *>(event)));
        return TRUE;
    }

    GtkWidget *chooser;
    std::vector<GdkEvent *> held;
    guint snooper;
};

void note_response(GtkDialog *, gint response, gpointer answer)
{
    *static_cast<int *>(answer) = response;
}

void note_end(GtkWidget *, gpointer answer)
{
    *static_cast<int *>(answer) = GTK_RESPONSE_DELETE_EVENT;
}

// Waits until the toolkit has taken the folder, which it does in its own time: a chooser that
// appears before begins in another folder, and loses what stands in its field. Returns the answer
// that the chooser gets meanwhile, or GTK_RESPONSE_NONE.
int wait_for_folder(GtkWidget *chooser)
{
    // A folder on a network may never come: then the chooser appears as it is.
    constexpr gint64 longest = 1000000; // microseconds
    const gint64 end = g_get_monotonic_time() + longest;
    // The iteration below sleeps until something happens: the timer makes it look at the clock.
    const guint wake = g_timeout_add(
        5, [](gpointer) -> gboolean { return TRUE; }, nullptr);
    int answer = GTK_RESPONSE_NONE;
    g_signal_connect(chooser, "response", G_CALLBACK(note_response), &answer);
    g_signal_connect(chooser, "destroy", G_CALLBACK(note_end), &answer);
    gtk_widget_realize(chooser);
    gchar *folder = nullptr;
    while (folder == nullptr && answer == GTK_RESPONSE_NONE && g_get_monotonic_time() < end) {
        g_main_context_iteration(nullptr, TRUE);
        if (answer == GTK_RESPONSE_NONE)
            folder = gtk_file_chooser_get_current_folder(GTK_FILE_CHOOSER(chooser));
    }
    g_free(folder);
    g_source_remove(wake);
    g_signal_handlers_disconnect_by_data(chooser, &answer);
    return answer;
}

} // namespace

namespace zel {

GtkWidget *inner_chooser(GtkWidget *chooser)
{
    return find_inside(chooser, [](GtkWidget *widget) {
        return g_signal_lookup("location-popup", G_OBJECT_TYPE(widget)) != 0;
    });
}

int show_path_field(GtkWidget *chooser, const char *preset)
{
    auto *field = new path_field{{}, {}, preset, gtk_label_new(nullptr)};
    zel::keep_at(chooser, field_key, field);
    atk_object_set_role(gtk_widget_get_accessible(field->refusal), ATK_ROLE_ALERT);
    gtk_label_set_line_wrap(GTK_LABEL(field->refusal), TRUE);
    gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(chooser))), field->refusal,
                       FALSE, FALSE, 0);
    g_signal_connect(chooser, "key-press-event", G_CALLBACK(begin_path), nullptr);
    g_signal_connect(chooser, "set-focus", G_CALLBACK(focus_moved), nullptr);
    const early_keys keys(chooser); // sends them when this function returns
    if (const int answer = wait_for_folder(chooser); answer != GTK_RESPONSE_NONE)
        return answer;
    gtk_widget_show(chooser);
    if (gtk_file_chooser_get_action(GTK_FILE_CHOOSER(chooser)) == GTK_FILE_CHOOSER_ACTION_SAVE)
        return GTK_RESPONSE_NONE; // such a chooser always shows its field, with the preset's name
    pop_up_field(chooser, preset);
    if (GtkEntry *entry = typed_in(chooser))
        gtk_editable_select_region(GTK_EDITABLE(entry), 0, -1);
    // Only now: the chooser's own first selection is no reading of the list.
    g_signal_connect(chooser, "selection-changed", G_CALLBACK(selection_changed), nullptr);
    return GTK_RESPONSE_NONE;
}

void put_path(GtkWidget *chooser, const char *path)
{
    if (g_utf8_validate(path, -1, nullptr) != 0)
        pop_up_field(chooser, path);
    else
        gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(chooser), path); // it cannot be typed
}

void refuse_path(GtkWidget *chooser, const char *why)
{
    path_field *field = state_of_field(chooser);
    // The chooser may show no field just now: then only the label tells.
    if (GtkWidget *entry = find_inside(chooser, is_field)) {
        gtk_widget_grab_focus(entry);
        gtk_editable_set_position(GTK_EDITABLE(entry), -1);
    }
    gtk_label_set_text(GTK_LABEL(field->refusal), why);
    gtk_widget_show(field->refusal);
}

} // namespace zel
