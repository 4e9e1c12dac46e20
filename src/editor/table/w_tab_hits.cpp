#include "editor/table/w_tab_hits.h"

#include "editor/toolkit/accessible.h"
#include "editor/toolkit/text-runs.h"
#include "editor/toolkit/ui-text.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace zel {

namespace {

constexpr int list_min_width = 160;
constexpr int box_width = 26;
constexpr int where_width = 96;
constexpr int letter_width = 8; // pixels, more or less
constexpr int least_letters = 30;
constexpr std::size_t most_bytes = 600; // of a line: no window is as wide

// Moves on to where a letter begins.
std::size_t letter_at(std::string_view text, std::size_t at)
{
    while (at < text.size() && (text[at] & '\xc0') == '\x80')
        ++at;
    return std::min(at, text.size());
}

// Where the part begins that is shown in so many letters: a hit behind them would be out of sight.
std::size_t shown_from(const hit_line &line, std::size_t room)
{
    if (line.marked.empty() || line.marked.front().at + line.marked.front().length <= room)
        return 0;
    const std::size_t hit = line.marked.front().at;
    const std::size_t from = letter_at(line.text, hit - std::min(hit, room / 3));
    const std::size_t blank = line.text.find(' ', from);
    return blank < hit ? blank + 1 : from;
}

void append_escaped(std::string &out, std::string_view text)
{
    std::string flat(text);
    // A line of the list is one line, whatever the text has.
    for (char &c : flat)
        c = static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    gchar *escaped = g_markup_escape_text(flat.data(), static_cast<gssize>(flat.size()));
    out += escaped;
    g_free(escaped);
}

std::string markup_of(const hit_line &line, std::size_t room)
{
    std::string out;
    // The marks that keep right-to-left texts whole would move what is marked.
    const std::string text = line.marked.empty() ? shown_in_runs(line.text) : line.text;
    std::size_t done = shown_from(line, room);
    const std::size_t end = letter_at(text, done + most_bytes);
    if (done != 0)
        out = "\u2026";
    for (const assist::piece &hit : line.marked) {
        if (hit.at + hit.length > end)
            break;
        append_escaped(out, std::string_view(text).substr(done, hit.at - done));
        // The letters' colour is set, too: the ground is the same in dark themes.
        out += "<span foreground=\"#000000\" background=\"#ffe680\">";
        append_escaped(out, std::string_view(text).substr(hit.at, hit.length));
        out += "</span>";
        done = hit.at + hit.length;
    }
    append_escaped(out, std::string_view(text).substr(done, end - done));
    return out.empty() ? " " : out;
}

int number_of(GtkTreeModel *model, GtkTreeIter *iter)
{
    return zel_tab_model_row_of(ZEL_TAB_MODEL(model), iter);
}

GtkWidget *scrolled_new(GtkWidget *list)
{
    GtkWidget *scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_AUTOMATIC,
                                   GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(scrolled), list);
    return scrolled;
}

GtkCellRenderer *two_line_cell(PangoEllipsizeMode cut)
{
    GtkCellRenderer *cell = gtk_cell_renderer_text_new();
    // All rows have one height, whatever their letters are.
    gtk_cell_renderer_text_set_fixed_height_from_font(GTK_CELL_RENDERER_TEXT(cell), 2);
    g_object_set(cell, "ellipsize", cut, "yalign", 0.0F, nullptr);
    return cell;
}

} // namespace

tab_hits::tab_hits(GtkWidget *list)
    : items_(list), scrolled_items_(scrolled_new(list)), pane_(gtk_vbox_new(FALSE, 0))
{
    make_view();
    scrolled_hits_ = scrolled_new(view_);
    gtk_widget_set_size_request(scrolled_items_, list_min_width, -1);
    gtk_widget_show(view_);
    gtk_widget_set_no_show_all(scrolled_hits_, TRUE);
    gtk_box_pack_start(GTK_BOX(pane_), scrolled_items_, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(pane_), scrolled_hits_, TRUE, TRUE, 0);
}

GtkTreeViewColumn *tab_hits::add_column(GtkCellRenderer *cell, int width, GtkTreeCellDataFunc show)
{
    GtkTreeViewColumn *column = gtk_tree_view_column_new();
    gtk_tree_view_column_pack_start(column, cell, TRUE);
    gtk_tree_view_column_set_cell_data_func(column, cell, show, this, nullptr);
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_column_set_fixed_width(column, width);
    gtk_tree_view_append_column(GTK_TREE_VIEW(view_), column);
    return column;
}

void tab_hits::make_view()
{
    view_ = gtk_tree_view_new();
    gtk_widget_set_name(view_, "hits");
    set_accessible_name(view_, ui_text("tab-edit", "Items"));
    GtkCellRenderer *box = gtk_cell_renderer_toggle_new();
    g_signal_connect(box, "toggled", G_CALLBACK(toggled), this);
    box_column_ = add_column(box, box_width, show_box);
    where_column_ = add_column(two_line_cell(PANGO_ELLIPSIZE_MIDDLE), where_width, show_where);
    gtk_tree_view_column_set_title(where_column_, ui_text("tab-edit", "Item"));
    gtk_tree_view_column_set_resizable(where_column_, TRUE);
    text_column_ = add_column(two_line_cell(PANGO_ELLIPSIZE_END), where_width, show_lines);
    GtkTreeView *view = GTK_TREE_VIEW(view_);
    gtk_tree_view_set_fixed_height_mode(view, TRUE);
    gtk_tree_view_set_rules_hint(view, TRUE);
    gtk_tree_view_set_enable_search(view, FALSE);
    gtk_widget_set_has_tooltip(view_, TRUE);
    g_signal_connect(view_, "row-activated", G_CALLBACK(activated), this);
    g_signal_connect(view_, "query-tooltip", G_CALLBACK(show_tooltip), this);
}

void tab_hits::show_box(GtkTreeViewColumn *, GtkCellRenderer *cell, GtkTreeModel *model,
                        GtkTreeIter *iter, gpointer data)
{
    const auto *self = static_cast<tab_hits *>(data);
    const int row = number_of(model, iter);
    const bool is_on =
        row >= 0 && self->rows_.is_on && self->rows_.is_on(static_cast<std::size_t>(row));
    gtk_cell_renderer_toggle_set_active(GTK_CELL_RENDERER_TOGGLE(cell), is_on ? TRUE : FALSE);
}

void tab_hits::show_where(GtkTreeViewColumn *, GtkCellRenderer *cell, GtkTreeModel *model,
                          GtkTreeIter *iter, gpointer data)
{
    const auto *self = static_cast<tab_hits *>(data);
    const int row = number_of(model, iter);
    const std::string text = row < 0 ? "" : self->rows_.where(static_cast<std::size_t>(row));
    g_object_set(cell, "text", text.c_str(), nullptr);
}

void tab_hits::show_lines(GtkTreeViewColumn *, GtkCellRenderer *cell, GtkTreeModel *model,
                          GtkTreeIter *iter, gpointer data)
{
    const auto *self = static_cast<tab_hits *>(data);
    const int row = number_of(model, iter);
    std::string markup;
    if (row >= 0) {
        const auto lines = self->rows_.lines(static_cast<std::size_t>(row));
        const std::size_t room = self->letters_in_sight();
        markup = markup_of(lines[0], room) + "\n" + markup_of(lines[1], room);
    }
    g_object_set(cell, "markup", markup.c_str(), nullptr);
}

std::size_t tab_hits::letters_in_sight() const
{
    // A list that is not laid out yet has columns of no width.
    const int letters = gtk_tree_view_column_get_width(text_column_) / letter_width;
    return static_cast<std::size_t>(std::max(letters, least_letters));
}

void tab_hits::toggle(int row)
{
    if (row < 0 || !rows_.toggle)
        return;
    rows_.toggle(static_cast<std::size_t>(row));
    if (GtkTreeModel *model = gtk_tree_view_get_model(GTK_TREE_VIEW(view_)))
        zel_tab_model_row_changed(ZEL_TAB_MODEL(model), row);
}

void tab_hits::toggled(GtkCellRendererToggle *, gchar *path, gpointer self)
{
    // The model's places are the numbers of the rows.
    static_cast<tab_hits *>(self)->toggle(std::atoi(path));
}

void tab_hits::activated(GtkTreeView *, GtkTreePath *path, GtkTreeViewColumn *, gpointer data)
{
    auto *self = static_cast<tab_hits *>(data);
    const int row = gtk_tree_path_get_indices(path)[0];
    if (!self->rows_.toggle) {
        // A copy: what it does may end the list, and the function with it.
        const auto open = self->rows_.open;
        open(static_cast<std::size_t>(row));
        return;
    }
    // A double click has been two clicks on the box, perhaps.
    GdkEvent *event = gtk_get_current_event();
    if (event != nullptr && event->type == GDK_KEY_PRESS)
        self->toggle(row);
    if (event != nullptr)
        gdk_event_free(event);
}

gboolean tab_hits::show_tooltip(GtkWidget *widget, gint x, gint y, gboolean by_keyboard,
                                GtkTooltip *tooltip, gpointer data)
{
    const auto *self = static_cast<tab_hits *>(data);
    GtkTreeView *view = GTK_TREE_VIEW(widget);
    GtkTreeModel *model = nullptr;
    GtkTreePath *path = nullptr;
    GtkTreeIter iter;
    if (gtk_tree_view_get_tooltip_context(view, &x, &y, by_keyboard, &model, &path, &iter) == 0)
        return FALSE;
    const int row = number_of(model, &iter);
    const auto lines =
        row < 0 ? std::array<hit_line, 2>{} : self->rows_.lines(static_cast<std::size_t>(row));
    // What the list shows as a whole needs no tooltip.
    const bool is_cut = std::any_of(lines.begin(), lines.end(), [self](const hit_line &line) {
        return line.text.size() > self->letters_in_sight() ||
               line.text.find('\n') != std::string::npos;
    });
    if (is_cut) {
        gtk_tooltip_set_text(tooltip, (lines[0].text + "\n\n" + lines[1].text).c_str());
        gtk_tree_view_set_tooltip_row(view, tooltip, path);
    }
    gtk_tree_path_free(path);
    return is_cut ? TRUE : FALSE;
}

// Shows whole names where a third of the list has the room.
void tab_hits::fit_names()
{
    constexpr std::size_t measured = 60; // rows: more would take time
    constexpr int padding = 16;
    if (where_column_->use_resized_width != 0) // by the user
        return;
    GtkAllocation pane{};
    gtk_widget_get_allocation(pane_, &pane);
    PangoLayout *layout = gtk_widget_create_pango_layout(view_, nullptr);
    int width = 0;
    for (std::size_t row = 0; row < std::min(measured, rows_.count); ++row) {
        int own = 0;
        pango_layout_set_text(layout, rows_.where(row).c_str(), -1);
        pango_layout_get_pixel_size(layout, &own, nullptr);
        width = std::max(width, own + padding);
    }
    g_object_unref(layout);
    gtk_tree_view_column_set_fixed_width(
        where_column_, std::clamp(width, where_width, std::max(where_width, pane.width / 3)));
}

// Exchanges the rows while nothing watches, and scrolls to where the list was.
void tab_hits::exchange(std::size_t count)
{
    GtkTreeView *view = GTK_TREE_VIEW(view_);
    GtkTreePath *top = nullptr;
    GtkTreePath *cursor = nullptr;
    if (is_shown()) {
        gtk_tree_view_get_visible_range(view, &top, nullptr);
        gtk_tree_view_get_cursor(view, &cursor, nullptr);
    }
    std::vector<std::uint32_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0U);
    // The model is one of numbers; the rows that it could tell more of are not asked for.
    ZelTabModel *model = zel_tab_model_new(std::make_shared<tab_rows>());
    zel_tab_model_show(model, std::move(numbers));
    gtk_tree_view_set_model(view, GTK_TREE_MODEL(model));
    g_object_unref(model);
    if (cursor != nullptr && static_cast<std::size_t>(gtk_tree_path_get_indices(cursor)[0]) < count)
        gtk_tree_view_set_cursor(view, cursor, nullptr, FALSE);
    if (top != nullptr && static_cast<std::size_t>(gtk_tree_path_get_indices(top)[0]) < count)
        gtk_tree_view_scroll_to_cell(view, top, nullptr, TRUE, 0, 0);
    for (GtkTreePath *path : {top, cursor})
        if (path != nullptr)
            gtk_tree_path_free(path);
}

void tab_hits::show(hit_rows rows)
{
    rows_ = std::move(rows);
    gtk_tree_view_column_set_visible(box_column_, rows_.toggle ? TRUE : FALSE);
    gtk_tree_view_column_set_title(text_column_, rows_.title.c_str());
    set_accessible_name(view_, rows_.name.c_str());
    fit_names();
    exchange(rows_.count);
    const bool has_keyboard = gtk_widget_has_focus(items_) != 0;
    gtk_widget_show(scrolled_hits_);
    gtk_widget_hide(scrolled_items_);
    if (has_keyboard)
        gtk_widget_grab_focus(view_);
}

void tab_hits::hide()
{
    if (!is_shown())
        return;
    const bool has_keyboard = gtk_widget_has_focus(view_) != 0;
    gtk_widget_show(scrolled_items_);
    gtk_widget_hide(scrolled_hits_);
    gtk_tree_view_set_model(GTK_TREE_VIEW(view_), nullptr);
    rows_ = {};
    if (has_keyboard)
        gtk_widget_grab_focus(items_);
}

} // namespace zel
