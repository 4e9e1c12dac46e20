#include "editor/frame/dir_file_sel.h"

#include "editor/frame/path-field.h"
#include "editor/frame/recent.h"
#include "editor/toolkit/popup.h"
#include "editor/toolkit/ui-text.h"
#include "lex/min_lex.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/string.h"
#include "support/text.h"

#include <cerrno>
#include <filesystem>
#include <unistd.h>

namespace {

using glib_string = std::unique_ptr<gchar, zel::release<g_free>>;

// Why the chosen path cannot be opened; empty when it can, or when it is to be written.
std::string why_not(GtkFileChooser *files)
{
    const GtkFileChooserAction action = gtk_file_chooser_get_action(files);
    const glib_string path(gtk_file_chooser_get_filename(files));
    if (path == nullptr || action == GTK_FILE_CHOOSER_ACTION_SAVE)
        return {};
    const std::string shown = zel::utf8_shown(path.get()) + ": ";
    if (action == GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER)
        return g_file_test(path.get(), G_FILE_TEST_IS_DIR) != 0
                   ? ""
                   : shown + zel::ui_text("reader", "there is no such folder");
    if (access(path.get(), R_OK) == 0)
        return {};
    return shown +
           (errno == ENOENT ? zel::ui_text("reader", "there is no such file") : g_strerror(errno));
}

// Refuses what does not exist, so that a typing error leads to nothing; the toolkit would accept
// such a file, and create such a folder.
void open_clicked(GtkWidget *, gpointer dialog)
{
    const std::string why = why_not(GTK_FILE_CHOOSER(dialog));
    if (why.empty())
        gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT);
    else
        zel::refuse_path(GTK_WIDGET(dialog), why.c_str());
}

// The toolkit asks for files in the background, and each of its requests holds the inside of the
// chooser until it is answered, even when the window is destroyed: what is inside would go on
// filling lists that are gone. So the window waits until nobody but itself holds it.
gboolean destroy_answered(gpointer dialog)
{
    GtkWidget *inner = zel::inner_chooser(GTK_WIDGET(dialog));
    if (inner != nullptr && G_OBJECT(inner)->ref_count > 1)
        return TRUE;
    gtk_widget_destroy(GTK_WIDGET(dialog));
    return FALSE;
}

// A chooser dialog, hidden at the end of the scope and destroyed as soon as that can be.
struct chooser {
    chooser(GtkWidget *parent, const char *title, GtkFileChooserAction action, const char *accept)
        : dialog(gtk_file_chooser_dialog_new(
              title == nullptr ? nullptr : zel::utf8_shown(title).c_str(), zel::window_of(parent),
              action, GTK_STOCK_CANCEL, GTK_RESPONSE_CANCEL, accept, GTK_RESPONSE_ACCEPT, nullptr))
    {
        gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT);
        // The parent may be destroyed while the chooser runs, and the chooser with it.
        g_signal_connect(dialog, "destroy", G_CALLBACK(gtk_widget_destroyed), &dialog);
        GtkWidget *open =
            gtk_dialog_get_widget_for_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT);
        g_signal_handlers_disconnect_matched(open, G_SIGNAL_MATCH_DATA, 0, 0, nullptr, nullptr,
                                             dialog); // the dialog's own
        g_signal_connect(open, "clicked", G_CALLBACK(open_clicked), dialog);
    }
    ~chooser()
    {
        if (dialog == nullptr)
            return;
        g_signal_handlers_disconnect_by_data(dialog, &dialog);
        // The window holds the widget with the keyboard, too, and its list of completions open.
        gtk_window_set_focus(GTK_WINDOW(dialog), nullptr);
        gtk_widget_hide(dialog);
        if (destroy_answered(dialog) != FALSE)
            g_timeout_add_seconds_full(G_PRIORITY_DEFAULT, 1, destroy_answered,
                                       g_object_ref(dialog), g_object_unref);
    }
    chooser(const chooser &) = delete;
    chooser &operator=(const chooser &) = delete;

    GtkFileChooser *files() const { return GTK_FILE_CHOOSER(dialog); }

    bool accepted(const char *preset = "") const
    {
        int answer = zel::show_path_field(dialog, preset);
        if (answer == GTK_RESPONSE_NONE)
            answer = gtk_dialog_run(GTK_DIALOG(dialog));
        return answer == GTK_RESPONSE_ACCEPT && dialog != nullptr;
    }
    [[nodiscard]] char *run(const char *preset = "") const
    {
        if (!accepted(preset))
            return nullptr;
        const glib_string path(gtk_file_chooser_get_filename(files()));
        return zel_strdup(path.get());
    }
    // Without a folder the toolkit might begin with its list of recent files, which has no field
    // for a path. When it is told a folder twice, it forgets which file to select.
    void start_in(const char *folder) const
    {
        const glib_string here(g_get_current_dir());
        const bool is_given = folder != nullptr && folder[0] != '\0';
        gtk_file_chooser_set_current_folder(files(), is_given ? folder : here.get());
    }
    // Sets the file that is chosen at first, and returns its name as it is shown. A name that is no
    // whole path is one in the folder. Only a chooser to write can hold one that does not exist.
    std::string preset(const char *folder, const char *name, bool writes) const
    {
        std::error_code error;
        const std::filesystem::path start = folder == nullptr ? "" : folder;
        const std::filesystem::path whole =
            std::filesystem::absolute(start / zel::or_empty(name), error);
        if (error || zel::or_empty(name)[0] == '\0') {
            start_in(folder);
            return {};
        }
        std::string shown = zel::utf8_shown(whole.filename().c_str());
        const bool is_there = std::filesystem::exists(whole, error);
        // A file that exists is selected, so that the list shows it.
        if (writes && is_there) {
            gtk_file_chooser_set_filename(files(), whole.c_str());
            return shown;
        }
        start_in(writes || is_there ? whole.parent_path().c_str() : folder);
        if (writes)
            gtk_file_chooser_set_current_name(files(), shown.c_str());
        return is_there ? shown : std::string();
    }

    GtkWidget *dialog;
};

char *select_file(const chooser &choose, char *folder, char *name, bool writes)
{
    zel_path_to_os(folder);
    zel_path_to_os(name);
    return choose.run(choose.preset(folder, name, writes).c_str());
}

// What the first filter shows.
struct shown_files {
    std::string ending;
    std::string preset; // whole path, or empty
};

gboolean is_shown(const GtkFileFilterInfo *info, gpointer data)
{
    const auto *shown = static_cast<const shown_files *>(data);
    if (info->display_name != nullptr &&
        g_str_has_suffix(info->display_name, shown->ending.c_str()))
        return TRUE;
    // The preset is shown whatever its ending: else the user would look for the file that was
    // named.
    return info->filename != nullptr && shown->preset == info->filename;
}

void add_filters(const chooser &choose, const char *preset, const char *ending)
{
    std::error_code error;
    auto *shown = new shown_files{std::string(".") + ending, {}};
    // The filter is asked with whole paths, so the preset must be one, too.
    if (preset != nullptr && preset[0] != '\0')
        shown->preset = std::filesystem::absolute(preset, error).string();
    GtkFileFilter *first = gtk_file_filter_new();
    gtk_file_filter_set_name(first, (std::string("*.") + ending).c_str());
    gtk_file_filter_add_custom(
        first,
        static_cast<GtkFileFilterFlags>(GTK_FILE_FILTER_DISPLAY_NAME | GTK_FILE_FILTER_FILENAME),
        is_shown, shown, [](gpointer data) { delete static_cast<shown_files *>(data); });
    gtk_file_chooser_add_filter(choose.files(), first);
    GtkFileFilter *all = gtk_file_filter_new();
    gtk_file_filter_set_name(all, zel::ui_text("common", "All files"));
    gtk_file_filter_add_pattern(all, "*");
    gtk_file_chooser_add_filter(choose.files(), all);
    gtk_file_chooser_set_filter(choose.files(), first);
}

void recent_chosen(GtkComboBox *combo, gpointer files)
{
    GtkTreeIter iter;
    gchar *path = nullptr;
    if (gtk_combo_box_get_active_iter(combo, &iter) == 0)
        return;
    gtk_tree_model_get(gtk_combo_box_get_model(combo), &iter, 1, &path, -1);
    zel::put_path(GTK_WIDGET(files), path);
    g_free(path);
}

// Makes a list of the sources opened last, under the chooser.
GtkWidget *make_recent_row(GtkFileChooser *files)
{
    // Two texts for each source, since the one that is shown may have replaced some bytes.
    GtkListStore *store = gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_STRING); // shown, path
    for (const std::string &path : zel::recent_sources()) {
        GtkTreeIter iter;
        gtk_list_store_append(store, &iter);
        gtk_list_store_set(store, &iter, 0, zel::utf8_shown(path.c_str()).c_str(), 1, path.c_str(),
                           -1);
    }
    GtkWidget *combo = gtk_combo_box_new_with_model(GTK_TREE_MODEL(store));
    const bool none = gtk_tree_model_iter_n_children(GTK_TREE_MODEL(store), nullptr) == 0;
    g_object_unref(store);
    GtkCellRenderer *text = gtk_cell_renderer_text_new();
    // Two paths mostly differ at their ends, and begin alike.
    g_object_set(text, "ellipsize", PANGO_ELLIPSIZE_MIDDLE, nullptr);
    gtk_cell_layout_pack_start(GTK_CELL_LAYOUT(combo), text, TRUE);
    gtk_cell_layout_add_attribute(GTK_CELL_LAYOUT(combo), text, "text", 0);
    g_signal_connect(combo, "changed", G_CALLBACK(recent_chosen), files);
    GtkWidget *label = gtk_label_new_with_mnemonic(zel::ui_text("common", "_Recently opened:"));
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), combo);
    GtkWidget *row = gtk_hbox_new(FALSE, 6);
    gtk_box_pack_start(GTK_BOX(row), label, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(row), combo, TRUE, TRUE, 0);
    // Without sources the list stays, greyed out: a list that comes and goes would be looked for.
    gtk_widget_set_sensitive(row, none ? FALSE : TRUE);
    gtk_widget_show_all(row);
    return row;
}

char *select_by_ending(const chooser &choose, const char *preset, const char *ending, bool writes)
{
    const zel::string_guard name(zel_strdup(preset)); // what turns backslashes gets a copy
    add_filters(choose, preset, ending);
    return select_file(choose, nullptr, name.get(), writes);
}

GtkFileFilter *make_filter(const char *patterns)
{
    GtkFileFilter *filter = gtk_file_filter_new();
    zel_list *pieces = min_lex_split_str_by_sep(nullptr, patterns, ':');
    for (const zel_list *node = pieces; node != nullptr; node = node->next)
        gtk_file_filter_add_pattern(filter, static_cast<const char *>(node->data));
    min_lex_split_str_by_sep_free(pieces);
    return filter;
}

} // namespace

char *dir_sel(GtkWidget *widget, const char *title, const char *folder)
{
    const chooser choose(widget, title, GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER, GTK_STOCK_OPEN);
    choose.start_in(folder);
    return choose.run();
}

char *file_sel_read(GtkWidget *widget, const char *title, char *folder, char *name)
{
    const chooser choose(widget, title, GTK_FILE_CHOOSER_ACTION_OPEN, GTK_STOCK_OPEN);
    return select_file(choose, folder, name, false);
}

char *file_sel_write(GtkWidget *widget, const char *title, char *folder, char *name)
{
    const chooser choose(widget, title, GTK_FILE_CHOOSER_ACTION_SAVE, GTK_STOCK_SAVE);
    return select_file(choose, folder, name, true);
}

zel_list *file_sel_multiple_unix(GtkWidget *parent, const char *title, const char *folder,
                                 const char *patterns)
{
    LogPrint(1, "file_sel_multiple_unix:\n");
    const chooser choose(parent, title, GTK_FILE_CHOOSER_ACTION_OPEN, GTK_STOCK_OPEN);
    gtk_file_chooser_set_select_multiple(choose.files(), TRUE);
    choose.start_in(folder);
    gtk_file_chooser_set_filter(choose.files(), make_filter(patterns));
    if (!choose.accepted()) {
        LogPrint(1, "file_sel_multiple_unix: ret 1\n");
        return nullptr;
    }
    zel_list *paths = nullptr;
    GSList *chosen = gtk_file_chooser_get_filenames(choose.files());
    for (GSList *node = chosen; node != nullptr; node = node->next) {
        const glib_string path(static_cast<gchar *>(node->data));
        paths = zel_list_append(paths, zel_strdup(path.get()));
    }
    g_slist_free(chosen);
    LogPrint(1, "file_sel_multiple_unix: ret 0\n");
    return paths;
}

int file_sel_show(GtkWidget *) { return 0; }

namespace zel {

char *select_to_read(GtkWidget *widget, const char *title, const char *preset, const char *ending)
{
    const chooser choose(widget, title, GTK_FILE_CHOOSER_ACTION_OPEN, GTK_STOCK_OPEN);
    return select_by_ending(choose, preset, ending, false);
}

char *select_to_write(GtkWidget *widget, const char *title, const char *preset, const char *ending)
{
    const chooser choose(widget, title, GTK_FILE_CHOOSER_ACTION_SAVE, GTK_STOCK_SAVE);
    return select_by_ending(choose, preset, ending, true);
}

char *select_source(GtkWidget *widget, const char *title)
{
    const chooser choose(widget, title, GTK_FILE_CHOOSER_ACTION_OPEN, GTK_STOCK_OPEN);
    gtk_file_chooser_set_extra_widget(choose.files(), make_recent_row(choose.files()));
    return select_by_ending(choose, nullptr, "lang-src", false);
}

} // namespace zel
