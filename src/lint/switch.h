#pragma once

// Comments that switch rules off.

#include "lint/finding.h"

namespace zel::lint {

// The rules that a comment switches off: "lint: RULE off", anywhere in it, as often as it is there.
rule_set read_switches(const lang_entry_t *comment);

} // namespace zel::lint
