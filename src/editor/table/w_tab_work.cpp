#include "editor/table/w_tab_work.h"

#include "app/global.h"
#include "editor/panel/w_text.h"
#include "editor/panel/w_text_checks.h"
#include "editor/state/edit-state.h"
#include "editor/table/w_tab_list.h"
#include "editor/table/w_tab_search.h"
#include "editor/table/w_tab_widths.h"
#include "editor/toolkit/accessible.h"
#include "editor/toolkit/ui-text.h"
#include "source/misc.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <string>

namespace zel {

namespace {

// Slices let the toolkit have its turn; the wait before the first one lets the window appear.
constexpr int before_judging = 50; // milliseconds
constexpr int between_judging = 4;
constexpr gint64 judging_time = 4000; // microseconds
constexpr std::uint32_t rows_judged_at_once = 32;
constexpr int shortest_progress = 2;

const char *name_of(const std::unique_ptr<std::string> &lang)
{
    return lang == nullptr ? nullptr : lang->c_str();
}

// The key, in parentheses, is told by the tooltip alone: it is no part of the button's name.
GtkWidget *make_filter_button(const char *icon, const char *name, const char *key)
{
    GtkWidget *button = gtk_toggle_button_new();
    gtk_container_add(GTK_CONTAINER(button),
                      gtk_image_new_from_stock(icon, GTK_ICON_SIZE_SMALL_TOOLBAR));
    gtk_widget_set_tooltip_text(button, (std::string(name) + key).c_str());
    set_accessible_name(button, name);
    return button;
}

bool is_on(GtkWidget *button)
{
    return gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(button)) != 0;
}

int width_of(GtkWidget *label, const std::string &text)
{
    PangoLayout *layout = gtk_widget_create_pango_layout(label, text.c_str());
    int width = 0;
    pango_layout_get_pixel_size(layout, &width, nullptr);
    g_object_unref(layout);
    return width;
}

GtkWidget *make_progress_label()
{
    GtkWidget *label = gtk_label_new(nullptr);
    gtk_misc_set_alignment(GTK_MISC(label), 1.0F, 0.5F);
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
    gtk_widget_set_name(label, "progress");
    return label;
}

} // namespace

tab_work::tab_work(tab_work_parts parts)
    : parts_(std::move(parts)), filters_(gtk_hbox_new(FALSE, 0)),
      findings_only_(make_filter_button(GTK_STOCK_DIALOG_WARNING,
                                        ui_text("tab-edit", "Display only items with findings"),
                                        " (Ctrl+E)")),
      questions_only_(make_filter_button(
          GTK_STOCK_DIALOG_QUESTION, ui_text("tab-edit", "Display only items with open questions"),
          " (Alt+Q)")),
      progress_label_(make_progress_label())
{
    for (GtkWidget *button : {findings_only_, questions_only_}) {
        g_signal_connect(button, "toggled", G_CALLBACK(+[](GtkToggleButton *, gpointer self) {
                             static_cast<tab_work *>(self)->parts_.filter_anew();
                         }),
                         this);
        gtk_box_pack_start(GTK_BOX(filters_), button, FALSE, FALSE, 0);
    }
    g_signal_connect(progress_label_, "size-allocate",
                     G_CALLBACK(+[](GtkWidget *, GtkAllocation *place, gpointer data) {
                         auto *self = static_cast<tab_work *>(data);
                         if (place->width != self->progress_room_ && self->progress_.count() != 0)
                             self->show_progress();
                     }),
                     this);
    add_button_key(findings_only_, GDK_KEY_e, GDK_CONTROL_MASK);
    add_button_key(questions_only_, GDK_KEY_q, GDK_MOD1_MASK);
    watch_panel();
    mark_cells();
    add_keys();
}

tab_work::~tab_work() { stop(); }

void tab_work::stop()
{
    judging_.stop();
    keys_.clear();
    progress_.reset(0);
    item_row_ = -1;
}

assist::judge tab_work::make_judge() const
{
    return {parts_.rows->source, name_of(parts_.rows->lang1), name_of(parts_.rows->lang2),
            text_width_in(parts_.panel)};
}

void tab_work::judge_row(assist::judge &judge, std::uint32_t row)
{
    const tab_row &of = parts_.rows->rows[row];
    progress_.set(row, judge.look_at(of.group, of.item));
}

const assist::item_state &tab_work::state_of(std::uint32_t row)
{
    // The cell is drawn before its slice has come: judged now, it is not drawn twice.
    if (!progress_.is_known(row)) {
        assist::judge judge = make_judge();
        judge_row(judge, row);
    }
    return progress_.of(row);
}

void tab_work::judge_all()
{
    assist::judge judge = make_judge();
    // The slices have judged the rows before next_row_ already.
    for (std::size_t row = progress_.first_unknown(next_row_); row < progress_.count();
         row = progress_.first_unknown(row))
        judge_row(judge, static_cast<std::uint32_t>(row));
    show_progress();
}

int tab_work::judge_slice()
{
    assist::judge judge = make_judge();
    const bool complete = work_for(judging_time, rows_judged_at_once, [&] {
        const std::size_t row = progress_.first_unknown(next_row_);
        next_row_ = static_cast<std::uint32_t>(row);
        if (row == progress_.count())
            return false;
        judge_row(judge, next_row_);
        return true;
    });
    if (!complete)
        return between_judging;
    show_progress();
    return slices::finished;
}

// Of no item.
void tab_work::show_nothing()
{
    text_show_remarks(parts_.panel, {});
    text_show_rooms(parts_.panel, {});
}

void tab_work::rows_changed()
{
    progress_.reset(parts_.rows->rows.size());
    next_row_ = 0;
    item_row_ = -1;
    // Old sums and remarks must not stand beside the new rows until the slices have come to their
    // end.
    gtk_label_set_text(GTK_LABEL(progress_label_), "");
    show_nothing();
    judging_.begin(before_judging);
}

void tab_work::watch_panel()
{
    for (const field_t &field : fields)
        g_signal_connect(gtk_text_view_get_buffer(GTK_TEXT_VIEW(parts_.panel->*field.view)),
                         "changed", G_CALLBACK(typed), this);
}

void tab_work::typed(GtkTextBuffer *, gpointer self)
{
    // The panel fills its fields: item_shown comes afterwards.
    if (lang_global.text_lock == 0)
        static_cast<tab_work *>(self)->judge_shown();
}

void tab_work::judge_shown()
{
    if (item_row_ < 0 || static_cast<std::size_t>(item_row_) >= progress_.count())
        return;
    const auto row = static_cast<std::uint32_t>(item_row_);
    const tab_row &of = parts_.rows->rows[row];
    assist::remarks told;
    // With the languages of this moment; a judge keeps pointers to their names.
    assist::judge judge = make_judge();
    const std::vector<assist::typed_text> typed = text_typed(parts_.panel);
    const assist::item_state state = judge.look_at(of.group, of.item, typed, &told);
    text_show_remarks(parts_.panel, told);
    text_show_rooms(parts_.panel, judge.rooms_of(of.item, typed));
    text_colour_pieces(parts_.panel);
    // Most letters change neither the row's marks nor the sums.
    if (progress_.is_known(row) && progress_.of(row) == state)
        return;
    progress_.set(row, state);
    zel_tab_model_row_changed(parts_.shown, item_row_);
    show_progress();
}

void tab_work::item_shown(int row)
{
    const int before = item_row_;
    item_row_ = row;
    if (before >= 0 && static_cast<std::size_t>(before) < progress_.count() && before != row) {
        // The item before has been stored, and may have been changed in other ways than typing.
        assist::judge judge = make_judge();
        judge_row(judge, static_cast<std::uint32_t>(before));
    }
    if (row < 0)
        show_nothing();
    else
        judge_shown();
}

void tab_work::mark_cells()
{
    GList *columns = gtk_tree_view_get_columns(parts_.view);
    for (GList *node = columns; node != nullptr; node = node->next) {
        auto *column = GTK_TREE_VIEW_COLUMN(node->data);
        // The marks belong to the item's name.
        if (tab_row_of(column).column != COL_ITEM)
            continue;
        GList *cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
        gtk_tree_view_column_set_cell_data_func(column, GTK_CELL_RENDERER(cells->data), show_cell,
                                                this, nullptr);
        g_list_free(cells);
    }
    g_list_free(columns);
}

// Bold means that a text is missing; the underline of a fault that a rule finds one.
void tab_work::show_cell(GtkTreeViewColumn *, GtkCellRenderer *cell, GtkTreeModel *,
                         GtkTreeIter *iter, gpointer data)
{
    auto *self = static_cast<tab_work *>(data);
    const int row = zel_tab_model_row_of(self->parts_.shown, iter);
    assist::item_state state;
    if (row >= 0 && static_cast<std::size_t>(row) < self->progress_.count())
        state = self->state_of(static_cast<std::uint32_t>(row));
    g_object_set(cell, "weight", state.is_complete() ? PANGO_WEIGHT_NORMAL : PANGO_WEIGHT_BOLD,
                 "underline", state.has_findings() ? PANGO_UNDERLINE_ERROR : PANGO_UNDERLINE_NONE,
                 nullptr);
}

bool tab_work::filters() const { return is_on(findings_only_) || is_on(questions_only_); }

bool tab_work::hides(std::uint32_t row)
{
    if (!filters() || row >= progress_.count())
        return false;
    // A filter must know all rows: the slices would hide them one by one.
    if (!progress_.is_all_known())
        judge_all();
    const assist::item_state &state = progress_.of(row);
    return (is_on(findings_only_) && !state.has_findings()) ||
           (is_on(questions_only_) && !state.has_question());
}

void tab_work::uncover(int row)
{
    const auto is_hidden = [this, row] { return zel_tab_model_place_of(parts_.shown, row) < 0; };
    if (is_hidden())
        gtk_entry_set_text(GTK_ENTRY(parts_.search), "");
    for (GtkWidget *filter : {findings_only_, questions_only_})
        if (is_hidden())
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(filter), FALSE);
    if (is_hidden())
        gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(empty_menu), FALSE);
}

// Whether the sums tell the language: the source's own one has nothing to translate, unless it is
// the only one that is shown.
bool tab_work::counts(std::size_t i) const
{
    const std::unique_ptr<std::string> *langs[] = {&parts_.rows->lang1, &parts_.rows->lang2};
    const char *lang = name_of(*langs[i]);
    return lang != nullptr &&
           (*langs[1 - i] == nullptr || g_strcmp0(lang, parts_.rows->source->default_lang) != 0);
}

// The sums, whole or with less and less in them: those of the list stand beside them anyway, and
// what is to do matters most.
std::string tab_work::progress_text(int shortened) const
{
    const tab_rows &rows = *parts_.rows;
    const std::unique_ptr<std::string> *langs[] = {&rows.lang1, &rows.lang2};
    std::string text;
    for (std::size_t i = 0; i < assist::shown_languages; ++i) {
        if (!counts(i))
            continue;
        const std::size_t translated = progress_.of_language(i).translated;
        const std::size_t findings = progress_.of_language(i).findings;
        const std::size_t all = progress_.count();
        text += (text.empty() ? "" : "   ") + utf8_shown(name_of(*langs[i])) + ": ";
        if (shortened == 0)
            text += assist::grouped(translated) + " " + ui_text("tab-edit", "of") + " " +
                    assist::grouped(all) + ", ";
        text += assist::grouped(all - translated) + " " + ui_text("tab-edit", "to do");
        if (shortened < shortest_progress)
            text +=
                ", " + assist::grouped(findings) + " " +
                (findings == 1 ? ui_text("tab-edit", "finding") : ui_text("tab-edit", "findings"));
    }
    // Of both languages: who answers sees the question in the one in which it was asked.
    const std::size_t questions =
        progress_.of_language(0).questions + progress_.of_language(1).questions;
    if (questions != 0)
        text +=
            (text.empty() ? "" : "   ") + assist::grouped(questions) + " " +
            (questions == 1 ? ui_text("tab-edit", "question") : ui_text("tab-edit", "questions"));
    return text;
}

void tab_work::show_progress()
{
    // Sums of a part would look like those of the whole, and change several times a second.
    if (progress_.is_all_known() && parts_.rows->source != nullptr)
        fit_progress();
}

// What has no room is told by the tooltip.
void tab_work::fit_progress()
{
    GtkAllocation place{};
    gtk_widget_get_allocation(progress_label_, &place);
    progress_room_ = place.width;
    const std::string whole = progress_text(0);
    std::string text = whole;
    // A label that has no place yet is one pixel wide.
    for (int shortened = 1; shortened <= shortest_progress && place.width > 1 &&
                            width_of(progress_label_, text) > place.width;
         ++shortened)
        text = progress_text(shortened);
    if (text == gtk_label_get_text(GTK_LABEL(progress_label_)))
        return;
    gtk_label_set_text(GTK_LABEL(progress_label_), text.c_str());
    gtk_widget_set_tooltip_text(progress_label_, text == whole ? nullptr : whole.c_str());
}

// Whether somebody marks this source's items as ready. Where nobody does, as after an import, "not
// ready" says nothing about an item.
bool tab_work::uses_ready() const
{
    const std::vector<tab_row> &rows = parts_.rows->rows;
    return std::any_of(rows.begin(), rows.end(),
                       [](const tab_row &row) { return row.item->ready != 0; });
}

bool tab_work::has_work(std::uint32_t row, bool by_ready, const counted &langs)
{
    // The cheapest look first: unready items need no judging.
    if (by_ready && parts_.rows->rows[row].item->ready == 0)
        return true;
    const assist::item_state &state = progress_.is_known(row) ? progress_.of(row) : state_of(row);
    for (std::size_t i = 0; i < langs.size(); ++i)
        if (langs[i] && (state.lacks[i] || state.findings[i] != 0))
            return true;
    return false;
}

int tab_work::selected_place() const
{
    GtkTreeIter iter;
    GtkTreeModel *model = nullptr;
    if (gtk_tree_selection_get_selected(gtk_tree_view_get_selection(parts_.view), &model, &iter) ==
            0 ||
        model == nullptr)
        return -1;
    return zel_tab_model_place_of(parts_.shown, zel_tab_model_row_of(parts_.shown, &iter));
}

// Goes to the next item with work, from the selected row on; without a selected row, from the end
// of the list that lies behind the direction.
bool tab_work::go_to_work(int direction)
{
    const std::vector<std::uint32_t> &shown = *parts_.shown->shown;
    const std::vector<tab_row> &rows = parts_.rows->rows;
    const int count = zel_tab_model_count(parts_.shown);
    const int selected = selected_place();
    // Asked once: thousands of rows without work may lie on the way.
    const bool by_ready = uses_ready();
    const counted langs{counts(0), counts(1)};
    int place = selected < 0 && direction < 0 ? count : selected;
    for (place += direction; place >= 0 && place < count; place += direction) {
        // The items lie anywhere in memory: fetching them ahead keeps each look from waiting for
        // its own.
        const int ahead = place + 16 * direction;
        if (by_ready && ahead >= 0 && ahead < count)
            __builtin_prefetch(&rows[shown[static_cast<std::size_t>(ahead)]].item->ready);
        const std::uint32_t row = shown[static_cast<std::size_t>(place)];
        if (row >= progress_.count() || !has_work(row, by_ready, langs))
            continue;
        tab_list_go_to(parts_.view, place);
        return true;
    }
    edit_status(direction > 0 ? ui_text("tab-edit", "No item with work below")
                              : ui_text("tab-edit", "No item with work above"));
    return false;
}

void tab_work::done_and_next()
{
    if (selected_place() >= 0)
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(parts_.ready_button), TRUE);
    go_to_work(1);
}

// Asked without judging, which would take longer for all rows than one waits for a key.
bool tab_work::lacks_translation(std::uint32_t row, std::size_t i) const
{
    const tab_rows &rows = *parts_.rows;
    if (!counts(i))
        return false;
    if (progress_.is_known(row))
        return progress_.of(row).lacks[i];
    const char *lang = name_of(i == 0 ? rows.lang1 : rows.lang2);
    return misc_search_empty_in_lang_entry(misc_select_lang_entry(rows.rows[row].item, lang)) != 0;
}

// The row behind the item that is shown, in the list's order, whether the list shows it or not.
int tab_work::next_untranslated() const
{
    int next = -1;
    for (std::uint32_t row = 0; row < progress_.count(); ++row) {
        const bool is_nearer =
            (item_row_ < 0 ||
             zel_tab_model_is_before(parts_.shown, static_cast<std::uint32_t>(item_row_), row)) &&
            (next < 0 ||
             zel_tab_model_is_before(parts_.shown, row, static_cast<std::uint32_t>(next)));
        if (is_nearer && (lacks_translation(row, 0) || lacks_translation(row, 1)))
            next = static_cast<int>(row);
    }
    return next;
}

// The caret goes where the translation is to be typed.
void tab_work::go_to_untranslated()
{
    const int row = next_untranslated();
    if (row < 0)
        return edit_status(ui_text("tab-edit", "No item without a translation below"));
    const int field = text_focused_field(parts_.panel);
    const auto is_empty = [&](int one) {
        return (one == TEXT_TRANS1 || one == TEXT_TRANS2) &&
               lacks_translation(static_cast<std::uint32_t>(row), static_cast<std::size_t>(one));
    };
    tab_turn_to(parts_.search);
    uncover(row);
    tab_list_go_to(parts_.view, zel_tab_model_place_of(parts_.shown, row));
    text_focus_field(parts_.panel, is_empty(field)         ? field
                                   : is_empty(TEXT_TRANS1) ? TEXT_TRANS1
                                                           : TEXT_TRANS2);
}

void tab_work::key_pressed(void (*act)(tab_work *work))
{
    // Without rows the keys belong to nobody, and the status line keeps its text.
    if (progress_.count() == 0)
        return;
    edit_status(nullptr);
    act(this);
}

void tab_work::add_keys()
{
    struct key_row {
        guint keyval;
        GdkModifierType modifier;
        void (*act)(tab_work *work);
    };
    // The keys of the number pad have names of their own.
    static constexpr key_row rows[] = {
        {GDK_KEY_Page_Down, GDK_MOD1_MASK, [](tab_work *work) { work->go_to_work(1); }},
        {GDK_KEY_KP_Page_Down, GDK_MOD1_MASK, [](tab_work *work) { work->go_to_work(1); }},
        {GDK_KEY_Page_Up, GDK_MOD1_MASK, [](tab_work *work) { work->go_to_work(-1); }},
        {GDK_KEY_KP_Page_Up, GDK_MOD1_MASK, [](tab_work *work) { work->go_to_work(-1); }},
        {GDK_KEY_u, GDK_CONTROL_MASK, [](tab_work *work) { work->go_to_untranslated(); }},
        {GDK_KEY_Return, GDK_CONTROL_MASK, [](tab_work *work) { work->done_and_next(); }},
        {GDK_KEY_KP_Enter, GDK_CONTROL_MASK, [](tab_work *work) { work->done_and_next(); }},
    };
    for (const key_row &row : rows)
        keys_.add(row.keyval, row.modifier, [this, act = row.act] { key_pressed(act); });
}

} // namespace zel
