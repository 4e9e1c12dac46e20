#pragma once

// The picture of a group on the main window's "Screen Shot" page.

namespace zel {

// Shows the group's picture, ScreenShots/<group>.jpg beside the source, unless last_group (owned,
// never null) says that it is the one shown, and beside it the one with the item, where the index
// (source/picture-index.h) has one; nothing without the page.
void tab_show_shot(char *&last_group, const char *group, const char *item);

// Removes the pictures.
void tab_drop_shot();

} // namespace zel
