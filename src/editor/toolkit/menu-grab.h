#pragma once

// A menu opens only when the X server grants it the keyboard and the mouse, which it refuses while
// another program holds one of them or has held it since the key was pressed. The toolkit leaves
// such a menu hidden and lets it take all input nevertheless: no key and no click would do anything
// any more.

namespace zel {

// From now on closes a menu that holds the input without being seen, with the menus above it. A
// second call does nothing.
void close_hidden_menus();

} // namespace zel
