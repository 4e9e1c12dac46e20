#pragma once

// Runs the companion as a shell does, and what comes out of it.

#include "shell.h"

namespace zel_test {

using kit_run = shell_run;

// The words are a shell's, so that they may be quoted and redirected.
inline kit_run kit(const std::string &words) { return shell("lang-kit " + words); }

} // namespace zel_test
