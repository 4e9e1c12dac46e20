#pragma once

// Help with a translation: under its field what the same or the most similar text is translated as
// elsewhere in the source, or else in the folder's other sources, and keys that take it, the other
// language's text, or parts of that. What stands in the field already is not suggested. An empty
// translation may have one in an item that the code does not ask for any more: what the text was
// before it changed. Who takes that has to look at it: the item is not ready then. Where a backup
// of the source shows that the text was changed under a translation, the line tells what it was.
//
// The index of the texts is built in slices while nothing else happens; what it holds so far is
// used.

#include <gtk/gtk.h>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "assist/neighbours.h"
#include "assist/similar.h"
#include "editor/panel/w_text_panel.h"
#include "editor/state/key-set.h"
#include "editor/table/w_tab_model.h"
#include "editor/table/w_tab_neighbours.h"
#include "editor/table/w_tab_plural.h"
#include "editor/table/w_tab_terms.h"
#include "editor/table/w_tab_was.h"
#include "editor/toolkit/slices.h"

namespace zel {

class tab_suggest {
public:
    // The rows, the panel and the button of the ready mark outlive this object.
    tab_suggest(std::shared_ptr<tab_rows> rows, Zeltext *panel, GtkWidget *ready_button);
    ~tab_suggest() { stop(); }
    tab_suggest(const tab_suggest &) = delete;
    tab_suggest &operator=(const tab_suggest &) = delete;

    // Call after the rows, their languages or many of their texts have changed.
    void rows_changed();

    // Call when the panel shows the row's item (-1: none), and has stored the one before.
    void item_shown(int row);

    // The table is being destroyed: stops the timers and removes the keys.
    void stop();

    // The other sources of the folder, as far as they have been read; the function is called when
    // that is all of them.
    const assist::neighbour_texts &neighbours() const { return neighbours_.texts(); }
    void when_neighbours_are_read(std::function<void()> then) { then_ = std::move(then); }

private:
    int index_slice();
    void add_keys();
    const std::string *lang_of(int field) const;
    bool is_translated_into(int field) const;
    int field_to_fill() const;
    void collect_unused();
    item_t *item_of(std::uint32_t number) const;
    const char *group_of(std::uint32_t number) const;
    std::string reference_of(std::uint32_t number) const;
    lang_entry_t *translation(std::uint32_t number, int field) const;
    std::optional<assist::suggestion> own_suggestion(std::uint32_t row, int field) const;
    std::optional<assist::suggestion> suggestion(std::uint32_t row, int field) const;
    void read_neighbours();
    static void typed(gpointer self);
    bool is_there_already(int field) const;
    void suggest(int field);
    void tell_earlier(std::uint32_t row, int field);
    void show(int field);
    void suggest_all();
    tab_terms::offer terms_shown(int field) const;
    void underline_terms();
    void take_suggestion();
    void copy_other();
    void insert_piece(std::size_t number);
    void add_term();
    void go_to_form(int direction);
    void show_below(int direction);
    std::string_view rule_of(int field) const;
    plural_line plural_of(int field) const;

    std::shared_ptr<tab_rows> rows_;
    Zeltext *panel_;
    GtkWidget *ready_button_;
    struct unused_item {
        const edit_t *group;
        item_t *item;
    };
    std::vector<unused_item> unused_; // whose numbers follow those of the rows
    assist::similar_texts index_;
    tab_neighbours neighbours_;
    std::function<void()> then_ = [] {}; // once those are read
    tab_terms terms_;
    std::uint32_t next_row_ = 0; // where the next slice begins
    int row_ = -1;               // whose item is shown
    struct offer {
        std::string text;       // of the translation, as the field would show it; empty for nothing
        std::string line;       // and as it is shown under the field
        was_line was;           // the same where it is what the text was; else without a text
        bool is_plural = false; // the reference has forms for a number
        bool is_same = false;   // it translates the same text
    };
    std::array<offer, 2> offers_;
    std::array<std::string, 2> marks_; // of the plural lines that are shown
    slices indexing_{[this] { return index_slice(); }};
    key_set keys_;
};

} // namespace zel
