#pragma once

// The looks of the editor where the user's desktop has none of its own.

namespace zel {

// Parses the program's own styles, once: all of them while the user has no theme, else only what
// the window needs to fit. Called with the display open, before the first window.
void apply_theme();

} // namespace zel
