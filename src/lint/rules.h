#pragma once

// The table of rules.

#include <span>
#include <string_view>

#include "lint/rule.h"

namespace zel::lint {

// In the order of their ids.
std::span<const rule> rules();
inline const rule &rule_of(rule_id id) { return rules()[static_cast<std::size_t>(id)]; }

// The rule of that name, or null.
const rule *find_rule(std::string_view name);

// "error", "warning" and "info".
const char *level_name(level of);

} // namespace zel::lint
