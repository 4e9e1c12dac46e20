#include "editor/frame/edit.h"

#include "app/global.h"
#include "config/ini.h"
#include "editor/frame/edit-actions.h"
#include "editor/frame/edit-file.h"
#include "editor/frame/edit-keys.h"
#include "editor/frame/edit-menus.h"
#include "editor/frame/edit-place.h"
#include "editor/frame/edit-undo.h"
#include "editor/frame/end-signals.h"
#include "editor/frame/source-watch.h"
#include "editor/panel/dictionary.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/label-caret.h"
#include "editor/toolkit/menu-grab.h"
#include "editor/toolkit/text-runs.h"
#include "editor/toolkit/theme.h"
#include "editor/toolkit/ui-text.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace {

constexpr int caption_width = 120;
constexpr int around_pane = 6;

// The rows of information: caption (group "common") and where the value's label is kept.
struct info_row {
    const char *caption;
    GtkWidget *lang_global_t::*value;
    PangoEllipsizeMode ellipsize; // paths differ at both ends
};
constexpr info_row info_rows[] = {
    {"Create date:", &lang_global_t::create_date_label, PANGO_ELLIPSIZE_END},
    {"Modification date:", &lang_global_t::mtime_label, PANGO_ELLIPSIZE_END},
    {"File:", &lang_global_t::file_label, PANGO_ELLIPSIZE_MIDDLE},
    {"Export path:", &lang_global_t::export_path_label, PANGO_ELLIPSIZE_MIDDLE},
};

// Sets the icon of the user's theme, else the one among the program's data.
void set_icon()
{
    if (lang_global.doc_base_dir != nullptr) {
        const std::string icons = std::string(lang_global.doc_base_dir) + "/icons";
        gtk_icon_theme_append_search_path(gtk_icon_theme_get_default(), icons.c_str());
    }
    gtk_window_set_default_icon_name("lang-editor");
}

GtkWidget *make_window()
{
    mainWin = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(mainWin), "Tarvik language editor version 1.4");
    gtk_window_set_position(GTK_WINDOW(mainWin), GTK_WIN_POS_CENTER);
    set_icon();
    accel_group = gtk_accel_group_new();
    gtk_window_add_accel_group(GTK_WINDOW(mainWin), accel_group);
    zel::undo_add_keys();
    zel::keys_add_key();
    // Digits are exchanged before the keys of the window see them.
    g_signal_connect(mainWin, "key_press_event", G_CALLBACK(lang_key_press_event), &def_group);
    g_signal_connect(mainWin, "key-press-event", G_CALLBACK(accel_first_event), &def_group);
    g_signal_connect(mainWin, "delete_event", G_CALLBACK(delete_event), &def_group);
    zel::watch_window(mainWin);
    g_signal_connect(mainWin, "destroy", G_CALLBACK(gtk_widget_destroyed), &mainWin);
    return mainWin;
}

// Makes a label a little smaller than the rest: the captions have a fixed width, and the room
// belongs to the work below.
GtkWidget *make_info_label(const char *text)
{
    GtkWidget *label = gtk_label_new(text);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    PangoAttrList *attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_scale_new(0.9));
    gtk_label_set_attributes(GTK_LABEL(label), attributes);
    pango_attr_list_unref(attributes);
    return label;
}

// The width of the captions: more than usual only where a large font would cut one.
int width_of_captions()
{
    int width = caption_width;
    for (const info_row &row : info_rows) {
        GtkWidget *label = make_info_label(zel::ui_text("common", row.caption));
        // A label that is in no window has only a floating reference.
        g_object_ref_sink(label);
        GtkRequisition wanted{};
        gtk_widget_size_request(label, &wanted);
        width = std::max(width, wanted.width + around_pane);
        g_object_unref(label);
    }
    return width;
}

GtkWidget *make_info_row(const info_row &row, int width)
{
    const char *text = zel::ui_text("common", row.caption);
    GtkWidget *box = gtk_hbox_new(FALSE, 0);
    GtkWidget *caption = make_info_label(text);
    gtk_widget_set_size_request(caption, width, -1);
    gtk_box_pack_start(GTK_BOX(box), caption, FALSE, FALSE, 0);

    GtkWidget *value = make_info_label("");
    zel::keep_left_to_right(value);
    gtk_label_set_ellipsize(GTK_LABEL(value), row.ellipsize);
    gtk_box_pack_start(GTK_BOX(box), value, TRUE, TRUE, 0);
    lang_global.*row.value = value;
    return box;
}

GtkWidget *make_info_frame()
{
    GtkWidget *frame = gtk_frame_new(nullptr);
    zel::make_bare(frame);
    lang_global.info_box = gtk_vbox_new(FALSE, 1);
    gtk_container_set_border_width(GTK_CONTAINER(lang_global.info_box), 2);
    const int width = width_of_captions();
    for (const info_row &row : info_rows)
        gtk_box_pack_start(GTK_BOX(lang_global.info_box), make_info_row(row, width), FALSE, FALSE,
                           0);
    gtk_container_add(GTK_CONTAINER(frame), lang_global.info_box);
    zel::edit_show_export_path(ini == nullptr ? nullptr : ini->dstDir);
    return frame;
}

GtkWidget *make_notebook()
{
    GtkWidget *notebook = gtk_notebook_new();
    g_object_set(notebook, "homogeneous", TRUE, "tab-hborder", 8, nullptr);
    zel::soften_edges(notebook);

    editBox = gtk_vbox_new(FALSE, 0);
    lang_global.edit_tab_label = gtk_label_new(zel::ui_text("common", "Language Edit"));
    // The tab is drawn when its page comes to the front: this is how the list gets the keyboard
    // then.
    g_signal_connect(lang_global.edit_tab_label, "expose-event", G_CALLBACK(list_expose_event),
                     &def_group);
    gtk_notebook_append_page(GTK_NOTEBOOK(notebook), editBox, lang_global.edit_tab_label);

    lang_global.shot_window = gtk_scrolled_window_new(nullptr, nullptr);
    lang_global.shot_tab_label = gtk_label_new(zel::ui_text("common", "Screen Shot"));
    zel::set_accessible_name(lang_global.shot_window, zel::ui_text("common", "Screen Shot"));
    gtk_notebook_append_page(GTK_NOTEBOOK(notebook), lang_global.shot_window,
                             lang_global.shot_tab_label);
    return notebook;
}

GtkWidget *make_status_frame()
{
    GtkWidget *frame = gtk_frame_new(nullptr);
    zel::make_bare(frame);
    gtk_container_set_border_width(GTK_CONTAINER(frame), 1);
    GtkWidget *row = gtk_hbox_new(FALSE, around_pane);
    gtk_container_add(GTK_CONTAINER(frame), row);
    statusWin = gtk_entry_new();
    gtk_editable_set_editable(GTK_EDITABLE(statusWin), FALSE);
    gtk_widget_set_name(statusWin, "status");
    zel::edit_status(nullptr);
    gtk_box_pack_start(GTK_BOX(row), statusWin, TRUE, TRUE, 0);
    changed_sign = gtk_label_new(zel::ui_text("common", "changed"));
    // The window is shown with show_all; the sign comes with the first change.
    gtk_widget_set_no_show_all(changed_sign, TRUE);
    gtk_misc_set_padding(GTK_MISC(changed_sign), around_pane, 0);
    gtk_box_pack_start(GTK_BOX(row), changed_sign, FALSE, FALSE, 0);
    return frame;
}

void build_window()
{
    GtkWidget *box = gtk_vbox_new(FALSE, 0);
    gtk_container_add(GTK_CONTAINER(make_window()), box);
    if (lang_global.editor_mode == 0)
        lang_global.posnr = 1;
    lang_global.whatsnew_since = 0;
    gtk_box_pack_start(GTK_BOX(box), zel::make_menu_bar(), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), zel::make_toolbar(), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), make_info_frame(), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), make_notebook(), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), make_status_frame(), FALSE, FALSE, 0);
    // Before the window is shown: a window that moves after it has appeared looks broken.
    zel::keep_window_place(mainWin);
    gtk_widget_show_all(mainWin);
}

// Destroys the window and clears every pointer to its widgets, so that nobody finds one afterwards.
void take_down_window()
{
    if (mainWin != nullptr)
        gtk_widget_destroy(mainWin);
    mainWin = editBox = editWin = statusWin = changed_sign = empty_menu = empty_tool = nullptr;
    for (const info_row &row : info_rows)
        lang_global.*row.value = nullptr;
    lang_global.info_box = lang_global.shot_window = lang_global.shot_image = nullptr;
    lang_global.edit_tab_label = lang_global.shot_tab_label = nullptr;
    g_clear_object(&accel_group);
    zel::release_dictionaries();
}

// Frees the settings without writing them.
void close_settings()
{
    ini_free(ini);
    ini = nullptr;
}

} // namespace

int edit()
{
    ini = ini_new("lang.lang-ini");
    ini_read(ini);
    // Before the first window: widgets take their styles when they are made.
    zel::apply_theme();
    build_window();
    zel::close_hidden_menus();
    zel::keep_carets_in_labels();
    // The window is there already, since its status line tells why the file cannot be read.
    if (def_file != nullptr && !zel::edit_read_source()) {
        std::puts("Error in language file");
        std::fprintf(stderr, "lang: %s\n", gtk_entry_get_text(GTK_ENTRY(statusWin)));
        close_settings();
    } else {
        // Only now: before, there is no state that a signal or a crash could lose.
        zel::end_signals_begin();
        if (def_file != nullptr) {
            zel::edit_show_source();
            zel::edit_guard_source(mainWin);
        }
        gtk_main();
        zel::end_signals_end();
    }
    take_down_window();
    return 0;
}
