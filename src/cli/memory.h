#pragma once

// The program's memory: how the heap grows, and how the program ends without it.

namespace zel {

// Lays the heap on large pages, as much of it as the system and the user's limits allow.
void prepare_heap();

// From now on an allocation that cannot fail quietly ends the program with one line on standard
// error and status 0, before anything more is written.
void end_without_memory();

} // namespace zel
