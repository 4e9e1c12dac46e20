#pragma once

// Ends that nobody chose in the window: signals, a lost display, a crash. The unsaved state is
// written to the recovery file first.

namespace zel {

// While the editor runs.
//   TERM, HUP, INT    the program ends in order: recovery file, settings, locks; its status is 128
//                     and the signal's number. One that was ignored at the start stays ignored.
//   lost display      the same without the window; status 1
//   a crash           a copy of the process tries to write the state, for three seconds at most and
//                     beside the file that is there; then the crash goes on as it would have
void end_signals_begin();
void end_signals_end();

} // namespace zel
