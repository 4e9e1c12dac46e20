#include "editor/table/w_tab_widths.h"

#include "editor/toolkit/kept.h"
#include "editor/toolkit/text-runs.h"
#include "editor/toolkit/ui-text.h"
#include "source/misc.h"
#include "support/text.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace {

using zel::column_need;
using zel::tab_cell;
using zel::tab_column_row;

constexpr const char *row_key = "zel-column";  // where a view column keeps its row of the table
constexpr const char *whole_key = "zel-whole"; // and the pixels with which all of it is seen
constexpr const char *least_key = "zel-least"; // and without which it is shortened

// Gives each column of the kind what it lacks to be whole. Where the room is too little, all get
// equal parts; a part of the time, though, is of no use, and is not given.
void grow(std::vector<int> &widths, const std::vector<column_need> &needs, tab_cell kind, int &room)
{
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < needs.size(); ++i)
        if (needs[i].kind == kind)
            order.push_back(i);
    const auto lacks = [&](std::size_t i) { return std::max(needs[i].whole - widths[i], 0); };
    // Those that lack least first: what they do not need is left for the others.
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return lacks(a) < lacks(b); });
    for (std::size_t done = 0; done < order.size(); ++done) {
        const std::size_t i = order[done];
        int given = std::min(lacks(i), room / static_cast<int>(order.size() - done));
        if (needs[i].kind != tab_cell::name && needs[i].kind != tab_cell::text && given < lacks(i))
            given = 0;
        widths[i] += given;
        room -= given;
    }
}

// Shortens the date where the last name would be out of sight otherwise.
void shorten(std::vector<int> &widths, const std::vector<column_need> &needs, int room)
{
    constexpr int in_sight = 50;
    std::size_t last = 0;
    for (std::size_t i = 0; i < needs.size(); ++i)
        if (needs[i].kind == tab_cell::name)
            last = i;
    const auto before = widths.begin() + static_cast<std::ptrdiff_t>(last);
    if (std::accumulate(widths.begin(), before, std::min(in_sight, widths[last])) <= room)
        return;
    for (std::size_t i = 0; i < needs.size(); ++i)
        if (needs[i].shortest > 0)
            widths[i] = needs[i].shortest;
}

// Completes names that lack a few pixels, if there are these, or if the list has to be scrolled
// anyway: a name without its last letter annoys, and gains nothing.
void complete(std::vector<int> &widths, const std::vector<column_need> &needs, int &room)
{
    constexpr int few = 10;
    for (std::size_t i = 0; i < needs.size(); ++i) {
        const int lacks = needs[i].whole - widths[i];
        if (needs[i].kind != tab_cell::name || lacks <= 0 || lacks > few ||
            (room >= 0 && lacks > room))
            continue;
        widths[i] += lacks;
        room -= lacks;
    }
}

int count_of(const std::vector<column_need> &needs, tab_cell kind)
{
    return static_cast<int>(std::count_if(
        needs.begin(), needs.end(), [kind](const column_need &need) { return need.kind == kind; }));
}

// Limits the names where texts are shown: a long name gets no more than its part before they have
// theirs.
std::vector<column_need> before_texts(std::vector<column_need> needs, int room)
{
    const int names = count_of(needs, tab_cell::name);
    const int texts = count_of(needs, tab_cell::text);
    for (column_need &need : needs)
        if (need.kind == tab_cell::name && texts != 0)
            need.whole = std::min(need.whole, need.least + room / (names + 2 * texts));
    return needs;
}

// The last columns take the rest: the texts, or the items where no texts are shown.
void spread(std::vector<int> &widths, const std::vector<column_need> &needs, int room)
{
    const int texts = count_of(needs, tab_cell::text);
    if (texts == 0) {
        widths.back() += room;
        return;
    }
    for (std::size_t i = 0; i < needs.size(); ++i)
        if (needs[i].kind == tab_cell::text)
            widths[i] += room / texts;
}

int text_width(PangoLayout *layout, const char *text)
{
    int width = 0;
    pango_layout_set_text(layout, text, -1);
    pango_layout_get_pixel_size(layout, &width, nullptr);
    return width;
}

int cell_width(PangoLayout *layout, const std::string &text)
{
    return text_width(layout, zel::shown_in_cell(text).c_str());
}

// A name and the bytes that it has: they tell well enough which few names are worth a layout.
struct sized_name {
    std::size_t size;
    const char *name;
};

// The pixels of the widest of many names.
int widest(PangoLayout *layout, std::vector<sized_name> &names)
{
    constexpr std::size_t candidates = 16;
    const std::size_t measured = std::min(candidates, names.size());
    std::nth_element(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(measured),
                     names.end(),
                     [](const sized_name &a, const sized_name &b) { return a.size > b.size; });
    int width = 0;
    for (std::size_t i = 0; i < measured; ++i)
        width = std::max(width, cell_width(layout, zel::utf8_shown(names[i].name)));
    return width;
}

// A text of the language columns is cut anyway: the first rows tell the usual width.
int usual_text(PangoLayout *layout, const zel::tab_rows &rows, const std::string *lang)
{
    constexpr std::size_t sampled = 60;
    int width = 0;
    for (std::size_t i = 0; i < std::min(sampled, rows.rows.size()); ++i)
        width = std::max(width, cell_width(layout, zel::tab_lang_text(rows.rows[i].item, lang)));
    return width;
}

// The pixels that the view and the renderer leave free beside a text.
int cell_margin(GtkTreeView *view)
{
    constexpr int renderer_padding = 5; // and some air
    gint separator = 0;
    gint line = 0;
    gtk_widget_ensure_style(GTK_WIDGET(view));
    gtk_widget_style_get(GTK_WIDGET(view), "horizontal-separator", &separator, "focus-line-width",
                         &line, nullptr);
    return separator + 2 * line + renderer_padding;
}

// The pixels of a column's texts: of what is shown in any case, and of the widest.
struct text_need {
    int least = 0;
    int whole = 0;
    int shortest = 0; // 0: the same as least
};

// What is measured once for all columns.
struct measures {
    PangoLayout *layout;
    const zel::tab_rows &rows;
    int widest_group = 0;
    int widest_item = 0;

    measures(PangoLayout *with, const zel::tab_rows &of) : layout(with), rows(of)
    {
        std::vector<sized_name> groups;
        std::vector<sized_name> items;
        const auto add = [](std::vector<sized_name> &to, const char *name) {
            if (name != nullptr)
                to.push_back({std::strlen(name), name});
        };
        items.reserve(rows.rows.size());
        const edit_t *last = nullptr;
        // Fetching the names ahead cuts the time for a large source to a quarter.
        constexpr std::size_t ahead = 8;
        for (std::size_t i = 0; i < rows.rows.size(); ++i) {
            if (i + 2 * ahead < rows.rows.size()) {
                __builtin_prefetch(rows.rows[i + 2 * ahead].item);
                __builtin_prefetch(rows.rows[i + ahead].item->name);
            }
            const zel::tab_row &row = rows.rows[i];
            // Rows of one group follow one another: its name is measured once.
            if (row.group != last)
                add(groups, row.group->name);
            last = row.group;
            add(items, row.item->name);
        }
        widest_group = widest(layout, groups);
        widest_item = widest(layout, items);
    }
    text_need need_of(const tab_column_row &row) const
    {
        switch (row.kind) {
        case tab_cell::number:
            // The highest number has the most digits.
            return {text_width(layout, std::to_string(rows.rows.size()).c_str()), 0};
        case tab_cell::date:
            return {text_width(layout, "0000-00-00"), text_width(layout, "0000-00-00 00:00:00"),
                    text_width(layout, "00-00")};
        case tab_cell::name:
            // Of a group so much that one knows it, with large letters too.
            if (row.column == COL_GROUP)
                return {std::min(widest_group, text_width(layout, "nnnnnn")), widest_group};
            return {0, widest_item};
        case tab_cell::text:
            return {0, usual_text(layout, rows,
                                  row.column == COL_LANG1 ? rows.lang1.get() : rows.lang2.get())};
        default:
            return {};
        }
    }
};

// The measures of the columns' texts; empty before the first measuring.
std::vector<text_need> &texts_of(GtkTreeView *view)
{
    return zel::kept_at<std::vector<text_need>>(view, "zel-texts");
}

// Whether the arrow of the sort order takes no room, since the title has none for it yet.
bool has_small_arrow(GtkTreeViewColumn *column)
{
    gint width = 0;
    gtk_widget_get_size_request(column->arrow, &width, nullptr);
    return width == 1;
}

void make_arrow_small(GtkTreeViewColumn *column, bool small)
{
    if (has_small_arrow(column) != small)
        gtk_widget_set_size_request(column->arrow, small ? 1 : -1, small ? 1 : -1);
}

// The width of a title with its arrow, and without it where the title may be shown so.
text_need title_need(GtkTreeViewColumn *column)
{
    GtkRequisition arrow{};
    GtkRequisition title{};
    GTK_WIDGET_GET_CLASS(column->arrow)->size_request(column->arrow, &arrow); // its own wish
    gtk_widget_size_request(column->button, &title);
    const int without = arrow.width - 1;
    const int whole = title.width + (has_small_arrow(column) ? without : 0);
    // The column that sorts must show its arrow.
    const bool can_do_without = zel::tab_row_of(column).kind == tab_cell::ready &&
                                gtk_tree_view_column_get_sort_indicator(column) == 0;
    return {can_do_without ? whole - without : whole, whole};
}

column_need need_of(GtkTreeViewColumn *column, const text_need &text, int margin)
{
    // The user has dragged this column: it keeps its width, whatever it shows.
    if (column->use_resized_width != 0)
        return {tab_cell::icon, column->resized_width, column->resized_width};
    const tab_column_row &row = zel::tab_row_of(column);
    const text_need title = title_need(column);
    const int least = std::max({row.least, title.least, text.least > 0 ? text.least + margin : 0});
    const int shortest = text.shortest > 0 ? std::max(title.least, text.shortest + margin) : 0;
    return {row.kind, least, std::max({least, title.whole, text.whole + margin}), shortest};
}

// Gives the columns their widths; false when they had them already.
bool lay_out(GtkTreeView *view, int room)
{
    const std::vector<text_need> &texts = texts_of(view);
    // Nothing is measured yet: the columns have the widths that they were made with.
    if (texts.empty())
        return false;
    const int margin = cell_margin(view);
    GList *list = gtk_tree_view_get_columns(view);
    std::vector<column_need> needs;
    for (GtkTreeViewColumn *column : zel::each<GtkTreeViewColumn>(list)) {
        needs.push_back(need_of(column, texts[needs.size()], margin));
        // Kept for tab_shown_part, which is asked for each cell.
        g_object_set_data(G_OBJECT(column), whole_key, GINT_TO_POINTER(needs.back().whole));
        g_object_set_data(G_OBJECT(column), least_key, GINT_TO_POINTER(needs.back().least));
    }
    bool changed = false;
    std::size_t next = 0;
    const std::vector<int> widths = zel::share_width(needs, room);
    for (GtkTreeViewColumn *column : zel::each<GtkTreeViewColumn>(list)) {
        changed = changed || column->fixed_width != widths[next];
        column->fixed_width = widths[next]; // its setter would ask for another round of sizes
        if (needs[next].kind == tab_cell::ready)
            make_arrow_small(column, widths[next] < needs[next].whole);
        ++next;
    }
    g_list_free(list);
    return changed;
}

// Gives the columns their widths in the same round in which the view gets its own. The toolkit
// draws after each round: later widths would be seen as a jump.
void size_allocate(GtkWidget *widget, GtkAllocation *place)
{
    GtkWidgetClass *parent = GTK_WIDGET_CLASS(g_type_class_peek(GTK_TYPE_TREE_VIEW));
    if (lay_out(GTK_TREE_VIEW(widget), place->width)) {
        parent->size_request(widget, &widget->requisition); // here it adds the widths up
        // The toolkit redraws only what is behind the last column.
        gtk_widget_queue_draw(widget);
    }
    parent->size_allocate(widget, place);
}

// A tree view that calls size_allocate above before it gives its columns their places.
GType view_type()
{
    static GType type = 0;
    if (type != 0)
        return type;
    GTypeInfo info{};
    info.class_size = sizeof(GtkTreeViewClass);
    info.class_init = [](gpointer klass, gpointer) {
        GTK_WIDGET_CLASS(klass)->size_allocate = size_allocate;
    };
    info.instance_size = sizeof(GtkTreeView);
    type = g_type_register_static(GTK_TYPE_TREE_VIEW, "ZelTabView", &info, GTypeFlags{});
    return type;
}

void lay_out_now(GtkTreeView *view)
{
    GtkAllocation place{};
    gtk_widget_get_allocation(GTK_WIDGET(view), &place);
    if (lay_out(view, place.width))
        gtk_widget_queue_resize(GTK_WIDGET(view));
}

void style_changed(GtkWidget *widget, GtkStyle *before, gpointer)
{
    GtkTreeView *view = GTK_TREE_VIEW(widget);
    // A theme may change its colours only, and measuring a large source takes time.
    const bool same =
        before != nullptr &&
        pango_font_description_equal(before->font_desc, gtk_widget_get_style(widget)->font_desc);
    if (!same && !texts_of(view).empty() && gtk_tree_view_get_model(view) != nullptr)
        zel::tab_widths_measure(view);
}

// The arrow of the sort order has moved to another title.
void sorting_changed(GtkTreeSortable *, gpointer data) { lay_out_now(GTK_TREE_VIEW(data)); }

} // namespace

namespace zel {

std::vector<int> share_width(const std::vector<column_need> &needs, int room)
{
    std::vector<int> widths(needs.size());
    std::transform(needs.begin(), needs.end(), widths.begin(),
                   [](const column_need &need) { return need.least; });
    shorten(widths, needs, room);
    room -= std::accumulate(widths.begin(), widths.end(), 0);
    // In the order of what is missed most: names, then texts, whole titles, and the time.
    complete(widths, needs, room);
    room = std::max(0, room);
    grow(widths, before_texts(needs, room), tab_cell::name, room);
    if (count_of(needs, tab_cell::text) != 0) {
        grow(widths, needs, tab_cell::text, room);
        grow(widths, needs, tab_cell::name, room);
    }
    grow(widths, needs, tab_cell::ready, room);
    grow(widths, needs, tab_cell::date, room);
    spread(widths, needs, room);
    return widths;
}

void tab_set_row(GtkTreeViewColumn *column, const tab_column_row &row)
{
    g_object_set_data(G_OBJECT(column), row_key, const_cast<tab_column_row *>(&row));
}

const tab_column_row &tab_row_of(GtkTreeViewColumn *column)
{
    return *static_cast<const tab_column_row *>(g_object_get_data(G_OBJECT(column), row_key));
}

GtkWidget *tab_view_new(GtkTreeModel *model)
{
    auto *view = static_cast<GtkWidget *>(g_object_new(view_type(), "model", model, nullptr));
    // Another font needs other widths.
    g_signal_connect(view, "style-set", G_CALLBACK(style_changed), nullptr);
    // After the view's own handler, which moves the arrow.
    g_signal_connect_object(model, "sort-column-changed", G_CALLBACK(sorting_changed), view,
                            G_CONNECT_AFTER);
    return view;
}

void tab_widths_measure(GtkTreeView *view)
{
    PangoLayout *layout = gtk_widget_create_pango_layout(GTK_WIDGET(view), nullptr);
    const measures measured(layout, **ZEL_TAB_MODEL(gtk_tree_view_get_model(view))->rows);
    std::vector<text_need> &texts = texts_of(view);
    texts.clear();
    GList *list = gtk_tree_view_get_columns(view);
    for (GtkTreeViewColumn *column : each<GtkTreeViewColumn>(list))
        texts.push_back(measured.need_of(tab_row_of(column)));
    g_list_free(list);
    g_object_unref(layout);
    lay_out_now(view);
}

tab_date_part tab_shown_part(GtkTreeViewColumn *column)
{
    const auto kept = [column](const char *key) {
        return GPOINTER_TO_INT(g_object_get_data(G_OBJECT(column), key));
    };
    const int width = gtk_tree_view_column_get_width(column);
    if (width >= kept(whole_key))
        return tab_date_part::time;
    return width >= kept(least_key) ? tab_date_part::day : tab_date_part::month_and_day;
}

std::string tab_hidden_text(GtkTreeView *view, GtkTreeViewColumn *column, GtkTreeIter *iter)
{
    const tab_column_row &row = tab_row_of(column);
    // Numbers and marks are always whole.
    if (row.kind != tab_cell::name && row.kind != tab_cell::text && row.kind != tab_cell::date)
        return {};
    GtkTreeModel *model = gtk_tree_view_get_model(view);
    gchar *shown = nullptr;
    item_t *item = nullptr;
    gtk_tree_model_get(model, iter, row.column, &shown, COL_RECORD, &item, -1);
    const std::string cell = or_empty(shown);
    g_free(shown);
    std::string whole = cell;
    // The list shows a part of the first line only: the tooltip has the whole text.
    if (row.kind == tab_cell::text) {
        const tab_rows &rows = **ZEL_TAB_MODEL(model)->rows;
        whole = tab_whole_text(item, (row.column == COL_LANG1 ? rows.lang1 : rows.lang2).get());
    }
    PangoLayout *layout = gtk_widget_create_pango_layout(GTK_WIDGET(view), nullptr);
    const int width = cell_width(layout, cell) + cell_margin(view);
    g_object_unref(layout);
    const bool is_seen = width <= gtk_tree_view_column_get_width(column) &&
                         (whole.empty() || whole == cell) &&
                         shown_in_cell(cell) == shown_in_runs(cell);
    return is_seen ? std::string() : shown_in_runs(whole);
}

} // namespace zel
