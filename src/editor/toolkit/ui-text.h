#pragma once

// Texts on their way to the toolkit: the editor's own, looked up in its translation, and those of
// the user's files, which may hold any bytes while the toolkit takes valid UTF-8 only.

#include <string>

namespace zel {

// The translation of one of the editor's texts, the text itself without one. Never null; belongs
// to the loaded translation. The place is the caller's.
const char *ui_text(const char *group, const char *item, const char *file = __builtin_FILE(),
                    int line = __builtin_LINE());

// The text as it may be shown: every byte that is not UTF-8 becomes the replacement character.
// Null gives the empty text.
[[nodiscard]] std::string utf8_shown(const char *text);

} // namespace zel
