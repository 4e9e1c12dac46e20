#pragma once

// Records what the user does in the windows, for undoing: the source's history is fed from here.

#include <gtk/gtk.h>

#include "editor/panel/w_text_panel.h"
#include "editor/state/edit-history.h"

namespace zel {

// Records what is typed into the panel's fields from now on, until the panel is destroyed.
void record_typing(Zeltext *text);

// Ends the step that is being typed, so that the history is whole. Call before anything else is
// recorded, and before the source is changed for it.
void record_begin();

// Call before the item's mark changes. A mark that does not count leaves the source unmodified.
void record_ready(item_t *item, std::int32_t ready, bool counts);

// Call after the dialog of the languages has closed; before: what they were, read after
// record_begin.
void record_definitions(LangSource *source, const definitions &before);

// While one lives, changes of the fields are the program's and are not recorded.
class record_pause {
public:
    record_pause() { ++depth; }
    ~record_pause() { --depth; }
    record_pause(const record_pause &) = delete;
    record_pause &operator=(const record_pause &) = delete;
    static int depth;
};

} // namespace zel
