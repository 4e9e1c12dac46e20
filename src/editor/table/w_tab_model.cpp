#include "editor/table/w_tab_model.h"

#include "editor/toolkit/ui-text.h"
#include "source/misc.h"
#include "support/time.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr glong lang_text_length = 32; // characters

constexpr int unsorted = GTK_TREE_SORTABLE_UNSORTED_SORT_COLUMN_ID;

// An iterator holds nothing but the place of its row.
int place_of(const GtkTreeIter *iter) { return GPOINTER_TO_INT(iter->user_data); }

bool set_iter(ZelTabModel *model, GtkTreeIter *iter, int place)
{
    *iter = {};
    if (place < 0 || place >= zel_tab_model_count(model))
        return false;
    // An iterator of an older order has another stamp and is refused.
    iter->stamp = model->stamp;
    iter->user_data = GINT_TO_POINTER(place);
    return true;
}

const char *first_line(item_t *item, const std::unique_ptr<std::string> &lang)
{
    const lang_entry_t *entry =
        lang == nullptr ? nullptr : misc_select_lang_entry(item, lang->c_str());
    return entry == nullptr || entry->texts == nullptr
               ? nullptr
               : static_cast<const char *>(entry->texts->data);
}

// Logs and prints texts that are not UTF-8: the list shows replacements in their place.
void check_texts(const zel::tab_rows &rows, const zel::tab_row &row)
{
    // With the position number, which is what the user sees in the list.
    const int pos = row.item->posnr;
    if (rows.with_langs) {
        lang_check_utf8(nullptr, pos, "lang1", first_line(row.item, rows.lang1));
        lang_check_utf8(nullptr, pos, "lang2", first_line(row.item, rows.lang2));
    }
    lang_check_utf8(nullptr, pos, "group_name", row.group->name);
    lang_check_utf8(nullptr, pos, "item_name", row.item->name);
}

GType column_type(GtkTreeModel *, gint column)
{
    switch (column) {
    case COL_SHOWN:
    case COL_READY:
        return G_TYPE_BOOLEAN;
    case COL_ICON:
        return GDK_TYPE_PIXBUF;
    case COL_POS:
        return G_TYPE_INT;
    case COL_TIME:
        return G_TYPE_UINT;
    case COL_SOURCE:
    case COL_RECORD:
        return G_TYPE_POINTER;
    default:
        return column >= 0 && column < COL_COUNT ? G_TYPE_STRING : G_TYPE_INVALID;
    }
}

void set_string(GValue *value, const std::string &text) { g_value_set_string(value, text.c_str()); }

void set_date(GValue *value, std::int64_t time)
{
    set_string(value, zel::date_text("%Y-%m-%d %H:%M:%S", time));
}

void set_cell(const zel::tab_rows &rows, int number, int column, GValue *value)
{
    const zel::tab_row &row = rows.rows[static_cast<std::size_t>(number)];
    switch (column) {
    case COL_SHOWN:
        g_value_set_boolean(value, TRUE);
        break;
    case COL_ICON:
        g_value_set_object(value, number == rows.active ? rows.pix_active : rows.pix_passive);
        break;
    case COL_POS:
        g_value_set_int(value, number + 1);
        break;
    case COL_TIME:
        g_value_set_uint(value, static_cast<guint>(row.item->ctime));
        break;
    case COL_DATE:
        set_date(value, row.item->ctime);
        break;
    case COL_READY:
        g_value_set_boolean(value, row.item->ready != 0);
        break;
    case COL_GROUP:
        set_string(value, zel::utf8_shown(row.group->name));
        break;
    case COL_ITEM:
        set_string(value, zel::utf8_shown(row.item->name));
        break;
    case COL_LANG1:
    case COL_LANG2: {
        const auto &lang = column == COL_LANG1 ? rows.lang1 : rows.lang2;
        // In mode 0 nobody shows these columns, and their cells stay null.
        if (rows.with_langs)
            set_string(value, zel::tab_lang_text(row.item, lang.get()));
        break;
    }
    case COL_SOURCE:
        g_value_set_pointer(value, rows.source);
        break;
    case COL_RECORD:
        g_value_set_pointer(value, row.item);
        break;
    default:
        break;
    }
}

GtkTreeModelFlags get_flags(GtkTreeModel *) { return GTK_TREE_MODEL_LIST_ONLY; }

gint get_n_columns(GtkTreeModel *) { return COL_COUNT; }

gboolean iter_nth_child(GtkTreeModel *model, GtkTreeIter *iter, GtkTreeIter *parent, gint n)
{
    // In a list only the root, which is null, has children.
    return set_iter(ZEL_TAB_MODEL(model), iter, parent == nullptr ? n : -1);
}

gboolean get_iter(GtkTreeModel *model, GtkTreeIter *iter, GtkTreePath *path)
{
    const bool is_row = gtk_tree_path_get_depth(path) == 1;
    return set_iter(ZEL_TAB_MODEL(model), iter, is_row ? gtk_tree_path_get_indices(path)[0] : -1);
}

GtkTreePath *get_path(GtkTreeModel *, GtkTreeIter *iter)
{
    return gtk_tree_path_new_from_indices(place_of(iter), -1);
}

void get_value(GtkTreeModel *model, GtkTreeIter *iter, gint column, GValue *value)
{
    ZelTabModel *self = ZEL_TAB_MODEL(model);
    g_value_init(value, column_type(model, column));
    const int row = zel_tab_model_row_of(self, iter);
    const zel::tab_rows &rows = **self->rows;
    // A view may still ask for a row while the rows are exchanged.
    if (row >= 0 && static_cast<std::size_t>(row) < rows.rows.size())
        set_cell(rows, row, column, value);
}

gboolean iter_next(GtkTreeModel *model, GtkTreeIter *iter)
{
    return set_iter(ZEL_TAB_MODEL(model), iter, place_of(iter) + 1);
}

gboolean iter_children(GtkTreeModel *model, GtkTreeIter *iter, GtkTreeIter *parent)
{
    return iter_nth_child(model, iter, parent, 0);
}

gboolean iter_has_child(GtkTreeModel *, GtkTreeIter *) { return FALSE; }

gint iter_n_children(GtkTreeModel *model, GtkTreeIter *iter)
{
    return iter == nullptr ? zel_tab_model_count(ZEL_TAB_MODEL(model)) : 0;
}

gboolean iter_parent(GtkTreeModel *, GtkTreeIter *iter, GtkTreeIter *)
{
    *iter = {};
    return FALSE;
}

void tree_model_init(gpointer iface, gpointer)
{
    auto *tree_model = static_cast<GtkTreeModelIface *>(iface);
    tree_model->get_flags = get_flags;
    tree_model->get_n_columns = get_n_columns;
    tree_model->get_column_type = column_type;
    tree_model->get_iter = get_iter;
    tree_model->get_path = get_path;
    tree_model->get_value = get_value;
    tree_model->iter_next = iter_next;
    tree_model->iter_children = iter_children;
    tree_model->iter_has_child = iter_has_child;
    tree_model->iter_n_children = iter_n_children;
    tree_model->iter_nth_child = iter_nth_child;
    tree_model->iter_parent = iter_parent;
}

// Sorts the rows; those that compare equal stand in file order, whichever way the list is sorted.
void sort_rows(ZelTabModel *model, std::vector<std::uint32_t> &shown)
{
    if (model->sort_id < 0)
        return;
    const auto is_before = [model](std::uint32_t a, std::uint32_t b) {
        return zel_tab_model_is_before(model, a, b);
    };
    // A search finds them in file order, which is the usual one.
    if (!std::is_sorted(shown.begin(), shown.end(), is_before))
        std::sort(shown.begin(), shown.end(), is_before);
}

// Sorts while a view watches: the view is told where each row came from, and so keeps the selected
// one.
void reorder(ZelTabModel *model)
{
    const std::size_t count = model->shown->size();
    if (count == 0)
        return;
    // By row number: after the sorting this tells where each row came from.
    std::vector<gint> old_place((*model->rows)->rows.size());
    for (std::size_t place = 0; place < count; ++place)
        old_place[(*model->shown)[place]] = static_cast<gint>(place);
    sort_rows(model, *model->shown);
    std::vector<gint> came_from(count);
    bool moved = false;
    for (std::size_t place = 0; place < count; ++place) {
        came_from[place] = old_place[(*model->shown)[place]];
        moved = moved || came_from[place] != static_cast<gint>(place);
    }
    // Nothing is signalled then, since a signal makes the view draw all of its rows again.
    if (!moved)
        return;
    ++model->stamp;
    GtkTreePath *root = gtk_tree_path_new();
    gtk_tree_model_rows_reordered(GTK_TREE_MODEL(model), root, nullptr, came_from.data());
    gtk_tree_path_free(root);
}

gboolean get_sort_column_id(GtkTreeSortable *sortable, gint *id, GtkSortType *order)
{
    const ZelTabModel *model = ZEL_TAB_MODEL(sortable);
    if (id != nullptr)
        *id = model->sort_id;
    if (order != nullptr)
        *order = model->sort_order;
    return model->sort_id >= 0;
}

void set_sort_column_id(GtkTreeSortable *sortable, gint id, GtkSortType order)
{
    ZelTabModel *model = ZEL_TAB_MODEL(sortable);
    if (model->sort_id == id && model->sort_order == order)
        return;
    model->sort_id = id;
    model->sort_order = order;
    // The header's arrow changes also where no row moves.
    gtk_tree_sortable_sort_column_changed(sortable);
    reorder(model);
}

gboolean has_default_sort_func(GtkTreeSortable *) { return FALSE; }

void sortable_init(gpointer iface, gpointer)
{
    auto *sortable = static_cast<GtkTreeSortableIface *>(iface);
    sortable->get_sort_column_id = get_sort_column_id;
    sortable->set_sort_column_id = set_sort_column_id;
    sortable->has_default_sort_func = has_default_sort_func;
}

gpointer model_parent;

void model_finalize(GObject *object)
{
    ZelTabModel *model = ZEL_TAB_MODEL(object);
    delete model->shown;
    delete model->rows;
    G_OBJECT_CLASS(model_parent)->finalize(object);
}

void model_class_init(gpointer klass, gpointer)
{
    model_parent = g_type_class_peek_parent(klass);
    G_OBJECT_CLASS(klass)->finalize = model_finalize;
}

void model_init(GTypeInstance *instance, gpointer)
{
    ZelTabModel *model = ZEL_TAB_MODEL(instance);
    // Pointers, since the toolkit zeroes an object and calls no constructor of its members.
    model->rows = new std::shared_ptr<zel::tab_rows>;
    model->shown = new std::vector<std::uint32_t>;
    model->stamp = 1;
    model->sort_id = unsorted;
    model->sort_order = GTK_SORT_ASCENDING;
}

} // namespace

namespace zel {

tab_rows::~tab_rows()
{
    if (pix_active != nullptr)
        g_object_unref(pix_active);
    if (pix_passive != nullptr)
        g_object_unref(pix_passive);
}

void tab_rows_clear(tab_rows &rows)
{
    rows.source = nullptr;
    rows.rows.clear();
    rows.active = -1;
}

void tab_rows_collect(tab_rows &rows, LangSource *source)
{
    tab_rows_clear(rows);
    rows.source = source;
    if (source == nullptr)
        return;
    for (edit_t *group : each<edit_t>(source->groups)) {
        for (item_t *item : each<item_t>(group->items)) {
            if (item->used == 0)
                continue;
            // Numbered in file order, over all groups: the number is the row's place plus one.
            rows.rows.push_back({group, item});
            // The mark says what has changed since the source was shown.
            item->changed = 0;
            item->posnr = static_cast<std::int32_t>(rows.rows.size());
            check_texts(rows, rows.rows.back());
        }
    }
    rows.rows.shrink_to_fit();
}

std::string tab_lang_text(item_t *item, const std::string *lang)
{
    const lang_entry_t *entry =
        lang == nullptr ? nullptr : misc_select_lang_entry(item, lang->c_str());
    if (entry == nullptr || entry->texts == nullptr)
        return " ";
    std::string text = utf8_shown(static_cast<const char *>(entry->texts->data));
    if (text.empty())
        return " ";
    // The count of bytes first: most texts are short, and counting letters reads all of them.
    if (text.size() > lang_text_length && g_utf8_strlen(text.c_str(), -1) > lang_text_length) {
        const char *cut = g_utf8_offset_to_pointer(text.c_str(), lang_text_length);
        text.resize(static_cast<std::size_t>(cut - text.c_str()));
    }
    return text;
}

std::string tab_whole_text(item_t *item, const std::string *lang)
{
    const lang_entry_t *entry =
        lang == nullptr ? nullptr : misc_select_lang_entry(item, lang->c_str());
    std::string text;
    for (const char *line : each<char>(entry == nullptr ? nullptr : entry->texts))
        text += utf8_shown(line);
    text.resize(text.find_last_not_of("\r\n") + 1);
    return text;
}

} // namespace zel

GType zel_tab_model_get_type()
{
    static GType type = 0;
    if (type != 0)
        return type;
    GTypeInfo info{};
    info.class_size = sizeof(ZelTabModelClass);
    info.class_init = model_class_init;
    info.instance_size = sizeof(ZelTabModel);
    info.instance_init = model_init;
    type = g_type_register_static(G_TYPE_OBJECT, "ZelTabModel", &info, GTypeFlags{});
    const GInterfaceInfo model_info{tree_model_init, nullptr, nullptr};
    const GInterfaceInfo sort_info{sortable_init, nullptr, nullptr};
    g_type_add_interface_static(type, GTK_TYPE_TREE_MODEL, &model_info);
    g_type_add_interface_static(type, GTK_TYPE_TREE_SORTABLE, &sort_info);
    return type;
}

ZelTabModel *zel_tab_model_new(std::shared_ptr<zel::tab_rows> rows)
{
    ZelTabModel *model = ZEL_TAB_MODEL(g_object_new(ZEL_TYPE_TAB_MODEL, nullptr));
    *model->rows = std::move(rows);
    return model;
}

void zel_tab_model_show(ZelTabModel *model, std::vector<std::uint32_t> shown)
{
    *model->shown = std::move(shown);
    sort_rows(model, *model->shown);
    // Iterators of the rows before are refused from now on.
    ++model->stamp;
}

int zel_tab_model_count(ZelTabModel *model) { return static_cast<int>(model->shown->size()); }

int zel_tab_model_row_at(ZelTabModel *model, int place)
{
    if (place < 0 || place >= zel_tab_model_count(model))
        return -1;
    return static_cast<int>((*model->shown)[static_cast<std::size_t>(place)]);
}

int zel_tab_model_row_of(ZelTabModel *model, const GtkTreeIter *iter)
{
    return iter->stamp == model->stamp ? zel_tab_model_row_at(model, place_of(iter)) : -1;
}

int zel_tab_model_place_of(ZelTabModel *model, int row)
{
    const std::vector<std::uint32_t> &shown = *model->shown;
    const auto wanted = static_cast<std::uint32_t>(row);
    // Rows in file order stand in the order of their numbers. By other marks they need not: the
    // order stays when a mark is changed.
    const bool by_number = model->sort_id == COL_POS && model->sort_order == GTK_SORT_ASCENDING;
    const auto found = by_number ? std::lower_bound(shown.begin(), shown.end(), wanted)
                                 : std::find(shown.begin(), shown.end(), wanted);
    return found == shown.end() || *found != wanted ? -1 : static_cast<int>(found - shown.begin());
}

bool zel_tab_model_is_before(const ZelTabModel *model, std::uint32_t row, std::uint32_t other)
{
    const std::vector<zel::tab_row> &rows = (*model->rows)->rows;
    const int sign = model->sort_order == GTK_SORT_DESCENDING ? -1 : 1;
    const int order =
        sign * sort_iter_compare_func(rows[row], row, rows[other], other, model->sort_id);
    return order != 0 ? order < 0 : row < other;
}

void zel_tab_model_row_changed(ZelTabModel *model, int row)
{
    GtkTreeIter iter;
    const int place = row < 0 ? -1 : zel_tab_model_place_of(model, row);
    if (!set_iter(model, &iter, place))
        return;
    GtkTreePath *path = gtk_tree_path_new_from_indices(place, -1);
    gtk_tree_model_row_changed(GTK_TREE_MODEL(model), path, &iter);
    gtk_tree_path_free(path);
}

int sort_iter_compare_func(const zel::tab_row &a, std::uint32_t pos_a, const zel::tab_row &b,
                           std::uint32_t pos_b, int sort_id)
{
    const auto compare = [](auto x, auto y) { return x < y ? -1 : x > y ? 1 : 0; };
    switch (sort_id) {
    case COL_POS:
        return compare(pos_a, pos_b);
    // As unsigned numbers of 32 bits, like the column: the order must fit what is shown.
    case COL_TIME:
        return compare(static_cast<guint>(a.item->ctime), static_cast<guint>(b.item->ctime));
    case COL_READY:
        return compare(a.item->ready != 0, b.item->ready != 0);
    default:
        return 0;
    }
}
