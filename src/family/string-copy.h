#pragma once

// String copies, as in support/string-copy.h: what only other applications of the family call.

#include "support/string-copy.h"

// The owned string grown by the other one, which may be a part of it; use the result in its place.
// A null owned string gives a copy of the other (null when it is empty), a null addition the owned
// string unchanged, and so does a lack of memory, after a fatal error's report.
[[nodiscard]] char *_zel_str_add(char *owned, const char *add, const char *file, int line);

// A new string of both; when one is null a copy of the other (null when that is empty or null).
[[nodiscard]] char *_zel_strdup_add(const char *first, const char *second);
