#pragma once

// Comments that switch rules off.

#include <cstdint>

#include "lint/finding.h"

namespace zel::lint {

// The rules that a comment switches off: "lint: RULE off", anywhere in it, as often as it is there.
rule_set read_switches(const lang_entry_t *comment);

// What the line "flags: ..." of a comment says, which keeps what a catalog tells of a text.
struct catalog_flags {
    bool no_c_format = false; // or the format of another language
    bool plural = false;      // its forms are not to be seen by its numbers
    bool no_plural = false;   // it has none, whatever it looks like
};
catalog_flags read_flags(const lang_entry_t *comment);

// How long a comment lets a text be, "lint: max 20" in characters or "lint: max 120px" in pixels.
struct length_limit {
    std::uint32_t most = 0; // 0: as long as it likes
    bool in_pixels = false;
    bool is_wrong = false; // what follows "max" is neither
};
length_limit read_limit(const lang_entry_t *comment);

} // namespace zel::lint
