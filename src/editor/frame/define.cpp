#include "editor/frame/define.h"

#include "app/global.h"
#include "config/ini.h"
#include "editor/frame/dir_file_sel.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/popup.h"
#include "editor/toolkit/screen.h"
#include "editor/toolkit/scrolled-box.h"
#include "editor/toolkit/text-runs.h"
#include "editor/toolkit/ui-text.h"
#include "support/log-print.h"
#include "support/string-copy.h"
#include "support/time.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

GtkWidget *defineWin;
GList *defineList;

namespace {

constexpr int name_width = 240;
constexpr int edit_width = 65;
constexpr int check_width = 25;
constexpr int check_space = 20;
constexpr int path_width = 482;
constexpr int button_width = 100;
constexpr int caption_gap = 6;
constexpr const char *date_key = "zel-date";  // the spin button's label of its date
constexpr double whatsnew_end = 4294967296.0; // the time has 32 bits in the file

// The dialog while it is open.
struct dialog_state {
    LangSource *source;
    GMainLoop *loop;
    GtkWidget *path_entry;
    GtkWidget *rows_box; // the popup's content box, inside
    GtkWidget *scrolled; // this one
    GtkWidget *spin;     // of the what's-new time, or null
    int rows_above;      // widgets of rows_box that stand above the next new language
    bool gone;           // the window has been destroyed, with its parent or by us
    bool renamed;        // a language has got a new name
};

const char *text(const char *item) { return zel::ui_text("define", item); }

// Takes over what the entry holds, unless it is what it was filled with: a text that is not UTF-8
// is shown with replacements and stays as it was. True when something has changed.
bool take_entry(GtkWidget *entry, char *&owned)
{
    const char *typed = gtk_entry_get_text(GTK_ENTRY(entry));
    if (zel::utf8_shown(owned) == typed)
        return false;
    zel::replace_string(owned, zel_strdup(typed));
    zel::edit_set_modified(true);
    return true;
}

// Takes what was typed into the source, the what's-new time also without Return.
void take_rows(dialog_state *dialog)
{
    if (dialog->spin != nullptr)
        gtk_spin_button_update(GTK_SPIN_BUTTON(dialog->spin));
    for (define_row_t *row : zel::each<define_row_t>(defineList)) {
        dialog->renamed |= take_entry(row->name_entry, row->lang->name);
        take_entry(row->file_entry, row->lang->file);
    }
}

void free_rows()
{
    g_list_free_full(defineList, std::free);
    defineList = nullptr;
}

void set_edit(lang_t *lang, bool on)
{
    if ((lang->edit != 0) == on)
        return;
    lang->edit = on ? 1 : 0;
    zel::edit_set_modified(true);
}

// Two languages are edited at most: every row after the second one is switched off.
void switch_off_the_rest()
{
    int count = 0;
    for (define_row_t *row : zel::each<define_row_t>(defineList)) {
        if (count < 2) {
            count += row->lang->edit != 0 ? 1 : 0;
            continue;
        }
        row->busy = 1;
        // Switching off sends "toggled", which leads here again. A row that is off already sends
        // nothing, so this comes to an end.
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(row->edit_button), FALSE);
        set_edit(row->lang, false);
        row->busy = 0;
    }
}

constexpr const char *hint_key = "zel-hint"; // the dialog's label that says why

// Adds the hint between the rows and the buttons; it is shown only when there is something to say.
void add_hint()
{
    const char *why = text("Two languages are edited at most: take the mark off another one first");
    GtkWidget *hint = gtk_label_new(why);
    // The dialog's show_all must not show it.
    gtk_widget_set_no_show_all(hint, TRUE);
    GtkWidget *box = ZEL_POPUP(defineWin)->vbox;
    gtk_box_pack_start(GTK_BOX(box), hint, FALSE, FALSE, caption_gap);
    gtk_box_reorder_child(GTK_BOX(box), hint, 1);
    atk_object_set_role(gtk_widget_get_accessible(hint), ATK_ROLE_ALERT);
    g_object_set_data(G_OBJECT(defineWin), hint_key, hint);
}

void define_button_toggle(GtkWidget *button, gpointer data)
{
    auto *row = static_cast<define_row_t *>(data);
    const bool wanted = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(button)) != 0;
    set_edit(row->lang, wanted);
    switch_off_the_rest();
    if (defineWin != nullptr)
        gtk_widget_set_visible(GTK_WIDGET(g_object_get_data(G_OBJECT(defineWin), hint_key)),
                               wanted && row->lang->edit == 0);
    edit_refresh();
}

GtkWidget *make_entry(const char *value, const char *name)
{
    GtkWidget *entry = gtk_entry_new();
    gtk_widget_set_size_request(entry, name_width, -1);
    gtk_entry_set_text(GTK_ENTRY(entry), zel::utf8_shown(value).c_str());
    gtk_entry_set_activates_default(GTK_ENTRY(entry), TRUE);
    // Names and files of languages are for the modes that edit them.
    gtk_widget_set_sensitive(entry, lang_global.editor_mode != 0);
    zel::set_accessible_name(entry, name);
    return entry;
}

GtkWidget *make_caption(const char *caption, int width)
{
    GtkWidget *label = gtk_label_new(caption);
    gtk_widget_set_size_request(label, width, -1);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    return label;
}

GtkWidget *add_line(GtkWidget *box)
{
    GtkWidget *line = gtk_hbox_new(FALSE, 2);
    gtk_box_pack_start(GTK_BOX(box), line, FALSE, FALSE, 0);
    return line;
}

void add_header(GtkWidget *box)
{
    GtkWidget *line = add_line(box);
    const struct {
        const char *caption;
        int width;
    } columns[] = {{"language", name_width}, {"filename", name_width}, {"edit?", edit_width}};
    for (const auto &column : columns)
        gtk_box_pack_start(GTK_BOX(line), make_caption(text(column.caption), column.width), FALSE,
                           FALSE, 0);
}

// Makes the rows' part as large as the rows, while the dialog fits onto the screen; then it
// scrolls.
void fit_to_screen(const dialog_state *dialog)
{
    constexpr int title_bar = 40;
    GtkRequisition rows{};
    GtkRequisition whole{};
    gtk_widget_size_request(dialog->rows_box, &rows);
    // Without the rows the dialog tells how much it takes around them.
    gtk_widget_set_size_request(dialog->scrolled, 0, 0);
    gtk_widget_size_request(defineWin, &whole);
    const GdkRectangle screen = zel::work_area(defineWin);
    const int room = screen.height - title_bar - whole.height;
    int width = rows.width;
    if (rows.height > room) {
        GtkRequisition bar{};
        gtk_widget_size_request(
            gtk_scrolled_window_get_vscrollbar(GTK_SCROLLED_WINDOW(dialog->scrolled)), &bar);
        width += bar.width + 2 * caption_gap;
    }
    gtk_widget_set_size_request(dialog->scrolled, width, std::min(rows.height, room));
}

// Scrolls to a new row. It has its place only now, after it was given the keyboard.
void rows_placed(GtkWidget *rows_box, GtkAllocation *, gpointer adjustment)
{
    GtkWidget *row = gtk_container_get_focus_child(GTK_CONTAINER(rows_box));
    if (row == nullptr)
        return;
    GtkAllocation place{};
    gtk_widget_get_allocation(row, &place);
    gtk_adjustment_clamp_page(GTK_ADJUSTMENT(adjustment), place.y, place.y + place.height);
}

// Puts the popup's content box into a window that scrolls, also to the row that gets the keyboard.
GtkWidget *scroll_rows(GtkWidget *rows_box)
{
    GtkWidget *parent = gtk_widget_get_parent(rows_box);
    GtkWidget *scrolled = zel::scrolled_box_new(rows_box);
    g_signal_connect_after(rows_box, "size-allocate", G_CALLBACK(rows_placed),
                           gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scrolled)));
    gtk_box_pack_start(GTK_BOX(parent), scrolled, TRUE, TRUE, 0);
    return scrolled;
}

// Adds a new language; its row stands below those of the others.
void define_button_add(GtkWidget *, gpointer data)
{
    auto *dialog = static_cast<dialog_state *>(data);
    lang_t *lang = alloc_lang();
    if (lang == nullptr)
        return;
    dialog->source->langs = g_list_append(dialog->source->langs, lang);
    defineList = define_create_entry(dialog->rows_box, defineList, lang);
    const auto *row = static_cast<define_row_t *>(g_list_last(defineList)->data);
    // The box also holds the path and the time, which stay below all rows.
    gtk_box_reorder_child(GTK_BOX(dialog->rows_box), gtk_widget_get_parent(row->name_entry),
                          dialog->rows_above++);
    fit_to_screen(dialog);
    gtk_widget_grab_focus(row->name_entry);
    zel::edit_set_modified(true);
}

// Takes the export folder from the entry, unless it still shows the one of the settings.
void take_export_path(GtkWidget *entry)
{
    const char *shown = gtk_entry_get_text(GTK_ENTRY(entry));
    if (ini != nullptr && zel::utf8_shown(ini->dstDir) != shown)
        zel::replace_string(ini->dstDir, zel_strdup(shown));
    std::printf("dst dir >%s<\n", ini == nullptr || ini->dstDir == nullptr ? "" : ini->dstDir);
}

void browse_dst_dir(GtkWidget *button, gpointer data)
{
    GtkWidget *entry = static_cast<dialog_state *>(data)->path_entry;
    char *chosen = dir_sel(button, text("Browse destination directory"),
                           ini == nullptr ? nullptr : ini->dstDir);
    if (chosen == nullptr)
        return;
    std::printf("dst dir >%s<\n", chosen);
    gtk_entry_set_text(GTK_ENTRY(entry), zel::utf8_shown(chosen).c_str());
    zel::edit_show_export_path(chosen);
    if (ini != nullptr)
        zel::replace_string(ini->dstDir, chosen);
    else
        std::free(chosen);
}

void add_export_path(dialog_state *dialog)
{
    GtkWidget *line = add_line(dialog->rows_box);
    GtkWidget *caption = gtk_label_new(text("Export path"));
    gtk_box_pack_start(GTK_BOX(line), caption, FALSE, FALSE, caption_gap);
    dialog->path_entry = gtk_entry_new();
    gtk_widget_set_size_request(dialog->path_entry, path_width, -1);
    gtk_entry_set_text(GTK_ENTRY(dialog->path_entry),
                       zel::utf8_shown(ini == nullptr ? nullptr : ini->dstDir).c_str());
    // The path is chosen, not typed: a folder that does not exist would be noticed only at the
    // export.
    gtk_widget_set_sensitive(dialog->path_entry, FALSE);
    gtk_label_set_mnemonic_widget(GTK_LABEL(caption), dialog->path_entry);
    gtk_box_pack_start(GTK_BOX(line), dialog->path_entry, TRUE, TRUE, 0);
    GtkWidget *browse = gtk_button_new_with_label(text("Browse"));
    gtk_widget_set_size_request(browse, button_width, -1);
    g_signal_connect(browse, "clicked", G_CALLBACK(browse_dst_dir), dialog);
    gtk_box_pack_start(GTK_BOX(line), browse, FALSE, FALSE, 0);
}

// Shows the time as people read it, beside the field and for a screen reader.
void show_date(GtkSpinButton *spin, std::int64_t time)
{
    const std::string date = time == 0 ? "" : zel::date_text("%Y-%m-%d %H:%M:%S", time);
    auto *label = static_cast<GtkWidget *>(g_object_get_data(G_OBJECT(spin), date_key));
    gtk_label_set_text(GTK_LABEL(label), date.c_str());
    zel::set_accessible_description(GTK_WIDGET(spin), date.c_str());
}

void whatsnew_changed_cb(GtkSpinButton *spin, gpointer data)
{
    auto *source = static_cast<LangSource *>(data);
    const auto value = static_cast<std::int64_t>(gtk_spin_button_get_value(spin));
    // Showing the value that the source has must not make it modified.
    if (source->whatsnew != value)
        zel::edit_set_modified(true);
    source->whatsnew = value;
    show_date(spin, value);
}

void add_whatsnew(dialog_state *dialog)
{
    GtkWidget *line = add_line(dialog->rows_box);
    GtkWidget *caption = gtk_label_new(text("Whatsnew time"));
    gtk_box_pack_start(GTK_BOX(line), caption, FALSE, FALSE, caption_gap);
    GtkObject *range =
        gtk_adjustment_new(static_cast<double>(dialog->source->whatsnew), 0, whatsnew_end, 1, 0, 0);
    GtkWidget *spin = gtk_spin_button_new(GTK_ADJUSTMENT(range), 1, 0);
    gtk_spin_button_set_numeric(GTK_SPIN_BUTTON(spin), TRUE);
    gtk_entry_set_activates_default(GTK_ENTRY(spin), TRUE);
    gtk_label_set_mnemonic_widget(GTK_LABEL(caption), spin);
    dialog->spin = spin;
    gtk_widget_set_name(spin, "whatsnew");
    g_signal_connect(spin, "value-changed", G_CALLBACK(whatsnew_changed_cb), dialog->source);
    gtk_box_pack_start(GTK_BOX(line), spin, FALSE, FALSE, 0);
    GtkWidget *date = gtk_label_new(nullptr);
    zel::keep_left_to_right(date);
    g_object_set_data(G_OBJECT(spin), date_key, date);
    gtk_box_pack_start(GTK_BOX(line), date, FALSE, FALSE, caption_gap);
    show_date(GTK_SPIN_BUTTON(spin), dialog->source->whatsnew);
}

gboolean define_configure(GtkWidget *window, GdkEvent *, gpointer)
{
    gint x = 0;
    gint y = 0;
    gdk_window_get_root_origin(gtk_widget_get_window(window), &x, &y);
    // Only kept in the settings: the dialog itself always appears in the centre.
    if (ini != nullptr) {
        ini->define_x = x;
        ini->define_y = y;
    }
    return FALSE;
}

void define_button_close(GtkWidget *, gpointer data)
{
    GMainLoop *loop = static_cast<dialog_state *>(data)->loop;
    if (g_main_loop_is_running(loop))
        g_main_loop_quit(loop);
}

gboolean define_delete_event(GtkWidget *, GdkEvent *, gpointer data)
{
    auto *dialog = static_cast<dialog_state *>(data);
    take_export_path(dialog->path_entry);
    g_main_loop_quit(dialog->loop);
    return TRUE; // define_open destroys the window, after it has taken the rows
}

// The rows' widgets are being destroyed, by the dialog's own end or with the window above it.
void define_destroy_event(GtkWidget *, gpointer data)
{
    auto *dialog = static_cast<dialog_state *>(data);
    // The toolkit may send "destroy" more than once.
    if (dialog->gone)
        return;
    dialog->gone = true;
    // This is the last moment at which the entries can be read.
    take_rows(dialog);
    LogPrint(1, "default_destroy: msg_box: g_main_loop_quit\n");
    g_main_loop_quit(dialog->loop);
}

void add_languages(dialog_state *dialog)
{
    add_header(dialog->rows_box);
    for (lang_t *lang : zel::each<lang_t>(dialog->source->langs))
        defineList = define_create_entry(dialog->rows_box, defineList, lang);
    // The titles are the first widget, and the languages follow.
    dialog->rows_above = 1 + static_cast<int>(g_list_length(defineList));
}

void build(dialog_state *dialog)
{
    const bool may_edit = lang_global.editor_mode != 0;
    if (dialog->source != nullptr) {
        add_languages(dialog);
        if (may_edit) {
            GtkWidget *add =
                zel::popup_add_button(defineWin, text("Add"), button_width, zel::POPUP_PLAIN);
            g_signal_connect(add, "clicked", G_CALLBACK(define_button_add), dialog);
        }
    }
    GtkWidget *close = zel::popup_add_button(defineWin, text("Close"), button_width,
                                             zel::POPUP_DEFAULT | zel::POPUP_CLOSES);
    g_signal_connect(close, "clicked", G_CALLBACK(define_button_close), dialog);
    gtk_box_pack_start(GTK_BOX(dialog->rows_box), gtk_hseparator_new(), FALSE, TRUE, 0);
    add_export_path(dialog);
    if (may_edit && dialog->source != nullptr)
        add_whatsnew(dialog);
}

} // namespace

GList *define_create_entry(GtkWidget *box, GList *rows, lang_t *lang)
{
    auto *row = static_cast<define_row_t *>(std::calloc(1, sizeof(define_row_t)));
    if (row == nullptr)
        return rows;
    row->lang = lang;
    GtkWidget *line = add_line(box);
    row->name_entry = make_entry(lang->name, text("language"));
    gtk_box_pack_start(GTK_BOX(line), row->name_entry, FALSE, FALSE, 0);
    row->file_entry = make_entry(lang->file, text("filename"));
    gtk_box_pack_start(GTK_BOX(line), row->file_entry, FALSE, FALSE, 0);
    row->edit_button = gtk_check_button_new();
    gtk_widget_set_size_request(row->edit_button, check_width, -1);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(row->edit_button), lang->edit != 0);
    zel::set_accessible_name(row->edit_button, text("edit?"));
    // Connected after the mark is set, which is no choice of the user.
    g_signal_connect(row->edit_button, "toggled", G_CALLBACK(define_button_toggle), row);
    gtk_box_pack_start(GTK_BOX(line), row->edit_button, FALSE, FALSE, check_space);
    gtk_widget_show_all(line);
    return g_list_append(rows, row);
}

int define_open(GtkWidget *parent, LangSource *source)
{
    defineWin = zel_popup_new();
    dialog_state dialog{};
    dialog.source = source;
    dialog.loop = g_main_loop_new(nullptr, FALSE);
    dialog.rows_box = ZEL_POPUP(defineWin)->content_box;
    dialog.scrolled = scroll_rows(dialog.rows_box);
    zel::set_accessible_name(defineWin, text("language"));
    add_hint();
    build(&dialog);
    gtk_widget_show_all(ZEL_POPUP(defineWin)->frame);
    // Only now, since hidden widgets ask for no room.
    fit_to_screen(&dialog);
    g_signal_connect(defineWin, "configure-event", G_CALLBACK(define_configure), nullptr);
    g_signal_connect(defineWin, "delete-event", G_CALLBACK(define_delete_event), &dialog);
    g_signal_connect(defineWin, "destroy", G_CALLBACK(define_destroy_event), &dialog);
    gtk_window_set_resizable(GTK_WINDOW(defineWin), FALSE);
    gtk_window_set_position(GTK_WINDOW(defineWin), GTK_WIN_POS_CENTER);
    zel::popup_run(defineWin, parent, dialog.loop);
    if (!dialog.gone)
        gtk_widget_destroy(defineWin); // its handler takes the rows
    g_main_loop_unref(dialog.loop);
    free_rows();
    defineWin = nullptr;
    // The table's titles and the fields' captions hold the old names.
    if (dialog.renamed)
        zel::edit_reload();
    return 0;
}
