#pragma once

// What is found for a word, in the place of the list: how it was translated (F3), and where it is
// replaced (Ctrl+H). One of the two at a time; Escape ends it.

#include "editor/state/key-set.h"
#include "editor/table/w_tab_hits.h"
#include "editor/table/w_tab_replace.h"
#include "editor/table/w_tab_word.h"

namespace zel {

// The parts of the table that this works with. They outlive it.
struct tab_finding_parts {
    tab_hits *hits;
    GtkWidget *search; // the search field
    tab_word_parts word;
    tab_replace_parts replace;
};

class tab_finding {
public:
    explicit tab_finding(tab_finding_parts parts);
    tab_finding(const tab_finding &) = delete;
    tab_finding &operator=(const tab_finding &) = delete;

    GtkWidget *fields_row() const { return replace_.fields_row(); }

    // Call when the list shows other rows, and when its items or languages are others.
    void rows_filtered();
    void end();

    void neighbours_are_read() { word_.neighbours_are_read(); }

    // The table is being destroyed: removes the keys.
    void stop();

private:
    bool escape();

    tab_finding_parts parts_;
    tab_word word_;
    tab_replace replace_;
    key_set keys_;
};

} // namespace zel
