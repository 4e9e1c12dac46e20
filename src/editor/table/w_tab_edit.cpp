#include "editor/table/w_tab_edit.h"

#include "app/global.h"
#include "editor/panel/spelling.h"
#include "editor/panel/w_text.h"
#include "editor/state/edit-state.h"
#include "editor/table/w_tab_filter.h"
#include "editor/table/w_tab_finding.h"
#include "editor/table/w_tab_found.h"
#include "editor/table/w_tab_icons.h"
#include "editor/table/w_tab_list.h"
#include "editor/table/w_tab_model.h"
#include "editor/table/w_tab_panes.h"
#include "editor/table/w_tab_ready.h"
#include "editor/table/w_tab_search.h"
#include "editor/table/w_tab_shot.h"
#include "editor/table/w_tab_suggest.h"
#include "editor/table/w_tab_widths.h"
#include "editor/table/w_tab_work.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/operation.h"
#include "editor/toolkit/theme.h"
#include "editor/toolkit/ui-text.h"
#include "source/misc.h"
#include "support/string-copy.h"

#include <numeric>
#include <string>

namespace {

constexpr int spacing = 6;

GtkTreeView *view_of(ZelTabEdit *tab) { return GTK_TREE_VIEW(tab->view); }

ZelTabModel *shown_rows(ZelTabEdit *tab) { return ZEL_TAB_MODEL(tab->sort_model); }

zel::tab_rows &rows_of(ZelTabEdit *tab) { return **tab->rows; }

// The selected row, null when none is.
const zel::tab_row *selected_row(ZelTabEdit *tab, int *number = nullptr)
{
    const int row = zel_tab_model_row_at(shown_rows(tab), zel::tab_list_selected(view_of(tab)));
    if (number != nullptr)
        *number = row;
    return row < 0 ? nullptr : &rows_of(tab).rows[static_cast<std::size_t>(row)];
}

// Remembers where the row stands in the list; -1 for no row.
void remember_selected(ZelTabEdit *tab, int row)
{
    if (tab->selected_path != nullptr)
        gtk_tree_path_free(tab->selected_path);
    const int place = row < 0 ? -1 : zel_tab_model_place_of(shown_rows(tab), row);
    tab->selected_path = place < 0 ? nullptr : gtk_tree_path_new_from_indices(place, -1);
}

// Gives the row the icon of the current one; -1 for no row.
void mark_row(ZelTabEdit *tab, int row)
{
    const int before = rows_of(tab).active;
    if (before == row)
        return;
    // Set before the rows are drawn: the cells ask which one is the current row.
    rows_of(tab).active = row;
    zel_tab_model_row_changed(shown_rows(tab), before);
    zel_tab_model_row_changed(shown_rows(tab), row);
}

void empty_text(ZelTabEdit *tab, int update)
{
    zel_text_set_pos(tab->text_widget, 0);
    zel_text_set_group_name(tab->text_widget, nullptr);
    zel_text_set(tab->text_widget, nullptr, nullptr, update);
}

void show_row(ZelTabEdit *tab, const zel::tab_row &row, int number)
{
    tab->ready->show(row.item);
    zel_text_set_pos(tab->text_widget, number + 1);
    zel_text_set_group_name(tab->text_widget, row.group->name);
    // The number and the group come before the item, since the panel shows them with it.
    zel_text_set(tab->text_widget, rows_of(tab).source, row.item, 1);
    zel::tab_show_shot(tab->last_group, row.group->name, row.item->name);
}

// The field that was typed in gets the keyboard back, so that the user goes on typing in the next
// item. The panel stays as it is in between: emptied, it would be laid out and drawn twice.
void tree_selection_changed_cb(GtkTreeSelection *, gpointer data)
{
    ZelTabEdit *tab = ZEL_TAB_EDIT(data);
    if (tab->busy != 0)
        return;
    const zel::flag_guard busy(tab->busy);
    const int field = zel::text_focused_field(ZEL_TEXT(tab->text_widget));
    int number = -1;
    const zel::tab_row *row = selected_row(tab, &number);
    // An import has changed the texts beneath: storing the fields would write the old ones over
    // them.
    const int update = lang_global.importing != 0 ? 0 : 1;
    if (row == nullptr)
        empty_text(tab, update);
    else
        zel::text_leave_item(ZEL_TEXT(tab->text_widget), update);
    zel::text_drop_focus(ZEL_TEXT(tab->text_widget));
    remember_selected(tab, number);
    mark_row(tab, number);
    if (row != nullptr)
        show_row(tab, *row, number);
    else
        tab->ready->show(nullptr);
    // After the panel: all three read its fields.
    tab->work->item_shown(number);
    tab->suggest->item_shown(number);
    tab->search->mark_hits();
    if (field >= 0 && !zel::text_focus_field(ZEL_TEXT(tab->text_widget), field))
        gtk_widget_grab_focus(tab->view);
}

// Keeps the selected row in sight when the order changes. The list itself has moved the selection
// already.
void rows_reordered_cb(GtkTreeModel *, GtkTreePath *, GtkTreeIter *, gpointer, gpointer data)
{
    ZelTabEdit *tab = ZEL_TAB_EDIT(data);
    remember_selected(tab, rows_of(tab).active);
    if (tab->selected_path != nullptr)
        gtk_tree_view_scroll_to_cell(view_of(tab), tab->selected_path, nullptr, FALSE, 0, 0);
}

// Exchanges the rows while the list does not watch: this costs a fraction of a signal for each row.
void show_rows(ZelTabEdit *tab, const std::vector<std::uint32_t> &shown)
{
    gtk_tree_view_set_model(view_of(tab), nullptr);
    zel_tab_model_show(ZEL_TAB_MODEL(tab->filter_model), shown);
    zel_tab_model_show(shown_rows(tab), shown);
    gtk_tree_view_set_model(view_of(tab), tab->sort_model);
}

// The rows that the filters let through and, with them, the words of the search.
std::vector<std::uint32_t> filtered_rows(ZelTabEdit *tab, bool with_words)
{
    zel::tab_filter filter{with_words ? tab->search_words : nullptr, nullptr, nullptr,
                           lang_global.only_untranslated != 0, lang_global.whatsnew_since};
    misc_select_edit_lang(tab->lang_source, &filter.lang1, &filter.lang2);
    return zel::tab_filtered_rows(rows_of(tab), filter,
                                  with_words ? tab->search->words() : zel::assist::folded_words(),
                                  [tab](std::uint32_t row) { return tab->work->hides(row); });
}

// Shows the rows that the search and the filters let through, and how many there are.
void refilter(ZelTabEdit *tab)
{
    tab->search_words = zel::tab_search_words(gtk_entry_get_text(GTK_ENTRY(tab->search_entry)));
    const std::vector<std::uint32_t> shown = filtered_rows(tab, true);
    zel::tab_show_found(tab->found_label,
                        {shown.size(), rows_of(tab).rows.size(), tab->search_words != nullptr,
                         lang_global.only_untranslated != 0, tab->work->filters()});
    // Only now: the filter and the label have used the words.
    zel::free_search_words(tab->search_words);
    tab->search_words = nullptr;
    show_rows(tab, shown);
    tab->finding->rows_filtered();
}

gboolean tree_filter_changed_cb(GtkWidget *, gpointer data)
{
    ZelTabEdit *tab = ZEL_TAB_EDIT(data);
    if (tab->busy != 0)
        return TRUE;
    const zel::flag_guard busy(tab->busy);
    const bool in_text = zel::text_focused_field(ZEL_TEXT(tab->text_widget)) >= 0;
    // Before the selection is dropped: the search remembers where to come back to.
    tab->search->begin(rows_of(tab).active);
    if (zel::tab_list_selected(view_of(tab)) >= 0) {
        mark_row(tab, -1);
        remember_selected(tab, -1);
        // What is typed is stored before its row may be hidden.
        empty_text(tab, 1);
        tab->ready->show(nullptr);
        tab->work->item_shown(-1);
        tab->suggest->item_shown(-1);
    }
    refilter(tab);
    // The fields are hidden now: without this the keyboard would act on nothing.
    if (in_text)
        gtk_widget_grab_focus(tab->view);
    return TRUE;
}

void focus_translation(ZelTabEdit *tab)
{
    zel::text_focus_translation(ZEL_TEXT(tab->text_widget), tab->lang_source);
}

void row_activated_cb(GtkTreeView *, GtkTreePath *, GtkTreeViewColumn *, gpointer data)
{
    focus_translation(ZEL_TAB_EDIT(data));
}

// The table is being destroyed, and the source may be destroyed already: nothing of it is read.
void destroy_cb(GtkObject *, gpointer data)
{
    ZelTabEdit *tab = ZEL_TAB_EDIT(data);
    // The toolkit may send "destroy" more than once.
    if (tab->pix_active == nullptr)
        return;
    // Emptying the list sends the signals of a selection.
    tab->busy = 1;
    tab->work->stop();
    tab->suggest->stop();
    tab->finding->stop();
    zel::tab_rows_clear(rows_of(tab));
    show_rows(tab, {});
    g_clear_object(&tab->pix_active);
    g_clear_object(&tab->pix_passive);
    remember_selected(tab, -1);
    zel::tab_drop_shot();
}

void make_models(ZelTabEdit *tab)
{
    tab->pix_active = gdk_pixbuf_new_from_xpm_data(const_cast<const char **>(xpm_active));
    tab->pix_passive = gdk_pixbuf_new_from_xpm_data(const_cast<const char **>(xpm_passive));
    auto rows = std::make_shared<zel::tab_rows>();
    rows->with_langs = lang_global.editor_mode != 0;
    rows->pix_active = GDK_PIXBUF(g_object_ref(tab->pix_active));
    rows->pix_passive = GDK_PIXBUF(g_object_ref(tab->pix_passive));
    tab->store = GTK_TREE_MODEL(zel_tab_model_new(rows));
    tab->filter_model = GTK_TREE_MODEL(zel_tab_model_new(rows));
    tab->sort_model = GTK_TREE_MODEL(zel_tab_model_new(rows));
    gtk_tree_sortable_set_sort_column_id(GTK_TREE_SORTABLE(tab->sort_model), COL_POS,
                                         GTK_SORT_ASCENDING);
    // After the list's own handler, which has moved the selection then.
    g_signal_connect_after(tab->sort_model, "rows-reordered", G_CALLBACK(rows_reordered_cb), tab);
    tab->rows = new std::shared_ptr<zel::tab_rows>(std::move(rows));
}

GtkWidget *make_list(ZelTabEdit *tab)
{
    tab->ready = new zel::tab_ready(shown_rows(tab));
    const zel::tab_list list =
        zel::tab_list_new(tab->sort_model, zel::tab_ready::cell_toggled, tab->ready);
    tab->view = list.view;
    tab->lang1_column = list.lang1;
    tab->lang2_column = list.lang2;
    GtkTreeSelection *selection = gtk_tree_view_get_selection(view_of(tab));
    gtk_tree_selection_set_mode(selection, GTK_SELECTION_SINGLE);
    g_signal_connect(selection, "changed", G_CALLBACK(tree_selection_changed_cb), tab);
    g_signal_connect(tab->view, "row-activated", G_CALLBACK(row_activated_cb), tab);

    tab->hits = new zel::tab_hits(tab->view);
    return tab->hits->pane();
}

GtkWidget *make_text_side(ZelTabEdit *tab)
{
    GtkWidget *box = gtk_vbox_new(FALSE, 0);
    tab->text_widget = zel_text_new();
    tab->ready_button = tab->ready->make_button(view_of(tab), ZEL_TEXT(tab->text_widget));
    gtk_box_pack_start(GTK_BOX(box), tab->text_widget, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), tab->ready_button, FALSE, FALSE, 0);
    return box;
}

GtkWidget *make_info_frame(ZelTabEdit *tab)
{
    const zel::tab_info info = zel::tab_info_new(tab->work->progress_label());
    tab->info_label = info.count;
    tab->found_label = info.found;
    return info.frame;
}

// Ends a search that hides the row.
void go_to_row(ZelTabEdit *tab, int row)
{
    if (zel_tab_model_place_of(shown_rows(tab), row) < 0)
        gtk_entry_set_text(GTK_ENTRY(tab->search_entry), "");
    zel::tab_list_go_to(view_of(tab), zel_tab_model_place_of(shown_rows(tab), row));
}

void make_search(ZelTabEdit *tab)
{
    tab->search = new zel::tab_search(
        {GTK_WIDGET(tab), tab->view, ZEL_TEXT(tab->text_widget),
         [tab] { tree_filter_changed_cb(nullptr, tab); },
         [tab] {
             // Return without words ends the search, with the item from before it.
             if (tab->search->words().empty())
                 tab->search->come_back();
             if (!tab->search->words().empty() || zel::tab_list_selected(view_of(tab)) < 0)
                 zel_tab_edit_first(GTK_WIDGET(tab));
             focus_translation(tab);
         },
         [tab](int row) { go_to_row(tab, row); },
         [tab] { return zel::tab_list_selected(view_of(tab)) >= 0; }});
    tab->search_entry = tab->search->entry();
}

void make_work_and_help(ZelTabEdit *tab)
{
    tab->work = new zel::tab_work({view_of(tab), shown_rows(tab), *tab->rows,
                                   ZEL_TEXT(tab->text_widget), tab->ready_button, tab->search_entry,
                                   [tab] { tree_filter_changed_cb(nullptr, tab); }});
    tab->suggest = new zel::tab_suggest(*tab->rows, ZEL_TEXT(tab->text_widget), tab->ready_button);
    zel::watch_spelling(ZEL_TEXT(tab->text_widget));
}

void make_finding(ZelTabEdit *tab)
{
    Zeltext *panel = ZEL_TEXT(tab->text_widget);
    tab->finding = new zel::tab_finding(
        {tab->hits,
         tab->search_entry,
         {*tab->rows, panel, tab->hits,
          [tab]() -> const zel::assist::neighbour_texts & { return tab->suggest->neighbours(); },
          [tab](int row) { go_to_row(tab, row); }},
         {*tab->rows, panel, tab->hits, GTK_ENTRY(tab->search_entry), [tab](bool with_words) {
              return with_words ? *shown_rows(tab)->shown : filtered_rows(tab, false);
          }}});
    tab->suggest->when_neighbours_are_read([tab] { tab->finding->neighbours_are_read(); });
}

void instance_init(GTypeInstance *instance, gpointer)
{
    ZelTabEdit *tab = ZEL_TAB_EDIT(instance);
    tab->last_group = zel_strdup2("");
    GtkWidget *box = gtk_vbox_new(FALSE, spacing);
    gtk_container_set_border_width(GTK_CONTAINER(box), spacing);
    make_models(tab);
    GtkWidget *list = make_list(tab);
    GtkWidget *panes = zel::tab_panes_new(list, make_text_side(tab));
    // Work and help need the panel and the rows; the filter button goes into the row of the search.
    make_search(tab);
    make_work_and_help(tab);
    make_finding(tab);
    GtkBox *row = GTK_BOX(tab->search->row());
    gtk_box_pack_start(row, tab->work->filter_buttons(), FALSE, FALSE, 0);
    gtk_box_pack_start(row, tab->finding->fields_row(), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), tab->search->row(), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), panes, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), make_info_frame(tab), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(tab), box, TRUE, TRUE, 0);
    gtk_widget_show_all(box);
    empty_text(tab, 0);
    tab->ready->show(nullptr);
    g_signal_connect(tab, "destroy", G_CALLBACK(destroy_cb), tab);
}

gpointer parent_class;

void finalize(GObject *object)
{
    ZelTabEdit *tab = ZEL_TAB_EDIT(object);
    g_object_unref(tab->sort_model);
    g_object_unref(tab->filter_model);
    g_object_unref(tab->store);
    zel::replace_string(tab->last_group, nullptr);
    // What holds the models and the rows is deleted before the rows themselves.
    delete tab->finding;
    delete tab->hits;
    delete tab->work;
    delete tab->suggest;
    delete tab->search;
    delete tab->ready;
    delete tab->rows;
    G_OBJECT_CLASS(parent_class)->finalize(object);
}

void class_init(gpointer klass, gpointer)
{
    parent_class = g_type_class_peek_parent(klass);
    G_OBJECT_CLASS(klass)->finalize = finalize;
}

void select_languages(ZelTabEdit *tab)
{
    zel::tab_list_show_languages(rows_of(tab), tab->lang_source,
                                 {tab->view, tab->lang1_column, tab->lang2_column});
}

void show_count(ZelTabEdit *tab)
{
    const std::string count =
        std::to_string(rows_of(tab).rows.size()) + " " + zel::ui_text("tab-edit", "Items");
    gtk_label_set_text(GTK_LABEL(tab->info_label), count.c_str());
}

void fill(ZelTabEdit *tab, LangSource *source)
{
    const zel::flag_guard busy(tab->busy);
    tab->finding->end();
    empty_text(tab, 1);
    tab->ready->show(nullptr);
    tab->lang_source = source;
    // The text of the search is emptied without a filter run of its own, since the table is busy.
    gtk_entry_set_text(GTK_ENTRY(tab->search_entry), "");
    tab->search->begin(-1);
    tab->search->forget();
    zel::edit_select_output_langs(source);
    // The old rows must not be asked for cells while they are exchanged.
    show_rows(tab, {});
    select_languages(tab);
    zel::tab_rows_collect(rows_of(tab), source);
    std::vector<std::uint32_t> all(rows_of(tab).rows.size());
    std::iota(all.begin(), all.end(), 0U);
    zel_tab_model_show(ZEL_TAB_MODEL(tab->store), std::move(all));
    // Before the filter: it may ask which rows have findings.
    tab->work->rows_changed();
    tab->suggest->rows_changed();
    refilter(tab);
    // Last, since the widths come from the rows.
    zel::tab_widths_measure(view_of(tab));
}

void go_to(ZelTabEdit *tab, int place) { zel::tab_list_go_to(view_of(tab), place); }

// Moves by so many rows from the selected one; without one, nowhere.
void step(ZelTabEdit *tab, int rows)
{
    const int place = zel::tab_list_selected(view_of(tab));
    if (place >= 0)
        go_to(tab, place + rows);
}

void go_to_last(ZelTabEdit *tab)
{
    const int place = zel_tab_model_count(shown_rows(tab)) - 1;
    if (place < 0)
        return;
    tab->last_path = gtk_tree_path_new_from_indices(place, -1);
    gtk_tree_view_set_cursor(view_of(tab), tab->last_path, nullptr, FALSE);
    gtk_tree_path_free(tab->last_path);
    tab->last_path = nullptr;
}

// Takes the languages again: the user may have chosen others, or renamed them.
void follow_languages(ZelTabEdit *tab)
{
    tab->finding->end();
    select_languages(tab);
    tab->work->rows_changed();
    tab->suggest->rows_changed();
    zel::tab_widths_measure(view_of(tab));
    gtk_widget_queue_draw(tab->view);
}

void refresh(ZelTabEdit *tab)
{
    follow_languages(tab);
    // With one row, which is selected already, the moves below select nothing, and the panel would
    // keep the old texts.
    const bool stays =
        zel_tab_model_count(shown_rows(tab)) == 1 && zel::tab_list_selected(view_of(tab)) == 0;
    go_to_last(tab);
    go_to(tab, 0);
    if (stays)
        tree_selection_changed_cb(nullptr, tab);
    if (tab->selected_path != nullptr)
        gtk_tree_view_scroll_to_cell(view_of(tab), tab->selected_path, nullptr, FALSE, 0, 0);
}

void reload(ZelTabEdit *tab)
{
    follow_languages(tab);
    tree_selection_changed_cb(nullptr, tab);
}

void filter_anew(ZelTabEdit *tab) { tree_filter_changed_cb(nullptr, tab); }

// What all operations on the table share; name is that of the operation, for the warning.
template <class Operation>
int on_table(GtkWidget *widget, const char *name, Operation operation)
{
    return zel::operate<ZelTabEdit>(widget, ZEL_TYPE_TAB_EDIT, "ZEL_IS_TAB_EDIT(widget)", name,
                                    operation);
}

} // namespace

GType zel_tab_edit_get_type()
{
    static GType type = 0;
    if (type != 0)
        return type;
    GTypeInfo info{};
    info.class_size = sizeof(ZelTabEditClass);
    info.class_init = class_init;
    info.instance_size = sizeof(ZelTabEdit);
    info.instance_init = instance_init;
    type = g_type_register_static(GTK_TYPE_HBOX, "ZelTabEdit", &info, GTypeFlags{});
    return type;
}

GtkWidget *zel_tab_edit_new() { return GTK_WIDGET(g_object_new(ZEL_TYPE_TAB_EDIT, nullptr)); }

int zel_tab_edit_set(GtkWidget *widget, LangSource *source)
{
    return on_table(widget, __func__, [source](ZelTabEdit *tab) {
        fill(tab, source);
        go_to(tab, 0);
        show_count(tab);
    });
}

int zel_tab_edit_update(GtkWidget *widget)
{
    return on_table(widget, __func__, [](ZelTabEdit *tab) { zel_text_update(tab->text_widget); });
}

int zel_tab_edit_first(GtkWidget *widget)
{
    return on_table(widget, __func__, [](ZelTabEdit *tab) { go_to(tab, 0); });
}

int zel_tab_edit_prev(GtkWidget *widget)
{
    return on_table(widget, __func__, [](ZelTabEdit *tab) { step(tab, -1); });
}

int zel_tab_edit_next(GtkWidget *widget)
{
    return on_table(widget, __func__, [](ZelTabEdit *tab) { step(tab, 1); });
}

int zel_tab_edit_last(GtkWidget *widget) { return on_table(widget, __func__, go_to_last); }

int zel_tab_edit_check_changed(GtkWidget *widget)
{
    return on_table(widget, __func__, [](ZelTabEdit *) {});
}

int zel_tab_edit_list_focus(GtkWidget *widget)
{
    return on_table(widget, __func__,
                    [](ZelTabEdit *tab) { gtk_widget_grab_focus(tab->hits->list()); });
}

int zel_tab_edit_refresh(GtkWidget *widget) { return on_table(widget, __func__, refresh); }
int zel_tab_edit_whatsnew(GtkWidget *widget) { return on_table(widget, __func__, filter_anew); }
int zel_tab_edit_empty(GtkWidget *widget) { return on_table(widget, __func__, filter_anew); }

int zel_tab_edit_get_ctrls(edit_ctrl_t *ctrls)
{
    *ctrls = {zel_tab_edit_new,     zel_tab_edit_set,           zel_tab_edit_update,
              zel_tab_edit_first,   zel_tab_edit_prev,          zel_tab_edit_next,
              zel_tab_edit_last,    zel_tab_edit_check_changed, zel_tab_edit_list_focus,
              zel_tab_edit_refresh, zel_tab_edit_whatsnew,      zel_tab_edit_empty};
    return 1;
}

namespace zel {

edit_more_t tab_edit_more()
{
    return {
        // The names are those of no function: they stand in the warning only.
        [](GtkWidget *widget) { return on_table(widget, "tab_edit_reload", reload); },
        [](GtkWidget *widget) {
            return on_table(widget, "tab_edit_put_away",
                            [](ZelTabEdit *tab) { text_put_away(ZEL_TEXT(tab->text_widget)); });
        },
        [](GtkWidget *widget) {
            return on_table(widget, "tab_edit_bring_back",
                            [](ZelTabEdit *tab) { text_bring_back(ZEL_TEXT(tab->text_widget)); });
        },
        [](GtkWidget *widget, const lang_entry_t *entry) {
            bool made = false;
            on_table(widget, "tab_edit_is_made", [&made, entry](ZelTabEdit *tab) {
                made = text_is_made(ZEL_TEXT(tab->text_widget), entry);
            });
            return made ? 1 : 0;
        },
    };
}

} // namespace zel
