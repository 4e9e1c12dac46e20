#pragma once

// A source that replaces another as a whole.

#include "source/model.h"

namespace zel::kit {

// One line on standard output for each item that was added, changed or is gone, and one when
// anything else has changed: "+ menu:_Open", "~ menu:_Save", "- menu:_Close",
// "~ languages, groups and order". Before may be null. Whether there was any difference.
bool print_differences(LangSource *before, LangSource *after);

} // namespace zel::kit
