#pragma once

// The program's memory: how the heap grows, and how the program ends without it.

namespace zel {

// Lays the heap on large pages, as much of it as the system and the user's limits allow.
void prepare_heap();

// Gives the system back what is free. The heap keeps it otherwise, for the texts that come next.
void give_back_memory();

// From now on an allocation that cannot fail quietly ends the program with that status and one line
// on standard error that names it, before anything more is written. The name is kept, not copied.
void end_without_memory(const char *program, int status);

// Does so now.
[[noreturn]] void end_for_memory();

// For whoever replaces GLib's default handler, with the level of a message: ends the program as
// above where GLib would abort it.
void end_on_glib_error(int level);

} // namespace zel
