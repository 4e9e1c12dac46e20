#pragma once

// The editor's recovery file: while the source has unsaved changes, its state is written aside
// every half minute, in pieces that nobody feels, and offered when the source is opened next.

#include <gtk/gtk.h>

#include "source/model.h"

namespace zel {

// How often it is looked whether something has changed; tests shorten it before recovery_begin.
extern guint recovery_interval; // milliseconds

// How much of the source is written in one piece.
inline constexpr std::size_t recovery_items_at_a_time = 300;

// The source is shown and watched. Offers the recovery files that fit it: the state that the user
// takes, for the caller to show in the source's place, or null.
[[nodiscard]] source_guard recovery_offer(GtkWidget *parent);

// From now on the current source's changes are written.
// that was offered, which is unsaved from the first moment.
void recovery_begin();

// The source is no longer current; its recovery file stays where it is.
void recovery_end();

// The changes are saved, or given up: there is nothing to recover.
void recovery_drop();

// Does not wait for the next half minute with unsaved changes.
void recovery_write_soon();

// Writes the state at once, and is done when it returns, if there are unsaved changes. With alone
// set in a process that has no other thread and is about to die: the file gets a name of its own,
// and the one before stays.
void recovery_write_now(bool alone = false);

// Whether nothing is being written at the moment and no changes wait for it.
bool recovery_is_up_to_date();

} // namespace zel
