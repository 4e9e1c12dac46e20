#pragma once

// Passing quickly over code in which the check has nothing to find.

struct zel_lex_t;

namespace zel {

// Takes from the input, at most to the end of the block that is in memory, tokens (and comments)
// that are neither strings nor words of a request nor part of a definition of a string. What the
// scanner reads next, and its positions, are the same as if they had been read one by one. Does
// nothing while a token is looked ahead, or for a scanner with other flags or functions than those
// of the check.
void skip_plain_code(zel_lex_t *lex);

} // namespace zel
