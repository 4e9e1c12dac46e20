#pragma once

// Writes down what is done in the windows, for undoing: the history of the source is fed from here.

#include <gtk/gtk.h>

#include "editor/panel/w_text_panel.h"
#include "editor/state/edit-history.h"

namespace zel {

// Records what is typed into the panel's fields from now on, until the panel goes.
void record_typing(Zeltext *text);

// Ends the step that is being typed, so that the history is whole. Comes before whatever else is
// recorded, and before the source is changed for it.
void record_begin();

// The item's mark is about to change. A mark that does not count leaves the source unmodified.
void record_ready(item_t *item, std::int32_t ready, bool counts);

// The dialog of the languages was open; before: what they were, after record_begin.
void record_definitions(LangSource *source, const definitions &before);

// What happens while it lives is no edit of the user's.
class record_pause {
public:
    record_pause() { ++depth; }
    ~record_pause() { --depth; }
    record_pause(const record_pause &) = delete;
    record_pause &operator=(const record_pause &) = delete;
    static int depth;
};

} // namespace zel
