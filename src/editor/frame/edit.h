#pragma once

// The editor's main window.

// Builds the window, shows def_file when it is set, and runs until the user ends the editor, or at
// once when def_file cannot be read. Returns 0. edit_ctrl is filled by then, the display open.
int edit();
