#pragma once

// The process-wide handle, and what a request does only in few programs: it leaves a line in the
// trace, and asks the texts that a reload has put in the place of the process-wide handle's. All
// others look at one number.

#include "langlib/lang.h"

// The process-wide handle: all zero until lang_load_file fills it.
extern lang_handle_t lang;

namespace zel {

enum rare_case : unsigned {
    rare_traced = 1,   // requests go to lang-trace.h
    rare_reloaded = 2, // newest_handle is not the process-wide one
};

// The cases that hold. Reads and writes are atomic.
[[gnu::visibility("hidden")]] extern unsigned rare_cases;
void rare_begins(rare_case one);
void rare_ends(rare_case one);

inline unsigned rare_now() { return __atomic_load_n(&rare_cases, __ATOMIC_RELAXED); }

// What answers for a handle; null and the process-wide one stand for the texts that came last.
const lang_handle_t *newest_handle(const lang_handle_t *handle);
inline lang_handle_t *newest_handle(lang_handle_t *handle)
{
    return const_cast<lang_handle_t *>(newest_handle(static_cast<const lang_handle_t *>(handle)));
}

// Lets a handle answer for the process-wide one from now on, whose owner keeps it; null: that one
// answers itself again.
void put_newest(lang_handle_t *handle);

} // namespace zel
