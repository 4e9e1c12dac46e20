#pragma once

// The language names of entries. A source has hundreds of thousands of entries and some ten
// languages: what bears the same name shares it.

namespace zel {

// The name to put into an entry; null for null, and without memory, which counts as a copy that
// failed. It must not be changed.
[[nodiscard]] char *take_entry_name(const char *name);

// Gives back what take_entry_name gave; null is ignored.
void drop_entry_name(char *name);

} // namespace zel
