#include "editor/dir_file_sel.h"

#include "editor/popup.h"
#include "editor/ui-text.h"
#include "lex/min_lex.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/string.h"

#include <filesystem>

namespace {

using glib_string = std::unique_ptr<gchar, zel::release<g_free>>;

// A chooser dialog, destroyed at the end of the scope.
struct chooser {
    chooser(GtkWidget *parent, const char *title, GtkFileChooserAction action, const char *accept)
        : dialog(gtk_file_chooser_dialog_new(
              title == nullptr ? nullptr : zel::utf8_shown(title).c_str(), zel::window_of(parent),
              action, GTK_STOCK_CANCEL, GTK_RESPONSE_CANCEL, accept, GTK_RESPONSE_ACCEPT, nullptr))
    {
        gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT);
        g_signal_connect(dialog, "destroy", G_CALLBACK(gtk_widget_destroyed), &dialog);
    }
    ~chooser()
    {
        if (dialog != nullptr)
            gtk_widget_destroy(dialog);
    }
    chooser(const chooser &) = delete;
    chooser &operator=(const chooser &) = delete;

    GtkFileChooser *files() const { return GTK_FILE_CHOOSER(dialog); }

    bool accepted() const
    {
        return gtk_dialog_run(GTK_DIALOG(dialog)) == GTK_RESPONSE_ACCEPT && dialog != nullptr;
    }
    [[nodiscard]] char *run() const
    {
        if (!accepted())
            return nullptr;
        const glib_string path(gtk_file_chooser_get_filename(files()));
        return zel_strdup(path.get());
    }
    void start_in(const char *folder) const
    {
        if (folder != nullptr && folder[0] != '\0')
            gtk_file_chooser_set_current_folder(files(), folder);
    }
    // An existing file is selected where it is; only a chooser to write can hold another name.
    void preset(const char *name, bool writes) const
    {
        if (name == nullptr || name[0] == '\0')
            return;
        std::error_code error;
        const std::filesystem::path whole = std::filesystem::absolute(name, error);
        if (error)
            return;
        if (std::filesystem::exists(whole, error)) {
            gtk_file_chooser_set_filename(files(), whole.c_str());
        } else if (writes) {
            start_in(whole.parent_path().c_str());
            gtk_file_chooser_set_current_name(files(),
                                              zel::utf8_shown(whole.filename().c_str()).c_str());
        }
    }

    GtkWidget *dialog;
};

char *select_file(const chooser &choose, char *folder, char *name, bool writes)
{
    zel_path_to_os(folder);
    zel_path_to_os(name);
    choose.start_in(folder);
    choose.preset(name, writes);
    return choose.run();
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
