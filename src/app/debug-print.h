#pragma once

// The debug print of the libraries, as a tool for whoever works on them.

namespace zel {

// Switches it on when LANG_DEBUG is set in the environment to anything but nothing or "0".
void debug_print_from_environment();

} // namespace zel
