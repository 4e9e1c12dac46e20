#pragma once

// The whole of lang-kit.

#include <span>

#include "kit/support/word.h"

namespace zel::kit {

std::span<const word> words();

// Finds the word and runs it. Returns the exit status.
int run(int argc, char **argv);

} // namespace zel::kit
