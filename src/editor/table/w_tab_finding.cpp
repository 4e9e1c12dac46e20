#include "editor/table/w_tab_finding.h"

#include "editor/table/w_tab_search.h"

#include <gdk/gdkkeysyms.h>

namespace zel {

tab_finding::tab_finding(tab_finding_parts parts)
    : parts_(std::move(parts)), word_(parts_.word), replace_(parts_.replace)
{
    keys_.add(GDK_KEY_F3, GdkModifierType{}, [this] {
        replace_.end();
        tab_turn_to(parts_.hits->pane());
        word_.look();
    });
    keys_.add(GDK_KEY_h, GDK_CONTROL_MASK, [this] {
        // What is marked by hand is meant; the word at the caret was not asked about.
        asked_word asked = word_asked_for(parts_.word.panel, *parts_.word.rows);
        if (!asked.is_selected || gtk_widget_has_focus(parts_.search) != 0)
            asked = {};
        word_.end();
        tab_turn_to(parts_.hits->pane());
        replace_.open(std::move(asked.letters), asked.field);
    });
    keys_.add_before(GDK_KEY_Escape, GdkModifierType{}, [this] { return escape(); });
}

void tab_finding::rows_filtered()
{
    word_.end();
    replace_.preview();
}

void tab_finding::end()
{
    word_.end();
    replace_.end();
}

void tab_finding::stop()
{
    keys_.clear();
    parts_.hits->hide();
}

// In the search field Escape also does what it does there.
bool tab_finding::escape()
{
    if (!word_.is_shown() && !replace_.is_open())
        return false;
    end();
    return gtk_widget_has_focus(parts_.search) == 0;
}

} // namespace zel
