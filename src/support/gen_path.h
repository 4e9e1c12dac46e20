#pragma once

// Joining path components with "/".

#include <cstddef>

// Joins the components into the buffer, "/" between them. With append 0 the buffer is emptied
// first, else the components are added to what it holds. The list ends with a null pointer (or at
// an empty component). The caller's buffer must hold the result. Returns 0; 1 for a null buffer.
int gen_path(char *buffer, int append, const char *first, ...) __attribute__((sentinel));

// The same within a buffer of size bytes: 1 also when the result does not fit (the buffer then
// holds what was joined so far); a null first component gives 0.
int gen_path_ext(char *buffer, int append, std::size_t size, const char *first, ...)
    __attribute__((sentinel));
