#pragma once

// The editor's recovery file: while the source has unsaved changes, its state is written aside
// every half minute, in pieces that nobody feels, and offered when the source is opened next.

#include <gtk/gtk.h>

#include "source/model.h"

namespace zel {

// How often the editor checks whether something has changed; tests shorten it before
// recovery_begin.
extern guint recovery_interval; // milliseconds

// How much of the source is written in one piece.
inline constexpr std::size_t recovery_items_at_a_time = 300;

// Call when the source is shown and watched. Offers the recovery files that fit it. Returns the
// state that the user takes, for the caller to show in the source's place, or null.
[[nodiscard]] source_guard recovery_offer(GtkWidget *parent);

// From now on the current source's changes are written, also those of a state that was offered,
// which is unsaved from the first moment.
void recovery_begin();

// Call when the source is no longer current; its recovery file stays where it is.
void recovery_end();

// Call when the changes are saved or given up: removes the recovery file.
void recovery_drop();

// Writes unsaved changes without waiting for the next half minute.
void recovery_write_soon();

// Writes the state at once if there are unsaved changes, and is done when it returns. alone: for a
// process that has no other thread and is about to die; the file gets a name of its own, and the
// one before stays.
void recovery_write_now(bool alone = false);

// Whether nothing is being written at the moment and no changes wait for it.
bool recovery_is_up_to_date();

} // namespace zel
