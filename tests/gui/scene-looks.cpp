#include "scene.h"

#include "config/ini.h"
#include "editor/frame/define.h"
#include "editor/frame/edit-place.h"
#include "editor/frame/recovery.h"
#include "editor/panel/dictionary.h"
#include "editor/toolkit/lang-box.h"
#include "editor/toolkit/popup.h"
#include "recovery/place.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

namespace gui {

namespace fs = std::filesystem;

std::vector<zel::recovery_file> recovery_files(const std::string &source)
{
    return zel::find_recovery_files(zel::recovery_folder(), zel::absolute_path(source.c_str()));
}

std::vector<GtkWidget *> menu_items(GtkWidget *menu)
{
    std::vector<GtkWidget *> all;
    for (GtkWidget *item : find_all(menu, GTK_TYPE_MENU_ITEM)) {
        if (GTK_IS_SEPARATOR_MENU_ITEM(item))
            continue;
        all.push_back(item);
        if (GtkWidget *below = gtk_menu_item_get_submenu(GTK_MENU_ITEM(item)))
            for (GtkWidget *inner : menu_items(below))
                all.push_back(inner);
    }
    return all;
}

std::string menu_line(GtkWidget *menu, const char *between)
{
    std::string line;
    for (GtkWidget *item : find_all(menu, GTK_TYPE_MENU_ITEM)) {
        line += line.empty() ? "" : between;
        if (GTK_IS_SEPARATOR_MENU_ITEM(item)) {
            line += "-";
            continue;
        }
        const std::string text = gtk_menu_item_get_label(GTK_MENU_ITEM(item));
        line += gtk_widget_get_sensitive(item) != 0 ? text : "(" + text + ")";
        if (GTK_IS_CHECK_MENU_ITEM(item)) {
            const bool on = gtk_check_menu_item_get_active(GTK_CHECK_MENU_ITEM(item)) != 0;
            line += GTK_IS_RADIO_MENU_ITEM(item) ? (on ? "*" : "") : (on ? "[x]" : "[ ]");
        }
        if (GtkWidget *below = gtk_menu_item_get_submenu(GTK_MENU_ITEM(item)))
            line += "(" + menu_line(below, ",") + ")";
    }
    return line;
}

void with_menu_of(GtkWidget *view, const std::function<void(GtkWidget *)> &act)
{
    GtkWidget *menu = gtk_menu_new();
    g_object_ref_sink(menu);
    g_signal_emit_by_name(view, "populate-popup", menu);
    act(menu);
    g_object_unref(menu);
}

GtkWidget *caption_menu(int field, guint button)
{
    GtkWidget *caption =
        gtk_widget_get_ancestor(panel()->*zel::fields[field].label, GTK_TYPE_EVENT_BOX);
    GdkEvent *event = gdk_event_new(GDK_BUTTON_PRESS);
    event->button.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(caption)));
    event->button.button = button;
    event->button.time = GDK_CURRENT_TIME;
    gtk_widget_event(caption, event);
    gdk_event_free(event);
    GList *menus = gtk_menu_get_for_attach_widget(caption);
    return menus == nullptr ? nullptr : GTK_WIDGET(menus->data);
}

bool a_menu_is_open()
{
    for (GtkWidget *item : find_all(mainWin, GTK_TYPE_MENU_ITEM)) {
        GtkWidget *menu = gtk_menu_item_get_submenu(GTK_MENU_ITEM(item));
        if (menu != nullptr && gtk_widget_get_visible(menu) != 0)
            return true;
    }
    return false;
}

namespace {

std::string joined(const std::vector<std::string> &parts)
{
    std::string all;
    for (const std::string &part : parts)
        all += (&part == parts.data() ? "" : "|") + part;
    return all;
}

// The parts of a label that stand out: "bold 2-4; red 0, 5-20".
std::string marks_of(GtkLabel *label)
{
    std::string out;
    PangoAttrList *list = gtk_label_get_attributes(label);
    if (list == nullptr)
        return out;
    const std::string text = gtk_label_get_text(label);
    PangoAttrIterator *parts = pango_attr_list_get_iterator(list);
    do {
        gint from = 0;
        gint to = 0;
        pango_attr_iterator_range(parts, &from, &to);
        const auto at = static_cast<std::size_t>(from);
        const auto add = [&](const char *how) {
            out += (out.empty() ? "" : "; ") + std::string(how) + " " +
                   text.substr(at, static_cast<std::size_t>(to) - at);
        };
        const auto *weight =
            reinterpret_cast<PangoAttrInt *>(pango_attr_iterator_get(parts, PANGO_ATTR_WEIGHT));
        const auto *colour = reinterpret_cast<PangoAttrColor *>(
            pango_attr_iterator_get(parts, PANGO_ATTR_FOREGROUND));
        if (weight != nullptr && weight->value == PANGO_WEIGHT_BOLD)
            add("bold");
        if (pango_attr_iterator_get(parts, PANGO_ATTR_STRIKETHROUGH) != nullptr)
            add("struck");
        if (colour != nullptr && colour->color.red > 2 * colour->color.green)
            add("red");
    } while (pango_attr_iterator_next(parts) != 0);
    pango_attr_iterator_destroy(parts);
    return out;
}

// The text of a cell, in brackets what is marked with a ground of its own.
std::string marked_text(GtkCellRenderer *cell)
{
    gchar *text = nullptr;
    PangoAttrList *list = nullptr;
    g_object_get(cell, "text", &text, "attributes", &list, nullptr);
    std::string out = zel_test::take(text);
    std::vector<std::pair<std::size_t, const char *>> signs;
    PangoAttrIterator *parts = list == nullptr ? nullptr : pango_attr_list_get_iterator(list);
    do {
        gint from = 0;
        gint to = 0;
        if (parts == nullptr || pango_attr_iterator_get(parts, PANGO_ATTR_BACKGROUND) == nullptr)
            continue;
        pango_attr_iterator_range(parts, &from, &to);
        signs.insert(signs.end(), {{from, "["}, {to, "]"}});
    } while (parts != nullptr && pango_attr_iterator_next(parts) != 0);
    for (auto sign = signs.rbegin(); sign != signs.rend(); ++sign)
        out.insert(sign->first, sign->second);
    if (parts != nullptr)
        pango_attr_iterator_destroy(parts);
    if (list != nullptr)
        pango_attr_list_unref(list);
    return out;
}

std::string yes_or_no(bool is) { return is ? "yes" : "no"; }

// --- Widgets ---------------------------------------------------------------------------------

define_row_t *language_row(int number)
{
    return static_cast<define_row_t *>(g_list_nth_data(defineList, static_cast<guint>(number)));
}

const std::map<std::string, GtkWidget *(*)(int number)> named_widgets{
    {"english", [](int) { return panel()->trans1_view; }},
    {"german", [](int) { return panel()->trans2_view; }},
    {"comment", [](int n) { return n == 1 ? panel()->comment1_view : panel()->comment2_view; }},
    {"caption", [](int n) { return n == 1 ? panel()->trans1_label : panel()->trans2_label; }},
    {"caption of comment2", [](int) { return panel()->comment2_label; }},
    {"frame", [](int n) { return n == 1 ? panel()->lang1_frame : panel()->lang2_frame; }},
    {"finding", [](int) { return panel()->finding2_label; }},
    {"room", [](int n) { return n == 1 ? panel()->room1_label : panel()->room2_label; }},
    {"suggestion",
     [](int n) { return n == 1 ? panel()->suggestion1_label : panel()->suggestion2_label; }},
    {"below1 view", [](int) { return panel()->below[0].view; }},
    {"below2 view", [](int) { return panel()->below[1].view; }},
    {"description", [](int) { return panel()->description_label; }},
    {"identity", [](int) { return panel()->name_entry; }},
    {"name to edit", [](int) { return panel()->name_edit_entry; }},
    {"used in", [](int) { return panel()->used_in_view; }},
    {"list", [](int) { return tab()->view; }},
    {"hits", [](int) { return find_named(editWin, "hits"); }},
    {"search", [](int) { return tab()->search_entry; }},
    {"info", [](int) { return tab()->info_label; }},
    {"ready button", [](int) { return tab()->ready_button; }},
    {"table", [](int) { return editWin; }},
    {"window", [](int) { return mainWin; }},
    {"pages", [](int) { return gtk_widget_get_parent(editBox); }},
    {"picture", [](int) { return lang_global.shot_image; }},
    {"status", [](int) { return statusWin; }},
    {"changed sign", [](int) { return changed_sign; }},
    {"filter entry", [](int) { return empty_menu; }},
    {"filter button", [](int) { return empty_tool; }},
    {"file label", [](int) { return lang_global.file_label; }},
    {"date label", [](int) { return lang_global.create_date_label; }},
    {"time label", [](int) { return lang_global.mtime_label; }},
    {"path label", [](int) { return lang_global.export_path_label; }},
    {"name ", [](int n) { return language_row(n)->name_entry; }},
    {"compiled ", [](int n) { return language_row(n)->file_entry; }},
    {"edit ", [](int n) { return language_row(n)->edit_button; }},
};

GtkWidget *with_tooltip(GtkWidget *root, const std::string &tooltip)
{
    for (GtkWidget *widget : find_all(root, GTK_TYPE_WIDGET)) {
        const char *text = gtk_widget_get_tooltip_text(widget);
        if (text != nullptr && tooltip == text)
            return widget;
        if (GTK_IS_TOOL_BUTTON(widget) &&
            tooltip == gtk_tool_button_get_label(GTK_TOOL_BUTTON(widget)))
            return widget;
    }
    return nullptr;
}

// What a person reads in it: a text, or whether it is switched on.
std::string text_in(GtkWidget *widget)
{
    if (widget == nullptr)
        return "(none)";
    if (GTK_IS_TEXT_VIEW(widget))
        return Test::text_of(widget);
    if (GTK_IS_ENTRY(widget))
        return gtk_entry_get_text(GTK_ENTRY(widget));
    if (GTK_IS_LABEL(widget))
        return gtk_widget_get_visible(widget) != 0 ? label(widget) : "";
    gboolean active = FALSE;
    g_object_get(widget, "active", &active, nullptr);
    return active != FALSE ? "on" : "off";
}

// --- The list --------------------------------------------------------------------------------

GtkTreeModel *model() { return gtk_tree_view_get_model(list()); }

std::string column(int number)
{
    std::vector<std::string> cells;
    GtkTreeIter iter;
    for (int row = 0; gtk_tree_model_iter_nth_child(model(), &iter, nullptr, row) != 0; ++row) {
        gchar *cell = nullptr;
        gtk_tree_model_get(model(), &iter, number, &cell, -1);
        cells.emplace_back(zel_test::take(cell));
    }
    return joined(cells);
}

std::string marked()
{
    std::vector<std::string> cells;
    GtkTreeIter iter;
    for (int row = 0; gtk_tree_model_iter_nth_child(model(), &iter, nullptr, row) != 0; ++row) {
        GdkPixbuf *icon = nullptr;
        gtk_tree_model_get(model(), &iter, COL_ICON, &icon, -1);
        cells.push_back(yes_or_no(icon == tab()->pix_active));
        g_object_unref(icon);
    }
    return joined(cells);
}

// The selected row's name, which is also what the text panel must show.
std::string selected()
{
    GtkTreeIter iter;
    const bool row =
        gtk_tree_selection_get_selected(gtk_tree_view_get_selection(list()), nullptr, &iter) != 0;
    EXPECT_EQ(row, panel()->item != nullptr);
    EXPECT_EQ(row, tab()->selected_path != nullptr);
    if (!row)
        return "";
    item_t *item = nullptr;
    gtk_tree_model_get(model(), &iter, COL_RECORD, &item, -1);
    EXPECT_EQ(item, panel()->item);
    GtkTreePath *path = gtk_tree_model_get_path(model(), &iter);
    EXPECT_EQ(gtk_tree_path_compare(path, tab()->selected_path), 0);
    gtk_tree_path_free(path);
    return item->name;
}

// The Item column's cell of a row, drawn: "bold", "fault", both, or nothing.
std::string mark(const std::string &row)
{
    GtkTreeViewColumn *column = gtk_tree_view_get_column(list(), 5);
    GtkTreeIter iter;
    gtk_tree_model_iter_nth_child(model(), &iter, nullptr, std::stoi(row));
    gtk_tree_view_column_cell_set_cell_data(column, model(), &iter, FALSE, FALSE);
    GList *cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
    int weight = 0;
    PangoUnderline underline{};
    g_object_get(cells->data, "weight", &weight, "underline", &underline, nullptr);
    g_list_free(cells);
    return std::string(weight >= PANGO_WEIGHT_BOLD ? "bold" : "") +
           (underline == PANGO_UNDERLINE_ERROR ? "fault" : "");
}

std::string titles()
{
    if (tab()->lang1_column == nullptr)
        return "(none)";
    return std::string(gtk_tree_view_column_get_title(tab()->lang1_column)) + "|" +
           gtk_tree_view_column_get_title(tab()->lang2_column);
}

// --- The source ------------------------------------------------------------------------------

std::string groups()
{
    if (def_group == nullptr)
        return "(no source)";
    std::vector<std::string> names;
    for (const edit_t *group : zel::each<edit_t>(def_group->groups))
        names.emplace_back(group->name);
    return joined(names);
}

std::string languages()
{
    std::string all;
    for (const lang_t *lang : zel::each<lang_t>(def_group->langs))
        all += (all.empty() ? "" : " ") +
               std::string(lang->name == nullptr ? "(none)" : lang->name) +
               (lang->edit != 0 ? "*" : "");
    return all;
}

template <class Visit>
void each_item(Visit visit)
{
    for (const edit_t *group : zel::each<edit_t>(def_group->groups))
        for (const item_t *item : zel::each<item_t>(group->items))
            visit(item);
}

const item_t *first_item()
{
    const auto *group = static_cast<const edit_t *>(def_group->groups->data);
    return static_cast<const item_t *>(group->items->data);
}

// The German lines of an item, as they are stored.
std::string stored(const std::string &name)
{
    std::vector<std::string> lines;
    each_item([&](const item_t *item) {
        if (name == item->name)
            for (const char *line : zel::each<char>(zel_get_lang_list(item->langs, "german")))
                lines.emplace_back(line);
    });
    return joined(lines);
}

// How many entries all items have in a language.
std::string entries(const std::string &language)
{
    int count = 0;
    each_item([&](const item_t *item) {
        for (GList *list : {item->langs, item->comments})
            count += zel_get_lang_entry(list, language.c_str()) != nullptr ? 1 : 0;
    });
    return std::to_string(count);
}

// The lines of the source that those of another time have not, but for when it was written.
std::string new_lines(const std::string &before, const std::string &after)
{
    std::istringstream old(before);
    std::istringstream now(after);
    std::vector<std::string> changed;
    std::string was;
    for (std::string line; std::getline(now, line);)
        if (std::getline(old, was); line != was && line.rfind("mtime", 0) != 0)
            changed.push_back(line.substr(line.find_first_not_of(' ')));
    EXPECT_FALSE(std::getline(old, was)) << was;
    return joined(changed);
}

// The names of files in a folder, with 0 for each digit.
std::string files_in(const std::string &folder)
{
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
        for (char &letter : names.back())
            letter = std::isdigit(static_cast<unsigned char>(letter)) != 0 ? '0' : letter;
    }
    std::sort(names.begin(), names.end());
    return joined(names);
}

std::string backups(const std::string &folder)
{
    std::string all;
    for (const auto &entry : fs::directory_iterator(folder))
        if (entry.path().string().find(".bak") != std::string::npos)
            all += read_file(entry.path());
    return all;
}

// --- Menus and dialogs -----------------------------------------------------------------------

// The first entry of the menu that a field has brought up; it is closed.
std::string open_menu()
{
    GtkWidget *menu = nullptr;
    wait_for([&] {
        for (GList *menus = gtk_menu_get_for_attach_widget(panel()->trans2_view); menus != nullptr;
             menus = menus->next)
            if (gtk_widget_get_visible(GTK_WIDGET(menus->data)) != 0)
                menu = GTK_WIDGET(menus->data);
        return menu != nullptr;
    });
    if (menu == nullptr)
        return "no menu";
    std::string text =
        gtk_menu_item_get_label(GTK_MENU_ITEM(find_all(menu, GTK_TYPE_MENU_ITEM)[0]));
    gtk_menu_popdown(GTK_MENU(menu));
    return text;
}

std::string first_row_of(GtkWidget *list)
{
    if (list == nullptr)
        return "no list";
    GtkTreeModel *rows = gtk_tree_view_get_model(GTK_TREE_VIEW(list));
    GtkTreeIter first;
    EXPECT_EQ(gtk_tree_model_iter_n_children(rows, nullptr), 1);
    if (gtk_tree_model_get_iter_first(rows, &first) == 0)
        return "";
    std::vector<std::string> cells;
    for (int column = 0; column < 3; ++column) {
        gchar *text = nullptr;
        gtk_tree_model_get(rows, &first, column, &text, -1);
        cells.push_back(text == nullptr ? "" : text);
        g_free(text);
    }
    return joined(cells);
}

// What is listed in the place of the items: "[x] where: before / after", the words in brackets.
std::string hits()
{
    GtkTreeView *view = GTK_TREE_VIEW(find_named(editWin, "hits"));
    if (gtk_widget_get_visible(gtk_widget_get_parent(GTK_WIDGET(view))) == 0)
        return "no hits";
    EXPECT_EQ(gtk_widget_get_visible(gtk_widget_get_parent(tab()->view)), 0);
    GtkTreeModel *model = gtk_tree_view_get_model(view);
    std::vector<std::string> rows;
    GtkTreeIter iter;
    for (gboolean more = gtk_tree_model_get_iter_first(model, &iter); more != 0;
         more = gtk_tree_model_iter_next(model, &iter)) {
        std::string row;
        for (int number = 0; number < 3; ++number) {
            GtkTreeViewColumn *column = gtk_tree_view_get_column(view, number);
            if (gtk_tree_view_column_get_visible(column) == 0)
                continue;
            gtk_tree_view_column_cell_set_cell_data(column, model, &iter, FALSE, FALSE);
            GList *cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
            if (number == 0)
                row +=
                    gtk_cell_renderer_toggle_get_active(GTK_CELL_RENDERER_TOGGLE(cells->data)) != 0
                        ? "[x] "
                        : "[ ] ";
            else
                row += marked_text(GTK_CELL_RENDERER(cells->data)) + (number == 1 ? ": " : "");
            g_list_free(cells);
        }
        std::replace(row.begin(), row.end(), '\n', '/');
        rows.push_back(row);
    }
    return joined(rows);
}

std::string box_icon(GtkWidget *box)
{
    gchar *stock = nullptr;
    gtk_image_get_stock(GTK_IMAGE(ZEL_POPUP(box)->icon), &stock, nullptr);
    return stock;
}

std::string default_answer(GtkWidget *dialog)
{
    GtkWidget *button = gtk_window_get_default_widget(GTK_WINDOW(dialog));
    return gtk_dialog_get_response_for_widget(GTK_DIALOG(dialog), button) == GTK_RESPONSE_NO
               ? "no"
               : "another";
}

std::string place_of_window()
{
    int at[4];
    gtk_window_get_position(GTK_WINDOW(mainWin), &at[0], &at[1]);
    gtk_window_get_size(GTK_WINDOW(mainWin), &at[2], &at[3]);
    return std::to_string(at[0]) + "," + std::to_string(at[1]) + " " + std::to_string(at[2]) + "x" +
           std::to_string(at[3]);
}

// "language: text" below a translation, or empty.
std::string below(std::size_t number)
{
    const zel::text_below &help = panel()->below[number];
    return gtk_widget_get_visible(help.row) == 0
               ? ""
               : label(help.label) + ": " + Test::text_of(help.view);
}

std::string typed_in()
{
    static constexpr const char *names[] = {"english", "german", "comment1", "comment2"};
    std::vector<std::string> fields;
    for (int field = 0; field < TEXT_FIELDS; ++field)
        if (panel()->dirty[field] != 0)
            fields.emplace_back(names[field]);
    return joined(fields);
}

std::string progress()
{
    GtkWidget *told = find_named(editWin, "progress");
    wait_for([&] { return !label(told).empty(); });
    return label(told);
}

std::string warning()
{
    const std::string all = joined(warnings());
    warnings().clear();
    return all;
}

// How many items are found, which a screen reader hears too, unless it takes the label's own words.
std::string found()
{
    const std::string shown = label(tab()->found_label);
    const char *heard = atk_object_get_name(gtk_widget_get_accessible(tab()->found_label));
    EXPECT_TRUE(heard == nullptr || heard == shown) << heard;
    return shown;
}

std::string c_text(const char *text) { return text == nullptr ? "(null)" : text; }

std::string without_null(const char *text) { return text == nullptr ? "" : text; }

// --- What can be looked at -------------------------------------------------------------------

using word = const std::string &;

// By a name alone.
const std::map<std::string, std::string (*)(Scene &)> plain_looks{
    {"name", [](Scene &) { return name(); }},
    {"hits", [](Scene &) { return hits(); }},
    {"rows", [](Scene &) { return std::to_string(rows()); }},
    {"modified", [](Scene &) { return std::to_string(lang_global.modified); }},
    {"ready", [](Scene &) { return std::to_string(panel()->item->ready); }},
    {"changed", [](Scene &) { return std::to_string(panel()->item->changed); }},
    {"names", [](Scene &) { return column(COL_ITEM); }},
    {"selected", [](Scene &) { return selected(); }},
    {"marked", [](Scene &) { return marked(); }},
    {"titles", [](Scene &) { return titles(); }},
    {"progress", [](Scene &) { return progress(); }},
    {"found", [](Scene &) { return found(); }},
    {"groups", [](Scene &) { return groups(); }},
    {"languages", [](Scene &) { return languages(); }},
    {"output languages",
     [](Scene &) {
         return without_null(lang_global.output_lang_1) + "|" +
                without_null(lang_global.output_lang_2);
     }},
    {"whatsnew time", [](Scene &) { return std::to_string(def_group->whatsnew); }},
    {"start folder", [](Scene &) { return c_text(lang_global.start_dir); }},
    {"source folder", [](Scene &) { return c_text(lang_global.src_dir); }},
    {"destination", [](Scene &) { return c_text(ini->dstDir); }},
    {"positions", [](Scene &) { return std::to_string(lang_global.posnr); }},
    {"file", [](Scene &) { return std::string(def_file); }},
    {"texts", [](Scene &scene) { return texts_of(scene.source()); }},
    {"lines", [](Scene &scene) { return read_file(scene.source()); }},
    {"backups", [](Scene &scene) { return backups(scene.folder); }},
    {"entries",
     [](Scene &) {
         return std::to_string(g_list_length(first_item()->langs)) + " and " +
                std::to_string(g_list_length(first_item()->comments));
     }},
    {"box", [](Scene &scene) { return scene.box; }},
    {"printed", [](Scene &scene) { return scene.printed; }},
    {"said", [](Scene &scene) { return scene.errors; }},
    {"icon", [](Scene &scene) { return box_icon(scene.root()); }},
    {"icon shown",
     [](Scene &scene) {
         return yes_or_no(gtk_widget_get_visible(ZEL_POPUP(scene.root())->icon_box) != 0);
     }},
    {"default answer", [](Scene &scene) { return default_answer(scene.root()); }},
    {"title", [](Scene &) { return std::string(gtk_window_get_title(GTK_WINDOW(mainWin))); }},
    {"active", [](Scene &) { return yes_or_no(gtk_window_is_active(GTK_WINDOW(mainWin)) != 0); }},
    {"place", [](Scene &) { return place_of_window(); }},
    {"place of the language dialog",
     [](Scene &) { return std::to_string(ini->define_x) + "," + std::to_string(ini->define_y); }},
    {"page",
     [](Scene &scene) {
         return std::to_string(gtk_notebook_get_current_page(GTK_NOTEBOOK(scene.widget("pages"))));
     }},
    {"menus", [](Scene &) { return joined(menu_texts(mainWin)); }},
    {"menu open", [](Scene &) { return yes_or_no(a_menu_is_open()); }},
    {"open menu", [](Scene &) { return open_menu(); }},
    {"menu by the left button",
     [](Scene &) { return std::string(caption_menu(TEXT_TRANS2, 1) == nullptr ? "" : "a menu"); }},
    {"tools",
     [](Scene &) {
         return std::to_string(find_all(mainWin, GTK_TYPE_TOOL_BUTTON).size()) + " buttons, " +
                std::to_string(find_all(mainWin, GTK_TYPE_SEPARATOR_TOOL_ITEM).size()) + " lines";
     }},
    {"caret",
     [](Scene &) {
         GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(panel()->trans2_view));
         gint at = 0;
         g_object_get(buffer, "cursor-position", &at, nullptr);
         return std::to_string(at);
     }},
    {"clipboard",
     [](Scene &) {
         return zel_test::take(
             gtk_clipboard_wait_for_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD)));
     }},
    {"below1", [](Scene &) { return below(0); }},
    {"below2", [](Scene &) { return below(1); }},
    {"typed in", [](Scene &) { return typed_in(); }},
    {"recovery",
     [](Scene &) { return std::string(zel::recovery_is_up_to_date() ? "up to date" : "old"); }},
    {"recovery files",
     [](Scene &scene) { return std::to_string(recovery_files(scene.source()).size()); }},
    {"recovery texts",
     [](Scene &scene) {
         const auto files = recovery_files(scene.source());
         return files.empty() ? std::string() : texts_of(files[0].path);
     }},
    {"recovery bytes",
     [](Scene &scene) { return read_file(recovery_files(scene.source()).at(0).path); }},
    {"recovery path", [](Scene &scene) { return recovery_files(scene.source()).at(0).path; }},
    {"new lines", [](Scene &scene) { return new_lines(scene.noted, read_file(scene.source())); }},
    {"warning", [](Scene &) { return warning(); }},
};

// By a word and what stands behind it.
const std::map<std::string, std::string (*)(Scene &, word)> looks_at{
    {"column",
     [](Scene &, word of) {
         static const std::map<std::string, int> columns{
             {"GROUP", COL_GROUP}, {"DATE", COL_DATE}, {"LANG1", COL_LANG1}, {"LANG2", COL_LANG2}};
         return column(columns.at(of));
     }},
    {"mark", [](Scene &, word of) { return mark(of); }},
    {"stored", [](Scene &, word of) { return stored(of); }},
    {"entries", [](Scene &, word of) { return entries(of); }},
    {"texts", [](Scene &scene, word of) { return texts_of(scene.in_folder(of)); }},
    {"file",
     [](Scene &scene, word of) {
         const std::string path = scene.in_folder(of);
         return fs::exists(path) ? read_file(path) : "(none)";
     }},
    {"files", [](Scene &scene, word of) { return files_in(scene.in_folder(of)); }},
    {"there", [](Scene &scene, word of) { return yes_or_no(fs::exists(scene.in_folder(of))); }},
    {"shown",
     [](Scene &scene, word of) {
         GtkWidget *widget = scene.widget(of);
         return yes_or_no(widget != nullptr && gtk_widget_get_visible(widget) != 0);
     }},
    {"enabled", [](Scene &scene,
                   word of) { return yes_or_no(gtk_widget_get_sensitive(scene.widget(of)) != 0); }},
    {"focus",
     [](Scene &scene, word of) {
         return yes_or_no(gtk_window_get_focus(GTK_WINDOW(mainWin)) == scene.widget(of));
     }},
    {"height", [](Scene &scene, word of) { return std::to_string(height_of(scene.widget(of))); }},
    {"said",
     [](Scene &scene, word of) {
         return without_null(
             atk_object_get_description(gtk_widget_get_accessible(scene.widget(of))));
     }},
    {"heard",
     [](Scene &scene, word of) {
         return without_null(atk_object_get_name(gtk_widget_get_accessible(scene.widget(of))));
     }},
    {"tooltip",
     [](Scene &scene, word of) {
         return zel_test::take(gtk_widget_get_tooltip_text(scene.widget(of)));
     }},
    {"marks", [](Scene &scene, word of) { return marks_of(GTK_LABEL(scene.widget(of))); }},
    {"menu",
     [](Scene &scene, word of) {
         std::string line;
         with_menu_of(scene.widget(of), [&](GtkWidget *menu) { line = menu_line(menu, "|"); });
         return line;
     }},
    {"tagged",
     [](Scene &scene, word of) {
         const std::size_t blank = of.find(' ');
         GtkWidget *view =
             blank == of.npos ? panel()->trans2_view : scene.widget(of.substr(blank + 1));
         return joined(tagged(view, of.substr(0, blank).c_str()));
     }},
    {"first",
     [](Scene &scene, word of) {
         return first_row_of(find_named(scene.root(), of.substr(std::strlen("row of ")).c_str()));
     }},
    {"listed", [](Scene &, word of) { return yes_or_no(zel::is_dictionary_there(of.c_str())); }},
    {"dictionary",
     [](Scene &, word of) { return yes_or_no(zel::find_dictionary(of.c_str()) != nullptr); }},
};

} // namespace

GtkWidget *Scene::widget(const std::string &name) const
{
    if (const auto known = named_widgets.find(name); known != named_widgets.end())
        return known->second(0);
    if (std::isdigit(static_cast<unsigned char>(name.back())) != 0)
        if (const auto known = named_widgets.find(name.substr(0, name.size() - 1));
            known != named_widgets.end())
            return known->second(name.back() - '0');
    for (auto *find : {find_text, with_tooltip})
        if (GtkWidget *found = find(root(), name))
            return found;
    return find_named(root(), name.c_str());
}

std::string Scene::look(const std::string &name)
{
    if (const auto known = plain_looks.find(name); known != plain_looks.end())
        return known->second(*this);
    const std::size_t blank = name.find(' ');
    const auto known = looks_at.find(name.substr(0, blank));
    if (blank != name.npos && known != looks_at.end() && named_widgets.count(name) == 0)
        return known->second(*this, name.substr(blank + 1));
    GtkWidget *found = widget(name);
    EXPECT_NE(found, nullptr) << "nothing to look at: " << name;
    return text_in(found);
}

} // namespace gui
