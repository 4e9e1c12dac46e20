#pragma once

// The editor's keys in a window of their own, as the manual has them.

#include <gtk/gtk.h>

#include <vector>

namespace zel {

struct key_row {
    const char *keys;
    const char *text; // what they do
};

// All keys, in the manual's order.
[[nodiscard]] const std::vector<key_row> &editor_keys();

// Adds Ctrl+? to accel_group, which exists by then.
void keys_add_key();

// Shows the window, or brings it to the front.
void show_keys();

} // namespace zel
