#pragma once

// The trace that the environment's LANG_TRACE asks for; its lines stand in lang-locale.h.

namespace zel {

// Looks for LANG_TRACE, once in a process. From any thread.
void trace_begin();

// A request, while rare_traced holds. From any thread.
void trace_request(const char *group, const char *item);

// lang_trace_mark of lang-locale.h.
void trace_mark(const char *name);

} // namespace zel
