#pragma once

// File system calls, as in support/file-call.h: what only other applications of the family call.

#include "support/file-call.h"

int zel_rmdir(const char *path);
