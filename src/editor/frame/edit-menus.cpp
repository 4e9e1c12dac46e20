#include "editor/frame/edit-menus.h"

#include "app/global.h"
#include "editor/frame/edit-actions.h"
#include "editor/frame/edit-export.h"
#include "editor/frame/edit-file.h"
#include "editor/state/edit-state.h"
#include "editor/toolkit/gtk-compat.h"
#include "editor/toolkit/ui-text.h"

#include <gdk/gdkkeysyms.h>

#include <iterator>

namespace {

using action = void (*)(GtkWidget *, gpointer);

// The editor modes in which an entry or a button is there, a bit for each.
enum : unsigned { MODE_0 = 1, MODES_1_2 = 6, ALL_MODES = 7 };

bool in_this_mode(unsigned modes) { return (modes & (1U << lang_global.editor_mode)) != 0; }

enum class entry { title, item, check, separator };

// A key is bound, or only shown beside an entry because another entry is bound to it.
enum class key_use { none, bound, shown };

struct menu_row {
    entry kind;
    unsigned modes;
    const char *group; // of the text
    const char *text;
    const char *stock; // icon, or null
    guint key;
    GdkModifierType modifier;
    key_use use;
    action act;
};

constexpr GdkModifierType no_modifier = GdkModifierType{};

constexpr menu_row title(unsigned modes, const char *text)
{
    return {entry::title, modes, "menu", text, nullptr, 0, no_modifier, key_use::none, nullptr};
}

constexpr menu_row line(unsigned modes)
{
    return {entry::separator, modes,         nullptr, nullptr, nullptr, 0,
            no_modifier,      key_use::none, nullptr};
}

constexpr const char *export_text = "Export to language files (*.lang)";

// kind, modes, text group, text, stock icon, key, modifier, use of the key, action
constexpr menu_row menu_rows[] = {
    title(ALL_MODES, "_File"),
    {entry::item, ALL_MODES, "toolbar", "Load", GTK_STOCK_OPEN, GDK_KEY_o, GDK_CONTROL_MASK,
     key_use::bound, cb_open},
    {entry::item, ALL_MODES, "neu", "Save", GTK_STOCK_SAVE, GDK_KEY_s, GDK_CONTROL_MASK,
     key_use::bound, cb_save},
    {entry::item, ALL_MODES, "neu", "Save as", GTK_STOCK_SAVE_AS, GDK_KEY_s, GDK_MOD1_MASK,
     key_use::bound, cb_save_as},
    line(ALL_MODES),
    {entry::item, ALL_MODES, "neu", "Exit programm", GTK_STOCK_QUIT, GDK_KEY_x, GDK_MOD1_MASK,
     key_use::bound, cb_exit},

    title(ALL_MODES, "_Move"),
    {entry::item, ALL_MODES, "neu", "First", GTK_STOCK_GOTO_TOP, GDK_KEY_Home, GDK_MOD1_MASK,
     key_use::bound, cb_first},
    {entry::item, ALL_MODES, "neu", "Previous", GTK_STOCK_GO_UP, GDK_KEY_Up, GDK_MOD1_MASK,
     key_use::bound, cb_previous},
    {entry::item, ALL_MODES, "neu", "Next", GTK_STOCK_GO_DOWN, GDK_KEY_Down, GDK_MOD1_MASK,
     key_use::bound, cb_next},
    {entry::item, ALL_MODES, "neu", "Last", GTK_STOCK_GOTO_BOTTOM, GDK_KEY_End, GDK_MOD1_MASK,
     key_use::bound, cb_last},

    title(MODE_0, "_Export"),
    title(MODES_1_2, "_Export/Import"),
    // The key beside this entry is that of "Last": it never exports.
    {entry::item, ALL_MODES, "toolbar", export_text, GTK_STOCK_CONVERT, GDK_KEY_End, GDK_MOD1_MASK,
     key_use::shown, cb_export},
    line(MODES_1_2),
    {entry::item, MODES_1_2, "toolbar", "Import language file (*.lang)", GTK_STOCK_REVERT_TO_SAVED,
     0, no_modifier, key_use::none, cb_import},
    line(MODES_1_2),
    {entry::item, MODES_1_2, "menu", "Save selected language file(*.lang-src)", GTK_STOCK_COPY, 0,
     no_modifier, key_use::none, cb_save_selected_lang},

    title(ALL_MODES, "Ex_tras"),
    {entry::check, ALL_MODES, "toolbar", "Display not translated items", nullptr, 0, no_modifier,
     key_use::none, cb_empty_menu},

    title(ALL_MODES, "_Setup"),
    {entry::item, ALL_MODES, "toolbar", "Setting", GTK_STOCK_PROPERTIES, 0, no_modifier,
     key_use::none, cb_settings},
};

// Every entry stands under a title, and no key is bound twice.
constexpr bool menu_is_sound()
{
    if (menu_rows[0].kind != entry::title)
        return false;
    for (const menu_row &row : menu_rows) {
        for (const menu_row &other : menu_rows) {
            if (&row != &other && row.use == key_use::bound && other.use == key_use::bound &&
                row.key == other.key && row.modifier == other.modifier)
                return false;
        }
    }
    return true;
}
static_assert(menu_is_sound());

enum class tool { button, toggle, lines_2, lines_1 };

struct tool_row {
    tool kind;
    unsigned modes;
    const char *stock;
    const char *tooltip; // group "toolbar"
    action act;
};

constexpr tool_row line_in(unsigned modes)
{
    return {tool::lines_2, modes, nullptr, nullptr, nullptr};
}

// kind, modes, stock icon, tooltip, action
constexpr tool_row tool_rows[] = {
    {tool::button, ALL_MODES, GTK_STOCK_OPEN, "Load (Ctrl+O)", cb_open},
    {tool::button, ALL_MODES, GTK_STOCK_SAVE, "Save (Ctrl+S)", cb_save},
    {tool::button, ALL_MODES, GTK_STOCK_SAVE_AS, "Save as (ALT+S)", cb_save_as},
    line_in(ALL_MODES),
    {tool::button, ALL_MODES, GTK_STOCK_GOTO_TOP, "First (ALT+Home)", cb_first},
    {tool::button, ALL_MODES, GTK_STOCK_GO_UP, "Previous (ALT+Up)", cb_previous},
    {tool::button, ALL_MODES, GTK_STOCK_GO_DOWN, "Next (ALT+Down)", cb_next},
    {tool::button, ALL_MODES, GTK_STOCK_GOTO_BOTTOM, "Last (ALT+End)", cb_last},
    line_in(ALL_MODES),
    {tool::button, ALL_MODES, GTK_STOCK_CONVERT, export_text, cb_export},
    line_in(MODES_1_2),
    {tool::button, MODES_1_2, GTK_STOCK_REVERT_TO_SAVED, "Import converted language file (*.lang)",
     cb_import},
    line_in(MODES_1_2),
    {tool::button, MODES_1_2, GTK_STOCK_COPY, "Save selected languages (*.lang-src)",
     cb_save_selected_lang},
    {tool::lines_1, MODES_1_2, nullptr, nullptr, nullptr},
    {tool::toggle, ALL_MODES, GTK_STOCK_INDEX, "Display position number", cb_posnr},
    line_in(ALL_MODES),
    {tool::button, ALL_MODES, GTK_STOCK_PROPERTIES, "Settings", cb_settings},
    line_in(ALL_MODES),
    {tool::toggle, ALL_MODES, GTK_STOCK_MISSING_IMAGE, "Display only not translated items",
     cb_empty_toolbar},
    line_in(ALL_MODES),
    {tool::button, ALL_MODES, GTK_STOCK_INFO, "Help", cb_help},
    line_in(ALL_MODES),
    {tool::button, ALL_MODES, GTK_STOCK_QUIT, "Exit", cb_exit},
};

void add_key(GtkWidget *item, const menu_row &row)
{
    // A key that is only shown belongs to a group that no window has.
    static GtkAccelGroup *shown_only;
    if (row.use == key_use::none)
        return;
    if (row.use == key_use::shown && shown_only == nullptr)
        shown_only = gtk_accel_group_new();
    gtk_widget_add_accelerator(item, "activate",
                               row.use == key_use::bound ? accel_group : shown_only, row.key,
                               row.modifier, GTK_ACCEL_VISIBLE);
}

GtkWidget *make_item(const menu_row &row)
{
    GtkWidget *item = gtk_image_menu_item_new_with_label(zel::ui_text(row.group, row.text));
    if (row.stock != nullptr) {
        gtk_image_menu_item_set_image(GTK_IMAGE_MENU_ITEM(item),
                                      gtk_image_new_from_stock(row.stock, GTK_ICON_SIZE_MENU));
        gtk_image_menu_item_set_always_show_image(GTK_IMAGE_MENU_ITEM(item), TRUE);
    }
    g_signal_connect(item, "activate", G_CALLBACK(row.act), &def_group);
    add_key(item, row);
    return item;
}

GtkWidget *make_check(const menu_row &row)
{
    empty_menu = gtk_check_menu_item_new_with_label(zel::ui_text(row.group, row.text));
    g_signal_connect(empty_menu, "toggled", G_CALLBACK(row.act), &def_group);
    return empty_menu;
}

GtkWidget *make_entry(const menu_row &row)
{
    switch (row.kind) {
    case entry::item:
        return make_item(row);
    case entry::check:
        return make_check(row);
    default:
        return gtk_separator_menu_item_new();
    }
}

// Adds a title with an empty menu to the bar; returns the menu.
GtkWidget *add_menu(GtkWidget *bar, const menu_row &row)
{
    GtkWidget *item = gtk_menu_item_new_with_mnemonic(zel::ui_text(row.group, row.text));
    GtkWidget *menu = gtk_menu_new();
    gtk_menu_set_accel_group(GTK_MENU(menu), accel_group);
    gtk_menu_item_set_submenu(GTK_MENU_ITEM(item), menu);
    gtk_menu_shell_append(GTK_MENU_SHELL(bar), item);
    return menu;
}

void add_button(GtkWidget *toolbar, const tool_row &row)
{
    const char *tooltip = zel::ui_text("toolbar", row.tooltip);
    GtkWidget *icon = gtk_image_new_from_stock(row.stock, GTK_ICON_SIZE_LARGE_TOOLBAR);
    const bool toggles = row.kind == tool::toggle;
    const bool is_posnr = row.act == cb_posnr;
    GtkWidget *button =
        zel_toolbar_append_element(toolbar, toggles ? ZEL_TOOL_TOGGLE : ZEL_TOOL_BUTTON, nullptr,
                                   tooltip, tooltip, icon, nullptr, nullptr);
    // The toggles are set before the handler is connected: setting is no click.
    if (is_posnr)
        gtk_toggle_tool_button_set_active(GTK_TOGGLE_TOOL_BUTTON(button), lang_global.posnr != 0);
    // Only the filter's button is set from outside: the menu's entry moves it.
    else if (toggles)
        empty_tool = button;
    g_signal_connect(button, "clicked", G_CALLBACK(row.act), &def_group);
    // Else one wide button would make all of them wide.
    gtk_tool_item_set_homogeneous(GTK_TOOL_ITEM(button), FALSE);
}

} // namespace

namespace zel {

GtkWidget *make_menu_bar()
{
    GtkWidget *bar = gtk_menu_bar_new();
    GtkWidget *menu = nullptr;
    for (const menu_row &row : menu_rows) {
        if (!in_this_mode(row.modes))
            continue;
        if (row.kind == entry::title)
            menu = add_menu(bar, row);
        else
            gtk_menu_shell_append(GTK_MENU_SHELL(menu), make_entry(row));
    }
    return bar;
}

GtkWidget *make_toolbar()
{
    GtkWidget *toolbar = gtk_toolbar_new();
    gtk_widget_set_name(toolbar, "main-toolbar");
    gtk_orientable_set_orientation(GTK_ORIENTABLE(toolbar), GTK_ORIENTATION_HORIZONTAL);
    gtk_toolbar_set_style(GTK_TOOLBAR(toolbar), GTK_TOOLBAR_ICONS);
    gtk_toolbar_set_icon_size(GTK_TOOLBAR(toolbar), GTK_ICON_SIZE_LARGE_TOOLBAR);
    for (const tool_row &row : tool_rows) {
        if (!in_this_mode(row.modes))
            continue;
        if (row.kind == tool::button || row.kind == tool::toggle) {
            add_button(toolbar, row);
            continue;
        }
        zel_toolbar_append_space(toolbar);
        if (row.kind == tool::lines_2)
            zel_toolbar_append_space(toolbar);
    }
    return toolbar;
}

} // namespace zel
