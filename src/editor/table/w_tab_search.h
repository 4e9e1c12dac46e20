#pragma once

// The row with the search field above the list, and what a search does beside filtering: its hits
// are marked in the texts, Escape brings back the item from before it, letters typed in the list
// belong to it.

#include <gtk/gtk.h>

#include <functional>

#include "assist/fold.h"
#include "editor/panel/w_text_panel.h"

namespace zel {

// The parts of the table that the search works with. They outlive it.
struct tab_search_parts {
    GtkWidget *table;
    GtkWidget *view; // the list
    Zeltext *panel;
    std::function<void()> changed;      // the search text has changed
    std::function<void()> activate;     // Return: to the first hit
    std::function<void(int)> go_to_row; // selects the row, where it is shown
    std::function<bool()> has_selection;
};

// Turns to the page that the table is on.
void tab_turn_to(GtkWidget *table);

class tab_search {
public:
    explicit tab_search(tab_search_parts parts);
    tab_search(const tab_search &) = delete;
    tab_search &operator=(const tab_search &) = delete;

    GtkWidget *row() const { return row_; }
    GtkWidget *entry() const { return entry_; }
    const assist::folded_words &words() const { return words_; }

    // Call before the list is filtered again, with the row that is selected now, or -1.
    void begin(int selected);

    // Call after the rows have changed: there is no item to come back to.
    void forget() { before_ = -1; }

    // Empties the search; selects the row from before it, where nothing is selected then.
    void come_back();

    // Marks the hits in the texts of the item that is shown.
    void mark_hits();

private:
    static void find_clicked(GtkButton *, gpointer self);
    static void clear_clicked(GtkButton *, gpointer self);
    static gboolean entry_key(GtkWidget *, GdkEventKey *event, gpointer self);
    static gboolean list_key(GtkWidget *, GdkEventKey *event, gpointer self);
    static void typed(GtkTextBuffer *, gpointer self);

    void make_row();

    tab_search_parts parts_;
    GtkWidget *row_ = nullptr;
    GtkWidget *entry_ = nullptr;
    assist::folded_words words_;
    bool is_searching_ = false; // the search text is not empty
    int before_ = -1;           // the row that was selected before the search
};

} // namespace zel
