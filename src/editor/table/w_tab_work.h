#pragma once

// The work that is left in the list: what each item lacks and which rules find fault with it, as
// the list's marks, the checks of the item that is shown, a filter, the way to the next item with
// work, and sums beside the list's count.
//
// A key also goes to the next item without a translation, whatever hides it.
//
// Rows are judged in slices while nothing else happens, and at once where the answer is wanted.

#include <gtk/gtk.h>

#include <array>
#include <functional>
#include <memory>
#include <string>

#include "assist/progress.h"
#include "editor/panel/w_text_panel.h"
#include "editor/state/key-set.h"
#include "editor/table/w_tab_model.h"
#include "editor/toolkit/slices.h"

namespace zel {

// The parts of the table that the work needs. They outlive it.
struct tab_work_parts {
    GtkTreeView *view;
    ZelTabModel *shown; // what the view shows
    std::shared_ptr<tab_rows> rows;
    Zeltext *panel;
    GtkWidget *ready_button;
    GtkWidget *search; // whose text hides rows, too
    std::function<void()> filter_anew;
};

class tab_work {
public:
    explicit tab_work(tab_work_parts parts);
    ~tab_work();
    tab_work(const tab_work &) = delete;
    tab_work &operator=(const tab_work &) = delete;

    GtkWidget *filter_buttons() const { return filters_; } // which hold this one
    GtkWidget *findings_filter() const { return findings_only_; }
    GtkWidget *questions_filter() const { return questions_only_; }
    GtkWidget *progress_label() const { return progress_label_; }

    // Call after the rows, their languages or many of their texts have changed.
    void rows_changed();

    // Call when the panel shows the row's item (-1: none), and has stored the one before.
    void item_shown(int row);

    // Whether a filter, of findings or of questions, is on.
    bool filters() const;

    // Whether one of these filters hides the row.
    bool hides(std::uint32_t row);

    // Ends the search and the filters that hide the row, one after the other until it is shown.
    void uncover(int row);

    // The table is being destroyed: stops the timer and removes the keys.
    void stop();

private:
    static void typed(GtkTextBuffer *, gpointer self);
    int judge_slice();
    static void show_cell(GtkTreeViewColumn *, GtkCellRenderer *cell, GtkTreeModel *,
                          GtkTreeIter *iter, gpointer self);

    void watch_panel();
    void mark_cells();
    void add_keys();
    void key_pressed(void (*act)(tab_work *work));
    assist::judge make_judge() const;
    const assist::item_state &state_of(std::uint32_t row);
    void judge_row(assist::judge &judge, std::uint32_t row);
    void judge_all();
    void judge_shown();
    void show_nothing();
    void show_progress();
    std::string progress_text(int shortened) const;
    void fit_progress();
    bool counts(std::size_t i) const;
    bool uses_ready() const;
    using counted = std::array<bool, assist::shown_languages>;
    bool has_work(std::uint32_t row, bool by_ready, const counted &langs);
    int selected_place() const;
    bool go_to_work(int direction);
    void done_and_next();
    bool lacks_translation(std::uint32_t row, std::size_t i) const;
    int next_untranslated() const;
    void go_to_untranslated();

    tab_work_parts parts_;
    GtkWidget *filters_;
    GtkWidget *findings_only_;
    GtkWidget *questions_only_;
    GtkWidget *progress_label_;
    int progress_room_ = 0; // in which its text was fitted
    assist::progress progress_;
    std::uint32_t next_row_ = 0; // where the next slice begins
    int item_row_ = -1;          // whose item is shown
    slices judging_{[this] { return judge_slice(); }};
    key_set keys_;
};

} // namespace zel
