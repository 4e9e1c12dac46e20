#pragma once

// The option "--ready", which says of a format's texts which ones are final.

#include <optional>
#include <string>

#include "exchange/formats.h"
#include "kit/support/word.h"

namespace zel::kit {

// What the option's value means, an empty one that it was not given; nothing after a line on
// standard error where it is wrong, or the format has no such state.
std::optional<exchange::ready_mark> choose_ready(const word &self, const exchange::format &row,
                                                 const std::string &value);

} // namespace zel::kit
