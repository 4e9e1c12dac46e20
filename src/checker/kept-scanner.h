#pragma once

// The scanners that no text needs at the moment. Every file and every literal that may be a script
// takes one; with a new one for each, checking a tree with requests would take 30 percent longer.

#include <memory>

#include "lex/lex.h"
#include "support/guard.h"

namespace zel {

// Keeps the scanner for the next text, or releases it.
void keep_scanner(zel_lex_t *lex) noexcept;
using kept_lex_guard = std::unique_ptr<zel_lex_t, release<keep_scanner>>;

// One that was kept, else a new one with the words of requests; null without memory.
[[nodiscard]] kept_lex_guard take_scanner();

} // namespace zel
