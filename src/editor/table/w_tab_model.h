#pragma once

// The rows of the item table, and a tree model that shows some of them in some order.
//
// One array holds a row for each used item. Three models stand on it: all rows, those that pass the
// filter, and those again in the order shown. A model holds row numbers only and computes a cell
// when it is asked for it, so that a large source costs a few bytes per item and nothing is copied.
// Rows are exchanged as a whole, while no view watches.

#include <gtk/gtk.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "source/model.h"

// Columns of all three models.
enum tab_column {
    COL_SHOWN,  // boolean, TRUE
    COL_ICON,   // pixbuf: the active one for the current row, else the passive one
    COL_POS,    // int, position number 1, 2, 3 ... in file order
    COL_TIME,   // unsigned int, the item's ctime
    COL_DATE,   // string, "%Y-%m-%d %H:%M:%S" of it
    COL_READY,  // boolean
    COL_GROUP,  // string
    COL_ITEM,   // string
    COL_LANG1,  // string, start of the first line in the first shown language; null in mode 0
    COL_LANG2,  // string, the same in the second
    COL_SOURCE, // pointer, LangSource
    COL_RECORD, // pointer, item_t
    COL_COUNT
};

namespace zel {

// A used item of the source. Its place in the array plus one is its position number.
struct tab_row {
    edit_t *group;
    item_t *item;
};

struct tab_rows {
    LangSource *source = nullptr; // not owned
    std::vector<tab_row> rows;
    bool with_langs = false;            // the language columns are shown
    std::unique_ptr<std::string> lang1; // names of the shown languages; null when there is none
    std::unique_ptr<std::string> lang2;
    int active = -1;                 // the current row
    GdkPixbuf *pix_active = nullptr; // owned
    GdkPixbuf *pix_passive = nullptr;

    tab_rows() = default;
    ~tab_rows();
    tab_rows(const tab_rows &) = delete;
    tab_rows &operator=(const tab_rows &) = delete;
};

// A row's text in a language as the list shows it: the start of its first line, 32 characters at
// most; a blank when there is none.
[[nodiscard]] std::string tab_lang_text(item_t *item, const std::string *lang);

// The whole text, without the line end of its last line; empty for none.
[[nodiscard]] std::string tab_whole_text(item_t *item, const std::string *lang);

// A row for each used item of the source, none for null; the items get their position numbers and
// lose their marks of change, and texts that are not UTF-8 are told.
void tab_rows_collect(tab_rows &rows, LangSource *source);

// Drops all rows when their source has been closed. The models stay usable, and are empty once
// their own row numbers are set again.
void tab_rows_clear(tab_rows &rows);

} // namespace zel

#define ZEL_TYPE_TAB_MODEL (zel_tab_model_get_type())
#define ZEL_TAB_MODEL(object)                                                                      \
    (G_TYPE_CHECK_INSTANCE_CAST((object), ZEL_TYPE_TAB_MODEL, ZelTabModel))

struct ZelTabModel {
    GObject object;
    std::shared_ptr<zel::tab_rows> *rows; // shared with the other models
    std::vector<std::uint32_t> *shown;    // row numbers in the order shown
    int stamp;                            // of the iterators that are valid now
    int sort_id;                          // COL_POS, COL_TIME, COL_READY; or unsorted (below 0)
    GtkSortType sort_order;
};

struct ZelTabModelClass {
    GObjectClass parent_class;
};

GType zel_tab_model_get_type();

// An empty model over the rows; owned by the caller.
[[nodiscard]] ZelTabModel *zel_tab_model_new(std::shared_ptr<zel::tab_rows> rows);

// Shows exactly these rows, sorted when the model is sorted. No view may watch: nothing is emitted.
void zel_tab_model_show(ZelTabModel *model, std::vector<std::uint32_t> shown);

// Number of rows shown; the row number at a place or an iterator, and the place of a row number
// (-1: not shown).
int zel_tab_model_count(ZelTabModel *model);
int zel_tab_model_row_at(ZelTabModel *model, int place);
int zel_tab_model_row_of(ZelTabModel *model, const GtkTreeIter *iter);
int zel_tab_model_place_of(ZelTabModel *model, int row);

// Whether the row stands before the other one in the model's order, where both are shown.
bool zel_tab_model_is_before(const ZelTabModel *model, std::uint32_t row, std::uint32_t other);

// Tells the view to draw a row's cells again; does nothing when the row is not shown.
void zel_tab_model_row_changed(ZelTabModel *model, int row);

// Compares two rows by a sort id: -1, 0 or 1; 0 for an id that is none.
int sort_iter_compare_func(const zel::tab_row &a, std::uint32_t pos_a, const zel::tab_row &b,
                           std::uint32_t pos_b, int sort_id);
